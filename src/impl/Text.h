// Between the texts of the interfaces and those of the model.
#pragma once

#include <string_view>

#include "norvane/platform/data/Names.h"
#include "records/Records.h"

namespace norvane::platform::data {

// Up to the first NUL, which ends every text in a record. Empty for a WideString without text. Lives as long
// as the argument.
inline std::u16string_view textOf(const WideString& text) { return Record::textOf(text.value()); }

inline WideString wideOf(std::u16string_view text) { return {text.data(), text.size()}; }

// Without text where there is nothing to tell.
inline WideString wideOrNone(std::u16string_view text) { return text.empty() ? WideString() : wideOf(text); }

}  // namespace norvane::platform::data
