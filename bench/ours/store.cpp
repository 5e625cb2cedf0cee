// The memory store by itself: records of 64 bytes.
#include <memory>

#include "harness/Harness.h"
#include "norvane/platform/core/storage/datastore/MemoryDataStore.h"

namespace {

using bench::Arguments;
using bench::Result;
using norvane::platform::core::storage::datastore::IDataStore;
using norvane::platform::core::storage::datastore::kWholeRecord;
using norvane::platform::core::storage::datastore::MemoryDataStore;

constexpr std::uint32_t kSize = 64;

void fill(IDataStore& store, std::uint64_t count) {
    const std::string bytes(kSize, 'x');
    for (std::uint64_t i = 0; i < count; ++i) store.append(bytes.data(), kSize);
}

void put(const Arguments& arguments, Result& result) {
    const std::uint64_t count = arguments.number("size", 100'000);
    bench::repeatFresh(arguments, result, [&] {
        return [count, store = std::make_unique<MemoryDataStore>()] {
            fill(*store, count);
            return count;
        };
    });
}

void get(const Arguments& arguments, Result& result) {
    const auto count = static_cast<std::uint32_t>(arguments.number("size", 100'000));
    MemoryDataStore memory;
    IDataStore& store = memory;
    fill(store, count);
    char bytes[kSize];
    std::uint64_t sum = 0;
    bench::repeat(arguments, result, [&]() -> std::uint64_t {
        for (std::uint32_t offset = 0; offset < count; ++offset) {
            store.read(offset, bytes, kWholeRecord);
            bench::keep(bytes);
            sum += static_cast<unsigned char>(bytes[0]);
        }
        return count;
    });
    bench::keep(sum);
}

void update(const Arguments& arguments, Result& result) {
    const auto count = static_cast<std::uint32_t>(arguments.number("size", 100'000));
    MemoryDataStore memory;
    IDataStore& store = memory;
    fill(store, count);
    const std::string bytes(kSize, 'y');
    bench::repeat(arguments, result, [&]() -> std::uint64_t {
        for (std::uint32_t offset = 0; offset < count; ++offset)
            store.write(offset, bytes.data(), kSize, true);
        return count;
    });
}

}  // namespace

int main(int count, char** words) {
    return bench::run(count, words, {{"put", put}, {"get", get}, {"update", update}});
}
