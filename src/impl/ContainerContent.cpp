// The operations of a container that make, test and copy what is in it.
#include <string>
#include <vector>

#include "impl/ContainerFilters.h"
#include "impl/ContainerImpl.h"
#include "impl/DesignPrimitiveImpl.h"
#include "impl/DesignTableImpl.h"
#include "impl/GroupImpl.h"
#include "impl/Handles.h"
#include "impl/Kinds.h"
#include "impl/LinkImpl.h"
#include "impl/Text.h"
#include "model/Open.h"
#include "model/Subtree.h"
#include "norvane/platform/data/structure/ContainerKind.h"
#include "schema/Conformance.h"

namespace norvane::platform::data {

using metadata::ISchema;
using structure::IContainer;

namespace {

// A made node has no facet, one that is found has.
SharedPtr<IContainer> madeHandle(std::uint32_t kind, Owned<Structural::Container> item) {
    if (kind == structure::kNode) return plainHandle(std::move(item));
    if (kind == structure::kGroup) return SharedPtr<GroupImpl>(new GroupImpl(std::move(item)));
    if (kind == structure::kLink) return SharedPtr<LinkImpl>(new LinkImpl(std::move(item)));
    return {};
}

// Both tests on one item. A class text that names too little may still be made up for by the members.
bool conformsTo(ISchema* schema, Metadata::Item& item, std::u16string_view classText, bool classOnly) {
    if (!classText.empty()) {
        if (Schema::matchesClass(schema, classText)) return true;
        if (classOnly) return false;
    }
    return Schema::matchesStructure(schema, item);
}

// A dotted path cut at its last "."; without one the whole is both.
struct Place {
    explicit Place(std::u16string_view path)
        : hasParent(path.rfind(u'.') != path.npos), parent(path), name(path) {
        if (!hasParent) return;
        parent = path.substr(0, path.rfind(u'.'));
        name.remove_prefix(parent.size() + 1);
    }

