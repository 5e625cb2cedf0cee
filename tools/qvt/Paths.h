// A walk over all that is below an object.
#pragma once

#include <string>

#include "Objects.h"
#include "Stack.h"

namespace qvt {

// "a.b" for "a" and "b".
std::string joined(const std::string& path, const std::string& name);

// Goes to each object once, parents ahead of their children, and knows its path. Depth takes no stack of the
// thread's.
class Walk {
  public:
    // `path` is that of the object itself, which the walk does not come to.
    Walk(const Object& top, std::string path);

    // The next object; nothing at the end.
    Object next();
    // Of the object that `next` has given last.
    const std::string& path() const { return path_; }

  private:
    struct Level {
        Children children;
        std::size_t length;  // of the path of what holds them
    };

    std::string path_;
    Object last_;
    Stack<Level> open_;
};

}  // namespace qvt
