// One small value for each record offset.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace norvane::platform::data::integrity {

// A sparse array: it takes memory for those stretches of offsets alone in which something was set.
template <class T>
class OffsetMap {
  public:
    // `absent` is what stands where nothing was set.
    explicit OffsetMap(T absent) : absent_(absent) {}

    T get(std::uint32_t offset) const {
        const std::size_t page = offset / kPageSize;
        return page < pages_.size() && pages_[page] ? (*pages_[page])[offset % kPageSize] : absent_;
    }

    void set(std::uint32_t offset, T value) {
        const std::size_t page = offset / kPageSize;
        if (page >= pages_.size()) pages_.resize(page + 1);
        if (!pages_[page]) {
            pages_[page] = std::make_unique<Page>();
            pages_[page]->fill(absent_);
        }
        (*pages_[page])[offset % kPageSize] = value;
    }

  private:
    static constexpr std::uint32_t kPageSize = 4096;
    using Page = std::array<T, kPageSize>;

    T absent_;
    std::vector<std::unique_ptr<Page>> pages_;
};

}  // namespace norvane::platform::data::integrity
