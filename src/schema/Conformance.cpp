#include "schema/Conformance.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "model/Open.h"
#include "records/OffsetSet.h"
#include "schema/ClassText.h"
#include "schema/SchemaImpl.h"

namespace norvane::platform::data::Schema {

namespace field = Record::field;

namespace {

constexpr auto kPrimitive = static_cast<std::uint8_t>(Record::Kind::primitive);
constexpr auto kTable = static_cast<std::uint8_t>(Record::Kind::table);
constexpr auto kContainer = static_cast<std::uint8_t>(Record::Kind::container);

// Where a walk stands among the children of one record.
struct WalkEntry {
    WalkEntry(IDataStore* store, std::uint32_t record) : recordKind(Record::kindOf(store, record)) {
        if (recordKind == kTable || recordKind == kContainer)
            children = Metadata::openSet(store, record, Metadata::Opening::transient)->countedChildren();
    }

    bool isDone() const { return position >= children.size(); }
    std::uint32_t child() const { return children[position]; }

    std::uint8_t recordKind;
    std::vector<std::uint32_t> children;
    std::size_t position = 0;
};

// A member of a type, as much of it as counts.
struct Member {
    explicit Member(const Record::View& record)
        : recordKind(record.kind()), name(record.name()), dataType(record.load(field::dataType)) {}

    bool isMatchedBy(const Record::View& child) const {
        return child.kind() == recordKind && child.hasName(name) &&
               (recordKind != kPrimitive || child.load(field::dataType) == dataType);
    }

    std::uint8_t recordKind;
    std::u16string name;
    std::uint32_t dataType;
};

// Compares an item with one type. Each level of nesting pushes one entry on both stacks; one member without a
// match, at any depth, answers the whole.
class SchemaWalker {
  public:
    SchemaWalker(IDataStore* itemStore, IDataStore* typeStore)
        : itemStore_(itemStore), typeStore_(typeStore) {}

    bool matches(std::uint32_t item, std::uint32_t type) {
        if (!enter(item, type)) return false;
        while (!types_.empty()) {
            if (types_.back().isDone())
                leave();
            else if (!matchMember(types_.back().child()))
                return false;
        }
        return true;
    }

  private:
    // A damaged type can hold a table twice or below itself. What cannot be walked once is not satisfied.
    bool enter(std::uint32_t item, std::uint32_t type) {
        if (!met_.insert(type)) return false;
        items_.emplace_back(itemStore_, item);
        types_.emplace_back(typeStore_, type);
        return types_.back().recordKind == kTable;
    }

    void leave() {
        items_.pop_back();
        types_.pop_back();
        if (!types_.empty()) passMatch();
    }

    bool matchMember(std::uint32_t offset) {
        const Member member(*Record::Snapshot(typeStore_, offset));
        if (member.recordKind != kPrimitive && member.recordKind != kTable) return false;
        WalkEntry& item = items_.back();
        while (!item.isDone() && !member.isMatchedBy(*Record::Snapshot(itemStore_, item.child())))
            ++item.position;
        if (item.isDone()) return false;
        if (member.recordKind == kTable) return enter(item.child(), offset);
        passMatch();
        return true;
    }

    // A table's matched child stays available to the next member, a container's does not: keep it so.
    void passMatch() {
        if (items_.back().recordKind == kContainer) ++items_.back().position;
        ++types_.back().position;
    }

    IDataStore* itemStore_;
    IDataStore* typeStore_;
    std::vector<WalkEntry> items_;
    std::vector<WalkEntry> types_;
    Record::OffsetSet met_;
};

}  // namespace

bool matchesClass(const metadata::ISchema* schema, std::u16string_view classText) {
    const SchemaImpl* known = SchemaImpl::of(schema);
    if (!known) return false;
    std::vector<std::u16string_view> names;
    for (ClassText pieces(classText); pieces.hasNext();) names.push_back(pieces.next());
    std::sort(names.begin(), names.end());
    return std::all_of(known->layouts().begin(), known->layouts().end(), [&names](const Layout* layout) {
        return std::binary_search(names.begin(), names.end(), layout->name());
    });
}

bool matchesStructure(const metadata::ISchema* schema, const Metadata::Item& item) {
    const SchemaImpl* known = SchemaImpl::of(schema);
    if (!known || known->isBlank()) return false;
    return std::all_of(known->layouts().begin(), known->layouts().end(), [&item](const Layout* layout) {
        const Design::Table& type = layout->table();
        return SchemaWalker(item.store(), type.store()).matches(item.offset(), type.offset());
    });
}

}  // namespace norvane::platform::data::Schema
