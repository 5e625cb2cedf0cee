// What the tests of the public model share: names, a look at the bytes of records that owes nothing to the
// library, and short forms of common steps.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "norvane/platform/data/metadata/IPrimitive.h"
#include "norvane/platform/data/metadata/IProperty.h"
#include "norvane/platform/data/metadata/IPropertyFilter.h"
#include "norvane/platform/data/metadata/ISchema.h"
#include "norvane/platform/data/metadata/ISchemaLocator.h"
#include "norvane/platform/data/metadata/IStringArray.h"
#include "norvane/platform/data/metadata/ITable.h"
#include "norvane/platform/data/metadata/tDataType.h"
#include "norvane/platform/data/structure/ContainerKind.h"
#include "norvane/platform/data/structure/IContainer.h"
#include "norvane/platform/data/structure/IContainerFilter.h"
#include "norvane/platform/data/structure/IContainerFrontEnd.h"
#include "norvane/platform/data/structure/IGroup.h"
#include "norvane/platform/data/structure/ILink.h"
#include "norvane/platform/data/structure/INode.h"
#include "support/ModelStore.h"
#include "support/WideText.h"

namespace norvane::platform::test {

using core::memory::SharedPtr;
using core::storage::datastore::IDataStore;
using core::string::WideString;
using data::metadata::IPrimitive;
using data::metadata::IProperty;
using data::metadata::IPropertyFilter;
using data::metadata::ISchema;
using data::metadata::ISchemaLocator;
using data::metadata::IStringArray;
using data::metadata::ITable;
using data::metadata::kDouble;
using data::metadata::kInt32;
using data::metadata::kString;
using data::metadata::kStruct;
using data::structure::IContainer;
using data::structure::IContainerFilter;
using data::structure::IContainerFrontEnd;
using data::structure::IGroup;
using data::structure::ILink;
using data::structure::INode;
using data::structure::kGroup;
using data::structure::kLink;
using data::structure::kNode;

constexpr std::uint32_t kMeter = 0x2001;

using Offset = std::uint32_t;

inline Offset noRecord() { return IDataStore::BADOFF; }

// The bytes of one record, empty if there is none.
class RawRecord {
  public:
    RawRecord(IDataStore& store, Offset offset) {
        if (offset == noRecord() || store.recordSize(offset) == 0) return;
        bytes_.resize(store.recordSize(offset));
        store.read(offset, bytes_.data(), 0xFFFFFFFFu);
    }

    std::size_t size() const { return bytes_.size(); }
    int kind() const { return bytes_.empty() ? -1 : bytes_[0]; }
    bool isEntity() const { return kind() == 0 || kind() == 1 || kind() == 2 || kind() == 4; }
    const std::vector<unsigned char>& bytes() const { return bytes_; }

    std::uint8_t byteAt(std::size_t position) const { return bytes_.at(position); }
    std::uint32_t at(std::size_t position) const {
        std::uint32_t value = 0;
        for (std::size_t i = 4; i-- > 0;) value = value << 8 | bytes_.at(position + i);
        return value;
    }

    Offset parent() const { return at(1); }
    std::uint32_t openCount() const { return at(5); }
    Offset locale() const { return at(9); }
    std::uint8_t flags() const { return byteAt(13); }
    Offset children() const { return kind() == 1 ? noRecord() : at(14); }

    std::u16string name() const {
        switch (kind()) {
            case 0:
                return textAt(22, at(18));
            case 1:
                return textAt(42 + at(26), at(30));
            case 2:
                return textAt(34, at(26));
            case 4:
                return textAt(31, at(19));
            default:
                return {};
        }
    }

    std::u16string textAt(std::size_t position, std::size_t size) const {
        std::u16string text;
        for (; size >= 2; size -= 2, position += 2) {
            const auto unit = static_cast<char16_t>(bytes_.at(position) | bytes_.at(position + 1) << 8);
            if (unit == 0) break;
            text += unit;
        }
        return text;
    }

    std::vector<Offset> values() const {
        std::vector<Offset> values;
        for (std::size_t position = 1; position + 4 <= size(); position += 4) values.push_back(at(position));
        return values;
    }

