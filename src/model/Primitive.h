// Open primitives: typed values.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "model/Item.h"

namespace norvane::platform::data::Design {

// An open object on a primitive record. The value's bytes are never kept: every operation reads the record.
// `start` and `count` are elements of the type's element size, never bytes.
class Primitive final : public Metadata::Item {
  public:
    // Opens the primitive record there.
    Primitive(IDataStore* store, std::uint32_t offset, Metadata::Opening opening = Metadata::Opening::handle);
    // Appends a new primitive record, which nothing lists yet. The type is not checked and never changes.
    Primitive(IDataStore* store, std::uint32_t dataType, std::u16string_view name);

    // Exactly one object, this one, is open on the record.
    bool isRemovable() override;
    void erase() override;
    std::uint32_t clone(IDataStore* target) override;

    // Name and type are equal; value, units and flags are not looked at.
    bool sameAs(const Primitive& other) const;

    std::uint32_t dataType() const { return dataType_; }
    std::uint32_t elementSize() const;
    // Whole elements of the value; 0 while the value is a URI.
    std::uint32_t count() const;
    // Bytes of the value or of the URI with its NUL, as this object knows them.
    std::uint32_t valueSize() const { return valueSize_; }
    bool hasUri() const { return hasUri_; }
    const std::u16string& uri() const { return uriText_; }
    const std::u16string& structType() const { return structTypeName_; }
    const std::u16string& localeTag() const { return localeText_; }

    // False, with nothing stored, unless the type is struct and the name is a text.
    bool setStructType(const tWChar* name);
    // A text makes the value external; null makes it empty. Either way the value that was there is gone.
    // False only when the record is gone, or does not take the text.
    bool setUri(const tWChar* uri);
    void setUnits(std::uint32_t unitId);
    std::uint32_t units() const;
    // Null takes the tag out. On a struct primitive with a type name that also loses the type name's bytes,
    // while its size stays: the value is then found in another place. Set a text instead of null there.
    void setLocale(const tWChar* tag);
    // Replaces the value by zero elements; keeps nothing of it. False while the value is a URI, when the
    // record does not take so many elements, and when it is gone.
    bool resize(std::uint32_t count);
    // False, with nothing changed, for a count of 0, a URI, a null source, a range that the record does not
    // take, and a record that is gone. A write past the end lengthens the value, with zeros in the gap; none
    // shortens it. Beware: on an empty value with a `start` above 0 the source is taken as the base of the
    // whole array, that is, the elements are read `start` elements behind it. Empty or not is what this
    // object knows: `count` tells.
    bool writeValues(const void* source, std::uint32_t start, std::uint32_t count);
    // All or nothing: `count`, or 0 when any of the range lies past the end.
    std::uint32_t readValues(void* target, std::uint32_t start, std::uint32_t count) const;

    // Lays element i of `elements` over element i of the value wherever `isGiven[i]` is not 0, in one write.
    // The value grows to the last one given; with none given nothing is stored. What element by element
    // writes of the given ones would leave. Throws `TooLarge` where the record does not take it.
    bool overlayValues(const std::byte* elements, const std::vector<unsigned char>& isGiven);

    // Throws `TooLarge` where `resize` refuses for size; for callers that have no result to tell it by.
    void resizeOrThrow(std::uint32_t count);

  private:
    bool takes(const Record::Entity& record, Record::U32 sizeField, std::uint64_t size) const;
    bool storeInPlace(const void* source, std::uint64_t position, std::uint64_t size);
    bool storeInstead(const void* source, std::uint64_t size);
    bool storeAll(const std::byte* elements, std::uint64_t size);
    bool storeBehind(const void* source, std::uint64_t position, std::uint64_t size);
    bool overlayInPlace(const std::byte* elements, const std::vector<unsigned char>& isGiven,
                        std::uint64_t count);
    bool lengthenValue(Record::Entity& record, std::uint64_t size) const;
    static std::byte* valueIn(Record::Entity& record);

    bool hasUri_ = false;
    std::u16string structTypeName_;
    std::u16string uriText_;
    std::uint32_t dataType_ = 0;
    std::uint32_t valueSize_ = 0;
    std::u16string localeText_;
};

}  // namespace norvane::platform::data::Design
