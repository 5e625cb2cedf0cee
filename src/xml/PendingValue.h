// A value element between its tags.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "model/Primitive.h"
#include "model/Set.h"
#include "xml/Attributes.h"
#include "xml/Keywords.h"
#include "xml/NumberList.h"

namespace norvane::platform::data {

// Most value elements are a start tag, a text and an end tag, and are not there before any of them. Such a
// one waits here for its end, when its record is made whole and stored at once, without an open object.
// Whoever cannot wait (another element comes, or somebody else is to look at the store) opens it.
//
// Its memory serves one element after the other.
class PendingValue {
  public:
    explicit operator bool() const { return parent_ != nullptr; }

    // False, with nothing changed, for an element that takes more than this: the parent has no room for it,
    // or it says more of itself than name, units and dimension.
    bool begin(Metadata::Set& parent, const tKeyword& keyword, Attributes attributes);
    // Stores it with its text. False, with nothing changed, when the record would not take that.
    bool end(const std::string& text);
    // Stores it without a text; gives the object, which is open.
    Owned<Metadata::Item> open();

  private:
    bool take(Attributes attributes);
    std::size_t readText(const std::string& text);
    std::size_t valueSizeOf(const std::string& text);
    void lay(std::byte* value, std::size_t size);
    std::uint32_t store(std::size_t valueSize, std::size_t writtenSize);

    Metadata::Set* parent_ = nullptr;  // null while nothing is pending
    std::uint32_t type_ = 0;
    std::uint32_t presetCount_ = 0;
    std::uint32_t units_ = 0;
    std::u16string name_;

    // What was read last: bytes, unless it was numbers.
    NumberList numbers_;
    std::u16string text_;
    std::string bytes_;
};

}  // namespace norvane::platform::data
