#pragma once

#include <cstddef>
#include <memory>
#include <string_view>

#include "norvane/platform/core/Export.h"
#include "norvane/platform/core/QVTUUID.h"
#include "norvane/platform/core/Types.h"
#include "norvane/platform/core/io/IDataWriter.h"

namespace norvane::platform::core::xml {

/// Writes an XML document as UTF-8, from UTF-16 text. It writes what it is told, in that order; it does not
/// check names, nor that attributes have different ones.
///
/// Elements that hold only elements have them on lines of their own, two blanks deeper for each level. As
/// soon as an element has text, nothing more is inserted in it. One without content is written as `<name/>`;
/// empty text is no content. The same calls always give the same bytes.
///
/// "&", "<", ">" become references, in attributes the quotation mark too; and so does white space that a
/// reader would turn into something else: CR in text, tab, LF and CR in attributes. Characters that XML does
/// not have, and halves of surrogate pairs, become U+FFFD.
///
/// Output is collected and goes to the writer in large pieces; `detach` sends the rest. A writer that takes
/// less than it is given is given the rest again; one that takes nothing ends the output with a
/// `std::runtime_error`.
class QVT_CORE_API XMLSerializer {
  public:
    /// The identifier is not used.
    explicit XMLSerializer(QVTUUID& identifier);
    XMLSerializer(const XMLSerializer&) = delete;
    XMLSerializer& operator=(const XMLSerializer&) = delete;
    /// Writes nothing: output that was not detached is broken off.
    virtual ~XMLSerializer();

    /// From here on a new document goes to the writer, borrowed until `detach`. Without a writer output is
    /// dropped.
    void attach(io::IDataWriter* writer);
    /// Sends what is left to the writer and lets it go. Elements that are still open stay without their ends.
    void detach();

    /// Writes the XML declaration: version 1.0, UTF-8.
    void emitXMLHeader();

    /// Second arguments of this and the third of `addAttribute` are not used, nor is that of `endElement`.
    void startElement(const tWChar* name, const tWChar* unused);
    /// Adds to the element just opened; ignored once it has content. A null value is written as an empty one.
    void addAttribute(const tWChar* name, const tWChar* value, const tWChar* unused);
    /// As `startElement`, for who knows that the name is ASCII characters without "&", "<", ">" and quotation
    /// marks: it is not looked at.
    void startPlainElement(std::string_view name);
    /// As `addAttribute`, with such a name.
    void addTextAttribute(std::string_view name, std::u16string_view value);
    /// As `addAttribute`, with such a name and such a value.
    void addPlainAttribute(std::string_view name, std::string_view value);
    /// Several calls in a row make one run of text. Null is the empty text.
    void addCharacterData(const tWChar* text);
    /// The same with `length` code units.
    void addCharacterData(const tWChar* text, std::size_t length);
    /// Text of ASCII characters that need no escape: numbers, blanks, Base64. They are not looked at, so that
    /// a long text costs little more than its copy.
    void addPlainText(std::string_view text);
    /// Closes the innermost open element; ignored if there is none.
    void endElement(bool unused);

  private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace norvane::platform::core::xml
