#pragma once

#include <cstddef>
#include <iterator>
#include <utility>

#include "norvane/platform/core/memory/SharedPtr.h"

namespace qvt {

/// What a filter of the library steps over, for a `for` loop. It stands on its own: it needs neither the
/// object that it came from nor a handle on it. What is added meanwhile is not met, what is removed is passed
/// over. Each `begin` starts from the first again; one range serves one loop at a time.
///
/// Its iterator is one for loops alone. What stands on an object closes it when it goes, which may throw, and
/// the algorithms of the standard library take no such iterators.
///
/// The object of the current round is open, so that it cannot be removed within it: collect what is to go,
/// and remove it behind the loop.
template <class Item, class Filter>
class Range {
  public:
    class iterator {
      public:
        using value_type = Item;
        using difference_type = std::ptrdiff_t;
        using iterator_concept = std::input_iterator_tag;

        iterator() = default;
        explicit iterator(norvane::platform::core::memory::SharedPtr<Filter> filter)
            : filter_(std::move(filter)) {
            if (filter_) settle();
        }

        const Item& operator*() const { return item_; }
        const Item* operator->() const { return &item_; }
        iterator& operator++() {
            item_ = Item();
            if (filter_->next()) settle();
            return *this;
        }
        void operator++(int) { ++*this; }
        friend bool operator==(const iterator& at, std::default_sentinel_t) { return !at.item_; }

      private:
        // A new filter stands on its first object already. One without a value is at the end or was removed.
        void settle() {
            do item_ = Item(filter_->value());
            while (!item_ && filter_->next());
        }

        norvane::platform::core::memory::SharedPtr<Filter> filter_;
        Item item_;
    };

    Range() = default;
    explicit Range(norvane::platform::core::memory::SharedPtr<Filter> filter) : filter_(std::move(filter)) {}

    iterator begin() const {
        while (filter_ && filter_->previous()) {
        }
        return iterator(filter_);
    }
    std::default_sentinel_t end() const { return {}; }

  private:
    norvane::platform::core::memory::SharedPtr<Filter> filter_;
};

}  // namespace qvt
