// The binary shape of a type.
#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>

#include "model/Table.h"
#include "norvane/platform/data/metadata/IStructLayout.h"
#include "records/NameMap.h"
#include "records/Owned.h"

namespace norvane::platform::data::Schema {

// The fields of one packed struct value, in order, and the open table that they were read from. It is filled
// by `Flattening` and never changes once the locator has it in its cache: all threads read it without a lock.
class Layout final : public metadata::IStructLayout {
  public:
    // A struct has no more fields than these. An array of structs in a type is one field for each number in
    // it, so that a few bytes of a document can ask for any number of them.
    static constexpr std::size_t kMostFields = 1u << 18;

    struct Field : tField {
        Field(std::u16string text, std::uint32_t fieldType, std::uint32_t elements, std::uint32_t bytes);
        Field(const Field&) = delete;
        Field& operator=(const Field&) = delete;
        virtual ~Field() = default;

        std::u16string nameText;
    };

    // Takes the table over; without fields yet.
    Layout(std::u16string_view name, Owned<Design::Table> table);
    // Closes the table.
    ~Layout() noexcept(false) override = default;

    std::uint32_t fieldCount() override { return static_cast<std::uint32_t>(fields_.size()); }
    std::uint32_t byteSize() override { return packedSize(); }
    std::uint32_t valueCount() override { return valueCount_; }
    tField* field(std::uint32_t index) override;
    tField* field(WideString name) override;

    // The name the type was asked for by.
    const std::u16string& name() const { return name_; }
    const std::deque<Field>& fields() const { return fields_; }
    std::uint32_t packedSize() const { return byteSize_; }
    // Whether the type has any member, be it one without a field.
    bool hasMembers() const { return hasMembers_; }

    // Open as long as the layout is cached.
    Design::Table& table() const { return *table_; }
    bool isOpenOn(const IDataStore* store) const { return table_ && table_->store() == store; }
    // For a layout that must outlive its table: its name and fields stay.
    void closeTable() { table_.reset(); }

    // Adds a field behind the others. False, with nothing added, where the struct would get too large for 32
    // bits or have too many fields.
    bool add(std::u16string name, std::uint32_t type, std::uint32_t count, std::uint32_t size);

  private:
    std::u16string name_;
    Owned<Design::Table> table_;
    std::deque<Field> fields_;  // fields stay where they are: the index and hosts point at them
    NameMap<Field*> fieldIndex_;
    std::uint32_t byteSize_ = 0;
    std::uint32_t valueCount_ = 0;
    bool hasMembers_;
};

}  // namespace norvane::platform::data::Schema
