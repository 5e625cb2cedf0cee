// The bytes of one document.
#pragma once

#include <string>
#include <string_view>

namespace qvt {

// A document in memory: whether it is well-formed is known only at its end, and a pipe has no second time.
class Input {
  public:
    // Reads a file, or standard input for "-". What cannot be read is a Failure.
    explicit Input(const std::string& path);

    // As messages name it.
    const std::string& name() const { return name_; }
    const std::string& bytes() const { return bytes_; }

  private:
    std::string name_;
    std::string bytes_;
};

// The name of the outermost element of a document in lower case, as elements are compared. Empty if there is
// none, in a document that is not well-formed.
std::string outermostElement(std::string_view bytes);

}  // namespace qvt
