#pragma once

namespace norvane::platform::core {

/// One UTF-16 code unit. It is 16 bits wide on every platform, because records hold text in this form;
/// `wchar_t` and the runtime's wide strings and streams are therefore never used for it.
using tWChar = char16_t;

}  // namespace norvane::platform::core
