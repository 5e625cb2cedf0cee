// Texts that name several types.
#pragma once

#include <string_view>

namespace norvane::platform::data::Schema {

// The pieces of a class text one after the other: what stands between the ";". The piece behind the last one
// counts too, so that the empty text has one piece, an empty one. The text must stay where it is.
class ClassText {
  public:
    ClassText() = default;  // no text, no pieces
    explicit ClassText(std::u16string_view text) : rest_(text), isDone_(false) {}

    bool hasNext() const { return !isDone_; }
    std::u16string_view next() {
        const std::size_t end = rest_.find(u';');
        const std::u16string_view piece = rest_.substr(0, end);
        isDone_ = end == rest_.npos;
        if (!isDone_) rest_.remove_prefix(end + 1);
        return piece;
    }

  private:
    std::u16string_view rest_;
    bool isDone_ = true;
};

}  // namespace norvane::platform::data::Schema
