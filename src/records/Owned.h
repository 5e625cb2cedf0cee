// An owning pointer whose destructor may throw.
#pragma once

#include <utility>

namespace norvane::platform::data {

// Owns one object that closes itself on a store. `std::unique_ptr` will not do: its destructor is noexcept,
// so a store that fails while an object closes would end the program instead of reaching the host.
template <class T>
class Owned {
  public:
    Owned() = default;
    explicit Owned(T* object) : object_(object) {}
    Owned(Owned&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    template <class U>
    Owned(Owned<U>&& other) noexcept : object_(other.release()) {}
    Owned(const Owned&) = delete;
    Owned& operator=(const Owned&) = delete;
    Owned& operator=(Owned&& other) noexcept(false) {
        reset(other.release());
        return *this;
    }
    ~Owned() noexcept(false) { delete object_; }

    // Takes the new object first, so that it is not lost when closing the old one throws.
    void reset(T* object = nullptr) { delete std::exchange(object_, object); }
    T* release() noexcept { return std::exchange(object_, nullptr); }
    T* get() const noexcept { return object_; }
    T* operator->() const noexcept { return object_; }
    T& operator*() const noexcept { return *object_; }
    explicit operator bool() const noexcept { return object_ != nullptr; }

  private:
    T* object_ = nullptr;
};

// Makes an object that lives in an `Owned`.
template <class T, class... Arguments>
Owned<T> makeOwned(Arguments&&... arguments) {
    return Owned<T>(new T(std::forward<Arguments>(arguments)...));
}

}  // namespace norvane::platform::data
