// Room for bytes that are few nearly always.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>

#include "records/Records.h"

namespace norvane::platform::data::Record {

// A block of bytes, which are not set. Up to `Few` of them need no memory of their own.
template <std::uint32_t Few>
class SmallBlock {
  public:
    explicit SmallBlock(std::uint32_t size = 0) { reserve(size, 0); }
    SmallBlock(const SmallBlock&) = delete;
    SmallBlock& operator=(const SmallBlock&) = delete;

    std::byte* bytes() { return bytes_; }
    const std::byte* bytes() const { return bytes_; }

    // Makes room for `size` bytes and keeps the first `kept` of those that are there.
    void reserve(std::uint32_t size, std::uint32_t kept) {
        if (size <= Few || size <= large_.capacity()) return;
        Block larger(size);
        std::memcpy(larger.bytes(), bytes_, kept);
        large_ = std::move(larger);
        bytes_ = large_.bytes();
    }

  private:
    alignas(std::max_align_t) std::byte few_[Few];
    Block large_;
    std::byte* bytes_ = few_;
};

}  // namespace norvane::platform::data::Record
