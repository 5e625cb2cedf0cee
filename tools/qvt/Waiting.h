// Objects that wait for the one of the same name on the other side.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>

#include "Objects.h"

namespace qvt {

// An object and where it stood among its siblings.
struct Placed {
    Object object;
    std::uint32_t position = 0;
};

// Found by their keys, and let go in the order in which they came. Unlike the standard containers it lets
// handles throw when they go.
class Waiting {
  public:
    Waiting() = default;
    Waiting(Waiting&& other) noexcept;
    Waiting& operator=(Waiting&&) = delete;
    ~Waiting() noexcept(false) {
        while (first_) delete unlink(first_);
    }

    bool isEmpty() const { return first_ == nullptr; }
    void put(std::string key, Placed placed);
    // The object of a key, no longer waiting; no object if there is none.
    Placed take(std::string_view key);
    // The one that has waited longest. There must be one.
    Placed takeFirst();

  private:
    struct Entry {
        std::string key;
        Placed placed;
        Entry* previous;
        Entry* next;
        ~Entry() noexcept(false) {}
    };

    Entry* unlink(Entry* entry);
    Placed taken(Entry* entry);

    std::unordered_multimap<std::string_view, Entry*> byKey_;  // into the entries
    Entry* first_ = nullptr;
    Entry* last_ = nullptr;
};

}  // namespace qvt
