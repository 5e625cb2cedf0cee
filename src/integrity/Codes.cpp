#include "integrity/Codes.h"

#include <array>
#include <string_view>
#include <utility>

namespace norvane::platform::data::integrity {

namespace {

using Remedy = std::pair<std::string_view, std::string_view>;

constexpr std::array kRemedies{
    Remedy{code::kUnreadable, "The record was left out."},
    Remedy{code::kKind, "The record was left out."},
    Remedy{code::kTooShort, "The record was left out."},
    Remedy{code::kSize, "The sizes now end where the record does."},
    Remedy{code::kSlack, "The bytes were cut off."},
    Remedy{code::kListSize, "The bytes were cut off."},
    Remedy{code::kText, "The text now ends where readers ended it."},
    Remedy{code::kNoName, "It now has the empty name."},
    Remedy{code::kOpenCount, "The count is 0 now."},
    Remedy{code::kLocalePairs, "Whole pairs were kept."},
    Remedy{code::kRootMissing, "A new root was made."},
    Remedy{code::kParent, "It now names the entity that lists it."},
    Remedy{code::kChildren, "The reference was dropped."},
    Remedy{code::kLocale, "The reference was dropped."},
    Remedy{code::kDefaults, "The reference was dropped."},
    Remedy{code::kShared, "The reference was dropped here."},
    Remedy{code::kChildDangling, "The offset was taken out of the list."},
    Remedy{code::kChildKind, "The offset was taken out of the list."},
    Remedy{code::kListedTwice, "It was taken out of that list."},
    Remedy{code::kCycle, "It was taken out of that list."},
};

}  // namespace

std::string remedyOf(const std::string& code) {
    for (const auto& [each, remedy] : kRemedies)
        if (each == code) return std::string(remedy);
    return {};
}

}  // namespace norvane::platform::data::integrity
