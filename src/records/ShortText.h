// Names.
#pragma once

#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>

#include "records/View.h"

namespace norvane::platform::data::Record {

// A copy of a text, with a NUL behind it. It needs no memory of its own where it is short, as names are.
class ShortText {
  public:
    ShortText() { few_[0] = 0; }
    ShortText(const ShortText&) = delete;
    ShortText& operator=(const ShortText&) = delete;

    ShortText& operator=(std::u16string_view text) {
        assign(text.data(), text.size());
        return *this;
    }
    // The text up to its first NUL.
    ShortText& operator=(Section section) {
        assign(section.begin, View::unitsOf(section));
        return *this;
    }

    std::u16string_view view() const { return {long_ ? long_.get() : few_, length_}; }

  private:
    static constexpr std::size_t kFew = 24;

    // The source need not be aligned.
    void assign(const void* units, std::size_t length) {
        char16_t* to = few_;
        if (length >= kFew) {
            long_.reset(new char16_t[length + 1]);
            to = long_.get();
        } else {
            long_.reset();
        }
        if (length != 0) std::memcpy(to, units, length * sizeof *to);
        to[length] = 0;
        length_ = length;
    }

    std::size_t length_ = 0;
    std::unique_ptr<char16_t[]> long_;
    char16_t few_[kFew];
};

}  // namespace norvane::platform::data::Record
