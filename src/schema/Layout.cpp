#include "schema/Layout.h"

#include <limits>
#include <utility>

namespace norvane::platform::data::Schema {

Layout::Field::Field(std::u16string text, std::uint32_t fieldType, std::uint32_t elements,
                     std::uint32_t bytes)
    : tField{nullptr, fieldType, elements, 0, bytes}, nameText(std::move(text)) {
    name = nameText.c_str();
}

Layout::Layout(std::u16string_view name, Owned<Design::Table> table)
    : name_(name), table_(std::move(table)), hasMembers_(table_->childCount() != 0) {}

metadata::IStructLayout::tField* Layout::field(std::uint32_t index) {
    return index < fields_.size() ? &fields_[index] : nullptr;
}

metadata::IStructLayout::tField* Layout::field(WideString name) {
    Field* const* found = fieldIndex_.find(Record::textOf(name.value()));
    return found ? *found : nullptr;
}

bool Layout::add(std::u16string name, std::uint32_t type, std::uint32_t count, std::uint32_t size) {
    constexpr std::uint32_t kMax = std::numeric_limits<std::uint32_t>::max();
    if (size > kMax - byteSize_ || count > kMax - valueCount_) return false;
    if (fields_.size() == kMostFields) return false;
    Field& field = fields_.emplace_back(std::move(name), type, count, size);
    field.offset = byteSize_;
    fieldIndex_.insert(field.nameText, &field);
    byteSize_ += size;
    valueCount_ += count;
    return true;
}

}  // namespace norvane::platform::data::Schema
