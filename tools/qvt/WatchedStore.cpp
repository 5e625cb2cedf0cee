#include "WatchedStore.h"

namespace qvt {

WatchedStore::WatchedStore(IDataStore& store, Progress& progress)
    : store_(store), progress_(progress), isKnown_(store.size()) {}

void WatchedStore::lookedAt(std::uint32_t offset) {
    constexpr std::uint64_t kStep = 256;
    if (offset >= isKnown_.size() || isKnown_[offset]) return;
    isKnown_[offset] = true;
    if (++count_ % kStep == 0) progress_.reached(count_);
}

}  // namespace qvt
