#pragma once

#include <cstddef>
#include <exception>
#include <iterator>
#include <utility>

#include "qvt/model.hpp"

namespace qvt {

/// All that stands in a container, for a `for` loop: the container itself, then each property with the
/// members of tables below it, then each child container with all of its own. Depth costs no stack, but keeps
/// one handle open for each level. One walk goes once.
///
/// What the loop is at, and what that stands in, is open and cannot be removed meanwhile.
class Walk {
  public:
    /// Where a walk is: at a container or at a property; the other one is empty.
    struct Place {
        /// Set at a container.
        Container container;
        /// Set at a property.
        Property property;
        std::size_t depth = 0;  ///< 0 for the container that the walk began with.
    };

    /// Where a loop is. It goes one way, once.
    class iterator {
      public:
        /// What the loop gets.
        using value_type = Place;
        /// Asked for by the concepts of iterators; there is no distance.
        using difference_type = std::ptrdiff_t;
        /// Input only.
        using iterator_concept = std::input_iterator_tag;

        /// Where the walk is.
        const Place& operator*() const { return walk_->at_; }
        /// Where the walk is.
        const Place* operator->() const { return &walk_->at_; }
        /// Goes on, down first.
        iterator& operator++() {
            walk_->step();
            return *this;
        }
        /// The same.
        void operator++(int) { ++*this; }
        /// True behind the last place.
        friend bool operator==(const iterator& it, std::default_sentinel_t) { return it.isDone(); }

      private:
        friend class Walk;
        explicit iterator(Walk& walk) : walk_(&walk) {}
        bool isDone() const { return walk_->isDone(); }
        Walk* walk_;
    };

    /// From a container on; from an empty one there is nothing to walk.
    explicit Walk(Container top) { at_.container = std::move(top); }
    Walk(const Walk&) = delete;
    Walk& operator=(const Walk&) = delete;
    ~Walk() noexcept(false) { clear(); }

    /// Where the walk is now, at first at its container.
    iterator begin() { return iterator(*this); }
    /// Behind the last place.
    std::default_sentinel_t end() const { return {}; }

    /// Leaves out what stands below the present place.
    void skip() { skips_ = true; }

  private:
    struct Level {
        SharedPtr<data::metadata::IPropertyFilter> properties;
        SharedPtr<data::structure::IContainerFilter> containers;
        Level* above;
    };

    bool isDone() const { return !at_.container && !at_.property; }

    void step() {
        if (!std::exchange(skips_, false)) descend();
        at_.container = Container();
        at_.property = Property();
        for (; levels_; pop()) {
            at_.depth = depth_;
            if (take(levels_->properties, at_.property) || take(levels_->containers, at_.container)) return;
        }
    }

    void descend() {
        if (at_.container) {
            IContainer& container = *at_.container.get();
            push(container.properties(), container.containers());
        } else if (at_.property.isTable()) {
            push(at_.property.table().get()->properties(), {});
        }
    }

    // A filter without a value stands on an object that was removed, or at the end.
    template <class Filter, class Item>
    static bool take(SharedPtr<Filter>& filter, Item& item) {
        while (filter) {
            item = Item(filter->value());
            if (!filter->next()) filter.reset();
            if (item) return true;
        }
        return false;
    }

    void push(SharedPtr<data::metadata::IPropertyFilter> properties,
              SharedPtr<data::structure::IContainerFilter> containers) {
        levels_ = new Level{std::move(properties), std::move(containers), levels_};
        ++depth_;
    }
    void pop() {
        --depth_;
        delete std::exchange(levels_, levels_->above);
    }

    // Every level closes something in the store, whatever the ones before it have thrown.
    void clear() {
        std::exception_ptr thrown;
        while (levels_) {
            try {
                pop();
            } catch (...) {
                thrown = std::current_exception();
            }
        }
        if (thrown && std::uncaught_exceptions() == exceptions_) std::rethrow_exception(thrown);
    }

    Place at_;
    Level* levels_ = nullptr;
    std::size_t depth_ = 0;
    bool skips_ = false;
    int exceptions_ = std::uncaught_exceptions();
};

/// A walk over a container and all that stands in it: `for (const auto& at : qvt::walk(hall))`.
inline Walk walk(Container top) { return Walk(std::move(top)); }

}  // namespace qvt
