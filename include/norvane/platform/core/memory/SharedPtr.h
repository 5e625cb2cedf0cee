#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

#include "norvane/platform/core/Export.h"

namespace norvane::platform::core::memory {

/// Counts the references to one object, the pointee, and deletes it with the last of them.
///
/// Two counts: the strong references keep the pointee, the weak ones keep the counter itself. All strong
/// references together hold one weak one. Slots keep this order, new ones go last.
class QVT_CORE_API IPointerCounter {
  public:
    /// Adds a weak reference.
    virtual void addWeak() = 0;
    /// Takes one weak reference away. The last one ends the counter through `destroy`.
    virtual void releaseWeak() = 0;
    /// The number of weak references; all strong ones together count as one.
    virtual std::int64_t weakCount() = 0;

    /// Adds a strong reference. False if the pointee is gone; nothing was added then.
    virtual bool addStrong() = 0;
    /// Takes one strong reference away. The last one disposes of the pointee, and what its destructor throws
    /// comes out here; the counter is released all the same.
    virtual void releaseStrong() = 0;
    /// The number of strong references; 0 once the pointee is gone.
    virtual std::int64_t strongCount() = 0;

    virtual ~IPointerCounter() = default;

    /// Deletes the counter.
    virtual void destroy() = 0;
    /// Deletes the pointee.
    virtual void dispose() = 0;
};

/// The counter that `SharedPtr` uses, less the pointee. Safe from all threads.
class QVT_CORE_API DefaultPointerCounterImp : public IPointerCounter {
  public:
    /// An object that a counter may own beside its pointee and that goes with it.
    struct QVT_CORE_API IOwned {
        /// Never called; it keeps its slot.
        virtual void retained() = 0;
        virtual ~IOwned() noexcept(false) {}
    };

    void addWeak() override { weak_.fetch_add(1); }

    // Where there is no other reference, nobody can add one.
    void releaseWeak() override {
        if (weak_.load() == 1 || weak_.fetch_sub(1) == 1) destroy();
    }

    std::int64_t weakCount() override { return static_cast<std::int64_t>(weak_.load()); }

    bool addStrong() override {
        std::uint64_t seen = strong_.load();
        while (seen != kDisposed)
            if (strong_.compare_exchange_weak(seen, seen + 1)) return true;
        return false;
    }

    // The last reference goes in one step with the pointee: a count that stood at 0 in between could be
    // raised by a weak holder, who would then end the counter under this thread. For the same reason nobody
    // looks at the counter again who has taken away a reference that was not the last.
    void releaseStrong() override {
        std::uint64_t seen = strong_.load();
        while (!strong_.compare_exchange_weak(seen, seen == 1 ? kDisposed : seen - 1)) {
        }
        if (seen != 1) return;
        const WeakRelease releaseAtEnd{*this};
        dispose();
    }

    std::int64_t strongCount() override {
        const std::uint64_t strong = strong_.load();
        return strong == kDisposed ? 0 : static_cast<std::int64_t>(strong);
    }

    void destroy() override { delete this; }
    void dispose() override { delete owned_; }

    /// Gives a counter that nobody else knows yet its first strong reference, and the weak one of all those.
    void begin() noexcept {
        weak_.store(1, std::memory_order_relaxed);
        strong_.store(1, std::memory_order_relaxed);
    }

  protected:
    /// The weak references.
    std::atomic<std::uint64_t> weak_{0};
    /// The strong references, or the mark that the pointee is gone.
    std::atomic<std::uint64_t> strong_{0};
    /// What `dispose` deletes; null in the counters that `SharedPtr` makes, which have their pointee.
    IOwned* owned_ = nullptr;

  private:
    static constexpr std::uint64_t kDisposed = ~std::uint64_t{0};

    struct WeakRelease {
        DefaultPointerCounterImp& counter;
        ~WeakRelease() { counter.releaseWeak(); }
    };
};

namespace _Private::_Counter {

/// The counter of a pointee of type T.
template <typename T>
struct _CounterImp : DefaultPointerCounterImp {
    explicit _CounterImp(T* object) : pointee(object) {}
    void dispose() override { delete pointee; }

    T* pointee;
};

}  // namespace _Private::_Counter

/// Shares the ownership of an object: it is deleted when the last SharedPtr to it goes, on the thread where
/// that happens. A null one has neither pointer nor counter. Different SharedPtrs to one object may be used
/// from different threads; one SharedPtr may not.
///
/// Objects of this system write to their store when they are deleted and may throw there. So the destructor,
/// `reset` and the assignments may throw, after the SharedPtr has let go of the object. Keep no SharedPtr to
/// such an object in a standard container, whose own destructors end the program on an exception.
template <typename T>
class SharedPtr {
  public:
    SharedPtr() noexcept : pointer_(nullptr), counter_(nullptr) {}
    /// A null one.
    SharedPtr(std::nullptr_t) noexcept : SharedPtr() {}

