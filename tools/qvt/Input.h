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

// Whether the outermost element of a document is a root that has a name. One without a name is reported and
// skipped like any other element.
bool isRootDocument(std::string_view bytes);

}  // namespace qvt
