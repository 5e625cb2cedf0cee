// The members of the model's classes that read layouts.
#include "model/Container.h"
#include "model/Table.h"
#include "records/StoreGuard.h"
#include "schema/SchemaImpl.h"

namespace norvane::platform::data {

namespace field = Record::field;

namespace {

void addName(std::u16string& classText, const std::u16string& name) {
    if (!classText.empty()) classText += u';';
    classText += name;
}

// The members that the layout's object knew of when it was opened, in the order of the list as it is now.
void importMembers(Metadata::Set& set, Design::Table& type) {
    for (std::uint32_t member : type.countedChildren()) set.importChild(type.store(), member);
}

}  // namespace

bool Structural::Container::importClasses(metadata::ISchema* schema) {
    const auto* known = Schema::SchemaImpl::of(schema);
    if (!known || isInert()) return false;
    for (const Schema::Layout* layout : known->layouts()) {
        addName(classText_, layout->name());
        const StoreGuard guard(layout->table().store());
        importMembers(*this, layout->table());
    }
    Record::Entity(store(), offset())
        .setField(field::classTextSize, classText_.c_str(), Record::storedSize(classText_));
    return true;
}

bool Design::Table::applySchema(const metadata::ISchema* schema) {
    const auto* known = Schema::SchemaImpl::of(schema);
    if (!known || isInert()) return false;
    for (const Schema::Layout* layout : known->layouts()) {
        addName(tableClass_, layout->name());
        importMembers(*this, layout->table());
    }
    Record::Entity(store(), offset())
        .setField(field::tableClassSize, tableClass_.c_str(), Record::storedSize(tableClass_));
    return true;
}

}  // namespace norvane::platform::data
