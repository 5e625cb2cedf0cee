// The order in which the children of a set are deleted.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace norvane::platform::data::Metadata {

// Indices of `names` in deletion order. The order of `remove` calls is part of what a store may rely on, and
// it is the order in which a sparsehash `dense_hash_map` with `wideKeyHash` over the first half of each
// name's bytes holds the names when they are inserted one after the other. Building such a map takes
// quadratic time for siblings with a long common beginning; placing them by the same rules, while remembering
// how far each probe sequence is known to be full, does not. Reserved names, which such a map cannot hold,
// come behind the others, and a name that was there before comes last.
std::vector<std::uint32_t> deletionOrder(const std::vector<std::u16string_view>& names);

}  // namespace norvane::platform::data::Metadata
