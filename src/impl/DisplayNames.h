// Localised texts of an open object as hosts are given them.
#pragma once

#include <cstdint>
#include <string_view>

#include "impl/Text.h"
#include "model/Item.h"

namespace norvane::platform::data {

// An empty text that was set is a text: given back to `setLocalised`, one without text would remove it.

inline WideString localeOf(Metadata::Item& item, std::uint32_t index) {
    return index < item.localisedCount() ? wideOf(item.localeAt(index)) : WideString();
}

inline WideString displayNameOf(Metadata::Item& item, std::u16string_view locale) {
    return item.localisedIndex(locale) < 0 ? WideString() : wideOf(item.localised(locale));
}

}  // namespace norvane::platform::data
