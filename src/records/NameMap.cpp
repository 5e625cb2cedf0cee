#include "records/NameMap.h"

#include <random>

#define XXH_INLINE_ALL
#include <xxhash.h>

namespace norvane::platform::data {

std::uint64_t nameHash(std::u16string_view name) {
    static const std::uint64_t seed = std::random_device()();
    return XXH3_64bits_withSeed(name.data(), name.size() * sizeof(char16_t), seed);
}

}  // namespace norvane::platform::data