    bool hasParent;
    std::u16string_view parent;
    std::u16string_view name;
};

void renameCopy(IDataStore* store, std::uint32_t offset, std::u16string_view name) {
    Record::Entity record(store, offset);
    const auto kind = static_cast<Record::Kind>(record.view().kind());
    record.setField(Record::nameSizeField(kind), std::u16string(name).c_str(), Record::storedSize(name));
}

// Copies an entity with all below it, gives the copy its name, and lists it. False only when there was
// nothing to copy: where the name is taken, the copy stays in no set.
bool addCopy(Metadata::Set& parent, IDataStore* source, std::uint32_t offset, std::u16string_view name) {
    IDataStore* target = parent.store();
    const std::uint32_t copy = Metadata::cloneSubtree(source, offset, target);
    if (copy == IDataStore::BADOFF) return false;
    renameCopy(target, copy, name);
    parent.addChild(copy);
    return true;
}

}  // namespace

SharedPtr<metadata::ITable> ContainerImpl::makeTable(WideString name, ISchema* schema) {
    return underGuard(store(), [&]() -> SharedPtr<metadata::ITable> {
        if (item_->find(textOf(name)) != IDataStore::BADOFF) return {};
        return DesignTableImpl::make(*item_, textOf(name), schema);
    });
}

SharedPtr<metadata::IPrimitive> ContainerImpl::makePrimitive(WideString name, std::uint32_t type) {
    return underGuard(store(), [&]() -> SharedPtr<metadata::IPrimitive> {
        if (item_->find(textOf(name)) != IDataStore::BADOFF) return {};
        return DesignPrimitiveImpl::make(*item_, textOf(name), type, 0);
    });
}

SharedPtr<IContainer> ContainerImpl::makeContainer(std::uint32_t kind, WideString name, ISchema* schema) {
    return underGuard(store(), [&]() -> SharedPtr<IContainer> {
        if (item_->find(textOf(name)) != IDataStore::BADOFF) return {};
        const std::uint32_t offset = Structural::Container(store(), kind, textOf(name)).offset();
        item_->addChild(offset);
        auto made = makeOwned<Structural::Container>(store(), offset);
        if (schema) made->importClasses(schema);
        return madeHandle(kind, std::move(made));
    });
}

SharedPtr<metadata::IPropertyFilter> ContainerImpl::properties() {
    return underGuard(store(), [this]() -> SharedPtr<metadata::IPropertyFilter> {
        return SharedPtr<DesignFilter>(new DesignFilter(store(), item_->offset()));
    });
}

SharedPtr<structure::IContainerFilter> ContainerImpl::containers() {
    return underGuard(store(), [this]() -> SharedPtr<structure::IContainerFilter> {
        return SharedPtr<ContainerFilter>(new ContainerFilter(store(), item_->offset()));
    });
}

bool ContainerImpl::conforms(WideString path, ISchema* schema, bool classOnly) {
    return underGuard(store(), [&] {
        const std::uint32_t offset = item_->resolve(textOf(path));
        const std::uint8_t kind = Record::kindOf(store(), offset);
        if (isTable(kind)) {
            Design::Table table(store(), offset, Metadata::Opening::transient);
            return conformsTo(schema, table, table.classText(), classOnly);
        }
        if (!isContainer(kind)) return false;
        Structural::Container container(store(), offset, Metadata::Opening::transient);
        return conformsTo(schema, container, container.classText(), classOnly);
    });
}

bool ContainerImpl::conforms(ISchema* schema, bool classOnly) {
    return underGuard(store(), [&] { return conformsTo(schema, *item_, item_->classText(), classOnly); });
}

// How many children there are to merge, the source's handle says; which, the list in its store. What that
// lost since the handle was opened is passed over.
bool ContainerImpl::merge(SharedPtr<IContainer> source) {
    return underGuard(store(), [&] {
        const auto* given = dynamic_cast<ContainerImpl*>(source.get());
        if (!given) return false;
        IDataStore* from = given->item().store();
        for (const std::uint32_t child : given->item().countedChildren()) {
            if (child == IDataStore::BADOFF) continue;
            if (!Record::isChildKind(Record::kindOf(from, child))) return false;
            const std::u16string name = Record::Snapshot(from, child)->name();
            if (item_->resolve(name) != IDataStore::BADOFF) continue;
            item_->addChild(Metadata::cloneSubtree(from, child, store()));
        }
        return true;
    });
}

bool ContainerImpl::copyTo(IDataStore* destination, WideString path) {
    if (!destination) return false;
    return underGuard(destination, [&] {
        const Place place(textOf(path));
        const std::uint32_t parentOffset = Metadata::resolvePath(destination, 0, place.parent);
        const std::uint8_t kind = Record::kindOf(destination, parentOffset);
        if (!isTable(kind) && !isContainer(kind)) return false;
        return underGuard(store(), [&] {
            const auto parent = Metadata::openSet(destination, parentOffset, Metadata::Opening::transient);
            return addCopy(*parent, store(), item_->offset(), place.name);
        });
    });
}

bool ContainerImpl::copy(WideString source, WideString destination, bool absolute) {
    return underGuard(store(), [&] {
        const Place place(textOf(destination));
        const std::uint32_t original =
            absolute ? Metadata::resolvePath(store(), 0, textOf(source)) : item_->resolve(textOf(source));
        if (!Record::isChildKind(Record::kindOf(store(), original))) return false;
        const std::uint32_t parentOffset = place.hasParent ? item_->resolve(place.parent) : item_->offset();
        if (!isContainer(Record::kindOf(store(), parentOffset))) return false;
        Structural::Container parent(store(), parentOffset, Metadata::Opening::transient);
        if (parent.find(place.name) != IDataStore::BADOFF) return false;
        if (!addCopy(parent, store(), original, place.name)) return false;
        // The child was added through another object on this very record.
        if (!place.hasParent) item_->reloadChildren();
        return true;
    });
}

bool ContainerImpl::add(SharedPtr<IContainer> item) {
    return underGuard(store(), [&] {
        const auto* given = dynamic_cast<ContainerImpl*>(item.get());
        if (!given || item_->resolve(textOf(item->name())) != IDataStore::BADOFF) return false;
        item_->addChild(given->item().clone(store()));
        return true;
    });
}

bool ContainerImpl::add(SharedPtr<metadata::IProperty> item) {
    return underGuard(store(), [&] {
        const auto* given = dynamic_cast<PropertyImpl*>(item.get());
        if (!given || item_->resolve(textOf(item->name())) != IDataStore::BADOFF) return false;
        item_->addChild(given->item().clone(store()));
        return true;
    });
}

}  // namespace norvane::platform::data
