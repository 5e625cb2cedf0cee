#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "norvane/platform/core/Export.h"
#include "norvane/platform/core/Types.h"
#include "norvane/platform/core/string/WideString.h"

namespace norvane::platform::core::string {

/// Conversions between forms of text. None of them fails: what is malformed becomes U+FFFD, one for each
/// longest beginning of a sequence that could have been right, or for each byte or code unit that begins
/// none.
class QVT_CORE_API StringAlgorithm {
  public:
    /// From UTF-8. Null for null; the empty text gives a string that is empty but not null.
    static WideString UTF8Decode(const char* text);
    /// From `length` bytes of UTF-8, which may hold a NUL. Null for null.
    static WideString UTF8Decode(const char* text, std::size_t length);
    /// Adds the decoded text to the end of `result`.
    static void UTF8Decode(std::string_view text, std::u16string& result);

    /// To UTF-8. Empty for null.
    static std::string UTF8Encode(const tWChar* text);
    /// To UTF-8, from `length` code units. Empty for null.
    static std::string UTF8Encode(const tWChar* text, std::size_t length);
    /// Adds the encoded text to the end of `result`.
    static void UTF8Encode(std::u16string_view text, std::string& result);

    /// Base64 in the standard alphabet, padded, without line breaks and without a NUL. With a null output and
    /// size 0 the result is the size of the whole text; else it is what was written, which is cut to whole
    /// groups of four if `outSize` is too small.
    static std::size_t EncodeBase64(const void* in, std::size_t inSize, void* out, std::size_t outSize);

    /// The inverse, with the same two calls. Blanks, tabs and line ends are passed over; the text ends at "="
    /// or at the first other character that is not of the alphabet, and what came before is the result.
    static std::size_t DecodeBase64(const void* in, std::size_t inSize, void* out, std::size_t outSize);
};

}  // namespace norvane::platform::core::string