  private:
    std::vector<unsigned char> bytes_;
};

// Bytes as they are written down, `kNone` standing for the four of the offset of no record.
constexpr int kNone = -1;

inline std::vector<unsigned char> bytesWith(std::initializer_list<int> parts) {
    std::vector<unsigned char> bytes;
    for (const int part : parts)
        if (part == kNone)
            for (int i = 0; i < 4; ++i) bytes.push_back(static_cast<unsigned char>(noRecord() >> 8 * i));
        else
            bytes.push_back(static_cast<unsigned char>(part));
    return bytes;
}

inline std::vector<Offset> childrenOf(IDataStore& store, Offset offset) {
    const RawRecord entity(store, offset);
    return entity.isEntity() ? RawRecord(store, entity.children()).values() : std::vector<Offset>();
}

// The record at the end of a path whose parts are joined by "/", so that names may hold dots.
inline Offset recordAt(IDataStore& store, std::u16string_view path) {
    Offset current = 0;
    while (!path.empty()) {
        const std::u16string_view part = path.substr(0, path.find(u'/'));
        path.remove_prefix(part.size() == path.size() ? part.size() : part.size() + 1);
        Offset next = noRecord();
        for (Offset child : childrenOf(store, current))
            if (next == noRecord() && RawRecord(store, child).name() == part) next = child;
        if (next == noRecord()) return next;
        current = next;
    }
    return current;
}

inline RawRecord record(IDataStore& store, std::u16string_view path) {
    return {store, recordAt(store, path)};
}

inline std::vector<std::u16string> namesIn(IDataStore& store, std::u16string_view path) {
    std::vector<std::u16string> names;
    for (Offset child : childrenOf(store, recordAt(store, path)))
        names.push_back(RawRecord(store, child).name());
    return names;
}

// How often entities are open, over the whole store.
inline std::uint64_t openCountsOf(IDataStore& store) {
    std::uint64_t sum = 0;
    for (Offset offset = 0; offset < store.size(); ++offset) {
        const RawRecord each(store, offset);
        if (each.isEntity()) sum += each.openCount();
    }
    return sum;
}

// All records with their bytes, to compare before and after.
using Contents = std::vector<std::vector<unsigned char>>;

inline Contents contentsOf(IDataStore& store) {
    Contents contents;
    for (Offset offset = 0; offset < store.size(); ++offset)
        contents.push_back(RawRecord(store, offset).bytes());
    return contents;
}

// The same without the counts of what is open.
inline Contents closedContentsOf(IDataStore& store) {
    Contents contents;
    for (Offset offset = 0; offset < store.size(); ++offset) {
        const RawRecord record(store, offset);
        contents.push_back(record.bytes());
        if (record.isEntity()) std::fill_n(contents.back().begin() + 5, 4, static_cast<unsigned char>(0));
    }
    return contents;
}

inline void overwrite(IDataStore& store, Offset offset, std::size_t position, std::uint64_t value,
                      std::size_t width) {
    std::vector<unsigned char> bytes = RawRecord(store, offset).bytes();
    for (std::size_t i = 0; i < width; ++i)
        bytes.at(position + i) = static_cast<unsigned char>(value >> 8 * i);
    store.write(offset, bytes.data(), static_cast<std::uint32_t>(bytes.size()), true);
}

inline std::u16string textOf(const WideString& text) { return std::u16string(text.view()); }

inline std::vector<std::u16string> namesOf(IPropertyFilter& filter) {
    std::vector<std::u16string> names;
    for (auto each = filter.value(); each; filter.next(), each = filter.value())
        names.push_back(textOf(each->name()));
    return names;
}

inline std::vector<std::u16string> namesOf(IContainerFilter& filter) {
    std::vector<std::u16string> names;
    for (auto each = filter.value(); each; filter.next(), each = filter.value())
        names.push_back(textOf(each->name()));
    return names;
}

using Names = std::vector<std::u16string>;

template <class T>
std::vector<T> valuesOf(IPrimitive& primitive) {
    std::vector<T> values(primitive.count());
    EXPECT_TRUE(values.empty() || primitive.readValues(values.data(), 0, primitive.count()));
    return values;
}

template <class T>
bool write(IPrimitive& primitive, std::vector<T> values, std::uint32_t start = 0) {
    return primitive.writeValues(values.data(), start, static_cast<std::uint32_t>(values.size()));
}

// A store of its own. Its destructor may throw by declaration only.
class StoreTest : public ::testing::Test {
  protected:
    ~StoreTest() noexcept override = default;

    ModelStore store;
};

// A store with a top-level group called "top" and a handle on it.
class ModelTest : public StoreTest {
  protected:
    ~ModelTest() noexcept override = default;

    SharedPtr<IContainer> makeGroup(IContainer& parent, const char16_t* name) {
        return parent.makeContainer(kGroup, name, nullptr);
    }

    SharedPtr<IContainer> top = IContainerFrontEnd::toplevel(&store, u"top");
};

}  // namespace norvane::platform::test
