#include "schema/Flattening.h"

#include <charconv>

#include "norvane/platform/data/metadata/tDataType.h"

namespace norvane::platform::data::Schema {

namespace field = Record::field;

namespace {

void appendIndex(std::u16string& text, std::uint32_t index) {
    char digits[10];
    char* end = std::to_chars(std::begin(digits), std::end(digits), index).ptr;
    text += u'[';
    text.append(std::begin(digits), end);
    text += u']';
}

}  // namespace

Flattening::Flattening(Layout& layout) : layout_(layout), store_(layout.table().store()) {
    met_.insert(layout.table().offset());
    levels_.push_back({layout.table().countedChildren(), 0, 0});
}

bool Flattening::advance() {
    while (!levels_.empty()) {
        Level& level = levels_.back();
        if (level.next == level.members.size())
            leave();
        else if (visit(level.members[level.next++]))
            return true;
    }
    return false;
}

// True for a struct member whose type is to be looked up.
bool Flattening::visit(std::uint32_t offset) {
    const Record::Snapshot member(store_, offset);
    if (member->isWhole(Record::Kind::table)) enter(offset);
    if (!member->isWhole(Record::Kind::primitive)) return false;
    if (member->load(field::dataType) != metadata::kStruct) {
        addPrimitive(*member);
        return false;
    }
    structName_ = member->name();
    structType_ = member->text(field::structTypeSize);
    structBytes_ = member->section(field::valueSize).size;
    return !structType_.empty();
}

void Flattening::enter(std::uint32_t offset) {
    if (!met_.insert(offset)) return;
    Design::Table table(store_, offset, Metadata::Opening::transient);
    levels_.push_back({table.countedChildren(), 0, prefix_.size()});
    prefix_.append(table.name()).push_back(u'.');
}

void Flattening::leave() {
    prefix_.resize(levels_.back().outerPrefix);
    levels_.pop_back();
}

void Flattening::addPrimitive(const Record::View& member) {
    const std::uint32_t type = member.load(field::dataType);
    const std::uint32_t size = member.section(field::valueSize).size;
    const std::uint32_t elementSize = metadata::elementSize(type);
    const bool hasUri = (member.load(field::flags) & Record::kHasUri) != 0;
    if (hasUri)
        add(member.name(), type, 0, size);
    else if (elementSize != 0)
        add(member.name(), type, size / elementSize, size);
}

void Flattening::unroll(const Layout* type) {
    const std::uint32_t count = type && type->packedSize() != 0 ? structBytes_ / type->packedSize() : 0;
    const std::size_t outerPrefix = prefix_.size();
    for (std::uint32_t i = 0; i < count && !levels_.empty(); ++i) {
        prefix_ += structName_;
        if (count > 1) appendIndex(prefix_, i);
        prefix_ += u'.';
        for (const Layout::Field& each : type->fields()) add(each.nameText, each.type, each.count, each.size);
        prefix_.resize(outerPrefix);
    }
}

// A struct that grows too large ends here: no later member may take the place of the one that did not fit.
void Flattening::add(std::u16string_view name, std::uint32_t type, std::uint32_t count, std::uint32_t size) {
    if (!levels_.empty() && !layout_.add(prefix_ + std::u16string(name), type, count, size)) levels_.clear();
}

}  // namespace norvane::platform::data::Schema
