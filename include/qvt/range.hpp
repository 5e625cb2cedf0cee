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
    /// Where a loop is. It goes one way, once.
    class iterator {
      public:
        /// What the loop gets.
        using value_type = Item;
        /// Asked for by the concepts of iterators; there is no distance.
        using difference_type = std::ptrdiff_t;
        /// Input only.
        using iterator_concept = std::input_iterator_tag;

        /// At the end.
        iterator() = default;
        /// At the first object of a filter.
        explicit iterator(norvane::platform::core::memory::SharedPtr<Filter> filter)
            : filter_(std::move(filter)) {
            if (filter_) settle();
        }

        /// The object of this round.
        const Item& operator*() const { return item_; }
        /// The object of this round.
        const Item* operator->() const { return &item_; }
        /// Closes the object and opens the next one.
        iterator& operator++() {
            item_ = Item();
            if (filter_->next()) settle();
            return *this;
        }
        /// The same.
        void operator++(int) { ++*this; }
        /// True at the end.
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

    /// Nothing to step over.
    Range() = default;
    /// Steps over what the filter does; over nothing if it is null.
    explicit Range(norvane::platform::core::memory::SharedPtr<Filter> filter) : filter_(std::move(filter)) {}

    /// At the first object.
    iterator begin() const {
        while (filter_ && filter_->previous()) {
        }
        return iterator(filter_);
    }
    /// Behind the last one.
    std::default_sentinel_t end() const { return {}; }

  private:
    norvane::platform::core::memory::SharedPtr<Filter> filter_;
};

}  // namespace qvt
