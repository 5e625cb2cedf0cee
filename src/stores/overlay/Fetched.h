// A record on its way from the backend.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>

#include "stores/overlay/Backend.h"
#include "stores/overlay/Bookkeeping.h"
#include "stores/pool/RecordPool.h"

namespace norvane::platform::core::storage::datastore {

// Gives its block back unless `keep` takes it out.
class Fetched : public LoadTarget {
  public:
    Fetched(RecordPool& pool, std::uint32_t offset) : pool_(&pool), offset_(offset) {}
    Fetched(Fetched&& other) noexcept
        : pool_(other.pool_), offset_(other.offset_), block_(std::exchange(other.block_, {})) {}
    Fetched& operator=(Fetched&&) = delete;
    ~Fetched() override {
        if (block_.bytes) pool_->release(block_);
    }

    std::byte* take(std::uint32_t size) override {
        block_ = pool_->take(size);
        return block_.bytes;
    }

    std::uint32_t offset() const noexcept { return offset_; }

    const Block& block() const noexcept { return block_; }

    // The caller's from now on. An open count that the backend has is nobody's: whoever left it is gone.
    Block keep() noexcept {
        setOpenCount(block_, 0);
        return std::exchange(block_, {});
    }

  private:
    RecordPool* pool_;
    std::uint32_t offset_;
    Block block_;
};

}  // namespace norvane::platform::core::storage::datastore
