// A stack for walks over trees of any depth.
#pragma once

#include <cstddef>
#include <utility>

namespace qvt {

// Unlike the standard containers it lets its elements throw when they go, as handles do that cannot be
// closed.
template <class T>
class Stack {
  public:
    Stack() = default;
    Stack(const Stack&) = delete;
    Stack& operator=(const Stack&) = delete;
    ~Stack() noexcept(false) {
        while (top_) pop();
    }

    bool isEmpty() const { return top_ == nullptr; }
    std::size_t size() const { return size_; }
    T& top() { return top_->element; }

    void push(T element) {
        top_ = new Level{std::move(element), top_};
        ++size_;
    }

    void pop() {
        Level* level = std::exchange(top_, top_->below);
        --size_;
        delete level;
    }

  private:
    struct Level {
        T element;
        Level* below;
        ~Level() noexcept(false) {}
    };

    Level* top_ = nullptr;
    std::size_t size_ = 0;
};

}  // namespace qvt
