#pragma once

#include "norvane/platform/core/Export.h"

namespace norvane::platform::core::xml {

/// Receives a document from XMLParser, piece by piece. All text is UTF-8 and belongs to the parser for the
/// length of the call. What a callback throws ends the parse and comes out of `XMLParser::parseDocument`.
/// One that keeps back what it is told until it knows the rest implements IXMLPauses as well.
/// Slots keep this order, new ones go last.
class QVT_CORE_API XMLCallback {
  public:
    virtual ~XMLCallback() noexcept(false) {}

    /// `attributes` is name, value, name, value and so on, ending in a null name.
    virtual void startElement(const char* name, const char* const* attributes) = 0;
    /// The end of the innermost element that is open, also of one written as a single tag.
    virtual void endElement(const char* name) = 0;
    /// The text between the marks of a comment.
    virtual void comment(const char* text) = 0;
    /// Both without the blanks between them; `data` may be empty.
    virtual void processingInstruction(const char* target, const char* data) = 0;
    /// `length` bytes of text without a NUL. One run of text may come in several calls.
    virtual void characterData(const char* text, int length) = 0;
};

}  // namespace norvane::platform::core::xml
