#include "impl/DesignTableImpl.h"

#include "impl/DesignPrimitiveImpl.h"
#include "impl/Handles.h"
#include "impl/Kinds.h"
#include "impl/Text.h"
#include "schema/Conformance.h"

namespace norvane::platform::data {

using metadata::IPrimitive;
using metadata::IProperty;
using metadata::IPropertyFilter;
using metadata::ITable;

SharedPtr<ITable> DesignTableImpl::make(Metadata::Set& parent, std::u16string_view name,
                                        const metadata::ISchema* schema) {
    const std::uint32_t offset = Design::Table(parent.store(), name).offset();
    parent.addChild(offset);
    auto made = makeOwned<Design::Table>(parent.store(), offset);
    if (schema) made->applySchema(schema);
    return SharedPtr<DesignTableImpl>(new DesignTableImpl(std::move(made)));
}

SharedPtr<IProperty> DesignTableImpl::find(WideString path) {
    return underGuard(store(), [&] { return propertyHandle(store(), table().resolve(textOf(path))); });
}

SharedPtr<IPropertyFilter> DesignTableImpl::properties() {
    return underGuard(store(), [this]() -> SharedPtr<IPropertyFilter> {
        return SharedPtr<DesignFilter>(new DesignFilter(store(), table().offset()));
    });
}

bool DesignTableImpl::conforms(metadata::ISchema* schema) {
    return underGuard(store(), [&] {
        const std::u16string& names = table().classText();
        return (!names.empty() && Schema::matchesClass(schema, names)) ||
               Schema::matchesStructure(schema, table());
    });
}

SharedPtr<IPrimitive> DesignTableImpl::makeByDimension(WideString name, std::uint32_t key) {
    return underGuard(store(), [&]() -> SharedPtr<IPrimitive> {
        const std::uint32_t type = defaultType(key);
        if (type == 0) return {};
        return makePrimitive(name, type, defaultUnit(key));
    });
}

SharedPtr<IPrimitive> DesignTableImpl::makePrimitive(WideString name, std::uint32_t type,
                                                     std::uint32_t unit) {
    return underGuard(store(), [&]() -> SharedPtr<IPrimitive> {
        if (table().resolve(textOf(name)) != IDataStore::BADOFF) return {};
        return DesignPrimitiveImpl::make(table(), textOf(name), type, unit);
    });
}

SharedPtr<ITable> DesignTableImpl::makeTable(WideString name, metadata::ISchema* schema) {
    return underGuard(store(), [&]() -> SharedPtr<ITable> {
        if (table().resolve(textOf(name)) != IDataStore::BADOFF) return {};
        return make(table(), textOf(name), schema);
    });
}

bool DesignTableImpl::remove(WideString name) {
    return underGuard(store(), [&] { return table().removeChild(textOf(name)); });
}

std::uint32_t DesignTableImpl::count() {
    return underGuard(store(), [this] { return table().childCount(); });
}

SharedPtr<IProperty> DesignTableImpl::at(std::uint32_t index) {
    return underGuard(store(), [&] { return propertyHandle(store(), table().childAt(index)); });
}

bool DesignTableImpl::addDefault(std::uint32_t unit, std::uint32_t type) {
    return underGuard(store(), [&] { return table().addDefault(unit, type); });
}

std::uint32_t DesignTableImpl::defaultCount() {
    return underGuard(store(), [this] { return static_cast<std::uint32_t>(table().defaultKeys().size()); });
}

std::uint32_t DesignTableImpl::defaultDimension(std::uint32_t index) {
    return underGuard(store(), [&] {
        const std::vector<std::int32_t> keys = table().defaultKeys();
        return index < keys.size() ? static_cast<std::uint32_t>(keys[index]) : 0u;
    });
}

// One level up and no further.
std::uint32_t DesignTableImpl::ownOrParents(std::uint32_t (Design::Table::*ask)(std::int32_t) const,
                                            std::uint32_t key) {
    return underGuard(store(), [&] {
        const std::uint32_t own = (table().*ask)(static_cast<std::int32_t>(key));
        if (own != 0 || !isTable(Record::kindOf(store(), table().parent()))) return own;
        const Design::Table parent(store(), table().parent(), Metadata::Opening::transient);
        return (parent.*ask)(static_cast<std::int32_t>(key));
    });
}

std::uint32_t DesignTableImpl::defaultType(std::uint32_t key) {
    return ownOrParents(&Design::Table::defaultType, key);
}

std::uint32_t DesignTableImpl::defaultUnit(std::uint32_t key) {
    return ownOrParents(&Design::Table::defaultUnit, key);
}

WideString DesignTableImpl::className() {
    return underGuard(store(), [this] { return wideOrNone(table().classText()); });
}

DesignTableImpl::DesignFilter::DesignFilter(IDataStore* store, std::uint32_t table) : store_(store) {
    underGuard(store_, [&] {
        table_.reset(new Design::Table(store_, table));
        limit_ = table_->childCount();
        skipForward();
    });
}

bool DesignTableImpl::DesignFilter::next() {
    if (cursor_ >= limit_) return false;
    ++cursor_;
    return skipForward();
}

bool DesignTableImpl::DesignFilter::previous() {
    if (limit_ == 0 || cursor_ == 0) return false;
    const std::uint32_t start = cursor_--;
    if (skipBackward()) return true;
    cursor_ = start;
    return false;
}

SharedPtr<IProperty> DesignTableImpl::DesignFilter::value() {
    return underGuard(store_, [this]() -> SharedPtr<IProperty> {
        if (cursor_ >= limit_) return {};
        return propertyHandle(store_, table_->childAt(cursor_));
    });
}

bool DesignTableImpl::DesignFilter::isAtProperty() {
    return isProperty(Record::kindOf(store_, table_->childAt(cursor_)));
}

bool DesignTableImpl::DesignFilter::skipForward() {
    return underGuard(store_, [this] {
        while (cursor_ < limit_ && !isAtProperty()) ++cursor_;
        return cursor_ < limit_;
    });
}

bool DesignTableImpl::DesignFilter::skipBackward() {
    return underGuard(store_, [this] {
        while (cursor_ > 0 && !isAtProperty()) --cursor_;
        return isAtProperty();
    });
}

}  // namespace norvane::platform::data
