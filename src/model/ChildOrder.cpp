#include "model/ChildOrder.h"

#include <unordered_map>

#include "norvane/platform/core/string/KeyHash.h"
#include "records/NameMap.h"

namespace norvane::platform::data::Metadata {

namespace {

constexpr std::uint32_t kFree = 0xFFFFFFFFu;
constexpr std::size_t kFirstBuckets = 32;

// The bucket array of a hash map with triangular probing, in which nothing is ever erased.
class Buckets {
  public:
    explicit Buckets(std::size_t count) : slots_(count, kFree) {}

    std::size_t count() const { return slots_.size(); }
    const std::vector<std::uint32_t>& slots() const { return slots_; }

    // Slots only fill up, so a sequence need not be probed again where it was found full before.
    void place(std::uint64_t hash, std::uint32_t value) {
        const std::size_t mask = slots_.size() - 1;
        const std::size_t start = static_cast<std::size_t>(hash) & mask;
        if (slots_[start] == kFree) {
            slots_[start] = value;
            return;
        }
        Probe& probe = probes_.try_emplace(start, Probe{start, 0}).first->second;
        while (slots_[probe.bucket] != kFree) probe.bucket = (probe.bucket + ++probe.steps) & mask;
        slots_[probe.bucket] = value;
    }

  private:
    struct Probe {
        std::size_t bucket;
        std::size_t steps;
    };
    std::vector<std::uint32_t> slots_;
    std::unordered_map<std::size_t, Probe> probes_;
};

// The map hashes the first half of a text's bytes and, its keys being pointers, drops the three low bits.
std::uint64_t bucketHash(std::u16string_view name) {
    return core::string::wideKeyHash(name.data(), name.size()) / sizeof(void*);
}

Buckets doubled(const Buckets& buckets, const std::vector<std::uint64_t>& hashes) {
    Buckets larger(buckets.count() * 2);
    for (std::uint32_t each : buckets.slots())
        if (each != kFree) larger.place(hashes[each], each);
    return larger;
}

}  // namespace

std::vector<std::uint32_t> deletionOrder(const std::vector<std::u16string_view>& names) {
    NameMap<std::uint32_t> seen;
    std::vector<std::uint32_t> last;
    std::vector<std::uint64_t> hashes(names.size());
    Buckets buckets(kFirstBuckets);
    std::size_t placed = 0;
    for (std::uint32_t i = 0; i < names.size(); ++i) {
        if (isReserved(names[i])) {
            last.push_back(i);
            continue;
        }
        // The map doubles when one more would make it more than half full, also if that one turns out to be
        // there already, and then takes its content over in its own order.
        if (placed + 1 > buckets.count() / 2) buckets = doubled(buckets, hashes);
        if (!seen.insert(names[i], i)) {
            last.push_back(i);
            continue;
        }
        hashes[i] = bucketHash(names[i]);
        buckets.place(hashes[i], i);
        ++placed;
    }
    std::vector<std::uint32_t> order;
    order.reserve(names.size());
    for (std::uint32_t each : buckets.slots())
        if (each != kFree) order.push_back(each);
    order.insert(order.end(), last.begin(), last.end());
    return order;
}

}  // namespace norvane::platform::data::Metadata