    /// Takes the object over; nothing else may own it. If there is no memory for the counter, the object is
    /// deleted and `std::bad_alloc` thrown.
    explicit SharedPtr(T* object) : pointer_(object), counter_(object ? makeCounter(object) : nullptr) {}

    /// Another owner of the same object.
    SharedPtr(const SharedPtr& other) noexcept : pointer_(other.pointer_), counter_(other.counter_) { add(); }
    /// Takes the place of `other`, which becomes null.
    SharedPtr(SharedPtr&& other) noexcept
        : pointer_(std::exchange(other.pointer_, nullptr)),
          counter_(std::exchange(other.counter_, nullptr)) {}

    /// From a SharedPtr to a derived class.
    template <typename U, typename = std::enable_if_t<std::is_convertible_v<U*, T*>>>
    SharedPtr(const SharedPtr<U>& other) noexcept : pointer_(other.pointer_), counter_(other.counter_) {
        add();
    }
    /// From a SharedPtr to a derived class, which becomes null.
    template <typename U, typename = std::enable_if_t<std::is_convertible_v<U*, T*>>>
    SharedPtr(SharedPtr<U>&& other) noexcept
        : pointer_(std::exchange(other.pointer_, nullptr)),
          counter_(std::exchange(other.counter_, nullptr)) {}

    /// Shares the ownership that `owner` has, and points at another face of the same object. Null if either
    /// is null.
    template <typename U>
    SharedPtr(const SharedPtr<U>& owner, T* face) noexcept : SharedPtr() {
        if (!owner.counter_ || !face) return;
        pointer_ = face;
        counter_ = owner.counter_;
        add();
    }

    ~SharedPtr() noexcept(false) {
        if (counter_) std::exchange(counter_, nullptr)->releaseStrong();
    }

    /// Lets its own object go, and owns that of `other` as well.
    SharedPtr& operator=(const SharedPtr& other) noexcept(false) {
        SharedPtr(other).swap(*this);
        return *this;
    }
    /// Lets its own object go, and takes the place of `other`.
    SharedPtr& operator=(SharedPtr&& other) noexcept(false) {
        SharedPtr(std::move(other)).swap(*this);
        return *this;
    }

    /// The object, borrowed. Null for a null one.
    T* get() const noexcept { return pointer_; }
    /// The object, which there must be.
    T* operator->() const noexcept { return pointer_; }
    /// The object, which there must be.
    T& operator*() const noexcept { return *pointer_; }
    /// True if it is not null.
    explicit operator bool() const noexcept { return pointer_ != nullptr; }

    /// Lets the object go, and becomes null.
    void reset() { SharedPtr().swap(*this); }
    /// Lets the object go, and takes over another one.
    void reset(T* object) { SharedPtr(object).swap(*this); }
    /// Exchanges the objects of both.
    void swap(SharedPtr& other) noexcept {
        std::swap(pointer_, other.pointer_);
        std::swap(counter_, other.counter_);
    }

  private:
    template <typename U>
    friend class SharedPtr;

    // Not from PooledHeap: a counter may outlive everything else of the object's library.
    static IPointerCounter* makeCounter(T* object) {
        DefaultPointerCounterImp* counter = nullptr;
        try {
            counter = ::new _Private::_Counter::_CounterImp<T>(object);
        } catch (...) {
            delete object;
            throw;
        }
        counter->begin();
        return counter;
    }

    void add() noexcept {
        if (counter_) counter_->addStrong();
    }

    T* pointer_;
    IPointerCounter* counter_;
};

/// Two SharedPtrs are equal when they point at the same address.
template <typename T, typename U>
bool operator==(const SharedPtr<T>& left, const SharedPtr<U>& right) noexcept {
    return left.get() == right.get();
}
/// Two SharedPtrs differ when they point at different addresses.
template <typename T, typename U>
bool operator!=(const SharedPtr<T>& left, const SharedPtr<U>& right) noexcept {
    return !(left == right);
}
/// True if it is null.
template <typename T>
bool operator==(const SharedPtr<T>& left, std::nullptr_t) noexcept {
    return !left;
}
/// True if it is null.
template <typename T>
bool operator==(std::nullptr_t, const SharedPtr<T>& right) noexcept {
    return !right;
}
/// True if it is not null.
template <typename T>
bool operator!=(const SharedPtr<T>& left, std::nullptr_t) noexcept {
    return static_cast<bool>(left);
}
/// True if it is not null.
template <typename T>
bool operator!=(std::nullptr_t, const SharedPtr<T>& right) noexcept {
    return static_cast<bool>(right);
}

}  // namespace norvane::platform::core::memory
