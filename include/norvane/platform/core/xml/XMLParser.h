#pragma once

#include <cstdint>
#include <memory>

#include "norvane/platform/core/Export.h"
#include "norvane/platform/core/io/IDataReader.h"
#include "norvane/platform/core/tracer/ISink.h"
#include "norvane/platform/core/xml/XMLCallback.h"

namespace norvane::platform::core::xml {

/// A place in a document.
struct tPlace {
    /// From 1.
    std::uint64_t line = 1;
    /// In characters, not bytes, from 1.
    std::uint64_t column = 1;
    /// From 0, in the document's own encoding.
    std::uint64_t byte = 0;
};

/// Reads XML 1.0 documents of any depth and size and hands them to a callback as they come.
///
/// - UTF-8, with or without a byte order mark, and UTF-16 with one; also US-ASCII and ISO-8859-1 where the
///   document declares them.
/// - Names are not split at colons.
/// - Text comes as it stands, white space included, with CR LF and CR as LF. CDATA sections are text.
/// - In attribute values each tab and line end becomes a blank.
/// - A DOCTYPE is passed over. One with an internal subset ends the parse with an error, and so does a
///   reference to an entity that is not one of the five predefined ones. So nothing can be declared, and
///   nothing external is opened.
/// - Two attributes of one name in a tag are an error.
class QVT_CORE_API XMLParser {
  public:
    /// Both are borrowed for as long as the parser lives. `sink` may be null and is not used.
    explicit XMLParser(XMLCallback& callback, tracer::ISink* sink = nullptr);
    XMLParser(const XMLParser&) = delete;
    XMLParser& operator=(const XMLParser&) = delete;
    virtual ~XMLParser();

    /// Parses one document, from what `reader` gives until it gives 0; opening and closing it is the caller's
    /// matter. False if the document is not well-formed: the callback has then received all that stands
    /// before the error. False also for a null reader and for a call from inside a callback of this parser.
    /// What the callback or the reader throws comes out of here. If the reader is an IXMLParseListener as
    /// well, it hears of the course of the parse.
    bool parseDocument(io::IDataReader* reader);

    /// During the parse, where the event being reported begins; the end of an element written as one tag
    /// begins behind that tag. Afterwards, where the parse ended: the end of the document, the place of the
    /// error, or the event from which an exception came. The first place of a document if there was no parse
    /// yet.
    tPlace place() const;

    /// What is wrong with the document, in lower case, such as "mismatched tag". Null as long as nothing is.
    /// Valid until the next parse.
    const char* errorText() const;

  private:
    struct State;
    class Ending;
    std::unique_ptr<State> state_;
};

}  // namespace norvane::platform::core::xml
