#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "norvane/platform/core/string/StringAlgorithm.h"
#include "norvane/platform/core/string/WideString.h"

namespace norvane::platform::data {}

namespace qvt {

namespace core = norvane::platform::core;
namespace data = norvane::platform::data;

/// The text as UTF-8. Empty for a string that was never given text.
inline std::string utf8(const core::string::WideString& text) {
    return core::string::StringAlgorithm::UTF8Encode(text.string(), text.length());
}

/// A name, a path or a text on its way into the library: from UTF-8, as in "hall.p1", or from UTF-16. It is
/// never the string without text that some operations of the library give a meaning of its own.
class Text {
  public:
    /// From UTF-8.
    Text(std::string_view text)
        : wide_(core::string::StringAlgorithm::UTF8Decode(text.data() ? text.data() : "", text.size())) {}
    /// From UTF-8 with a NUL behind it; null counts as the empty text.
    Text(const char* text) : Text(std::string_view(text ? text : "")) {}
    /// From UTF-8.
    Text(const std::string& text) : Text(std::string_view(text)) {}
    /// From UTF-16.
    Text(std::u16string_view text) : wide_(text.data() ? text.data() : u"", text.size()) {}
    /// From UTF-16 with a NUL behind it; null counts as the empty text.
    Text(const char16_t* text) : Text(std::u16string_view(text ? text : u"")) {}
    /// As it is; a string that was never given text counts as the empty one.
    Text(const core::string::WideString& text) : Text(text.view()) {}
    Text(std::nullptr_t) = delete;

    /// As the library takes it.
    const core::string::WideString& wide() const { return wide_; }

  private:
    core::string::WideString wide_;
};

}  // namespace qvt
