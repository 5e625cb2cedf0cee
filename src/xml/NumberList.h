// The numbers of a text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace norvane::platform::data {

// What a text says of the elements of a value, one token an element, from the first on. Its memory serves the
// next text as well.
class NumberList {
  public:
    // Of a numeric type. Forgets the text before.
    void read(std::string_view text, std::uint32_t type);

    // Up to the last token that is a number.
    std::size_t count() const { return count_; }
    // One behind the other, with zeros in the place of tokens that are no numbers.
    const std::byte* elements() const { return elements_.data(); }
    // Which ones are numbers: not 0 there.
    const std::vector<unsigned char>& isGiven() {
        if (!hasGaps_) isGiven_.assign(count_, 1);
        return isGiven_;
    }

  private:
    void takePlain(const char*& at, const char* end, int index);
    void takeToken(const char*& at, const char* end, int index);
    std::byte* roomForOne();

    std::size_t width_ = 0;
    std::size_t read_ = 0;
    std::size_t count_ = 0;
    bool hasGaps_ = false;
    std::vector<std::byte> elements_;  // as many as there is room for
    std::vector<unsigned char> isGiven_;
};

}  // namespace norvane::platform::data
