#include "xml/NumberList.h"

#include <algorithm>
#include <cstring>

#include "norvane/platform/data/metadata/tDataType.h"
#include "xml/NumberText.h"
#include "xml/NumberTypes.h"
#include "xml/Tokenizer.h"

namespace norvane::platform::data {

// An empty token behind the last white space says nothing.
void NumberList::read(std::string_view text, std::uint32_t type) {
    width_ = metadata::elementSize(type);
    read_ = 0;
    count_ = 0;
    hasGaps_ = false;
    const int index = numberIndex(type);
    const char* at = text.data();
    for (const char* end = at + text.size(); at != end;) {
        takePlain(at, end, index);
        while (at != end && Tokenizer::isSpace(*at)) ++at;
        if (at != end) takeToken(at, end, index);
    }
}

void NumberList::takePlain(const char*& at, const char* end, int index) {
    std::byte* to = roomForOne();
    const std::size_t taken = parsePlainNumbers(at, end, to, elements_.size() / width_ - read_, index);
    if (taken == 0) return;
    read_ += taken;
    count_ = read_;
    if (hasGaps_) isGiven_.resize(read_, 1);
}

void NumberList::takeToken(const char*& at, const char* end, int index) {
    const char* begin = at;
    while (at != end && !Tokenizer::isSpace(*at)) ++at;
    std::byte number[kWidestNumber] = {};
    const bool isNumber = parseNumber(begin, at, number, index);
    if (!isNumber && !hasGaps_) isGiven_.assign(read_, 1);
    hasGaps_ = hasGaps_ || !isNumber;
    std::memcpy(roomForOne(), number, width_);
    ++read_;
    if (isNumber) count_ = read_;
    if (hasGaps_) isGiven_.push_back(isNumber ? 1 : 0);
}

std::byte* NumberList::roomForOne() {
    constexpr std::size_t kFirst = 256;
    const std::size_t used = read_ * width_;
    if (used + width_ > elements_.size()) elements_.resize(std::max(kFirst, elements_.size() * 2));
    return elements_.data() + used;
}

}  // namespace norvane::platform::data
