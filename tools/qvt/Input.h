// The bytes of one document.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace qvt {

// A document in memory: it is read once, whatever it is (a pipe has no second time), and parsed as often as
// needed.
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

// The outermost element of a document: its name in lower case, its `name` attribute, and where its tag
// begins. All empty if the document has none, being not well-formed.
struct DocumentElement {
    std::string keyword;
    std::string name;
    bool hasName = false;
    std::size_t position = 0;

    // A root that has no name is reported and skipped like any other element.
    bool isRoot() const { return keyword == "root" && hasName; }
};

DocumentElement documentElementOf(std::string_view bytes);

// The document with a group around its outermost element, so that any element can stand for a child of what
// is read into. Of a document in UTF-16 too.
std::string wrappedInGroup(std::string_view bytes, const DocumentElement& element);

}  // namespace qvt
