#pragma once

#include "norvane/platform/core/Export.h"
#include "norvane/platform/core/xml/XMLParser.h"

namespace norvane::platform::core::xml {

/// Follows the course of a parse. A host gives it by letting its reader implement this interface as well: the
/// parser asks the IDataReader for it. That is how a host learns the place of what it is told meanwhile, and
/// that a document was not well-formed, although the functions that read a document have no result.
/// DiagnosingReader is a ready one.
class QVT_CORE_API IXMLParseListener {
  public:
    virtual ~IXMLParseListener() noexcept(false) {}

    /// The parse begins. The parser may be asked for its place until `finished` returns.
    virtual void parsing(const XMLParser& parser) = 0;
    /// The parse ends early, at `place`: for the error in the document that `text` tells, or for an exception
    /// of the callback or the reader, whose words `text` is. Called once at most, and not when the document
    /// is sound.
    virtual void stopped(const tPlace& place, const char* text) = 0;
    /// The parse is over, in whatever way. Always the last call; it must not throw.
    virtual void finished() = 0;
};

}  // namespace norvane::platform::core::xml
