#include "Copies.h"

#include "Stack.h"
#include "norvane/platform/core/storage/datastore/MemoryDataStore.h"
#include "norvane/platform/data/structure/IContainerFrontEnd.h"

namespace qvt {

namespace {

using core::storage::datastore::MemoryDataStore;

constexpr std::uint8_t kOfClass = metadata::kInherited | metadata::kFixed;

// A container in a store of its own, for what is on its way.
SharedPtr<IContainer> placeIn(MemoryDataStore& store) {
    return structure::IContainerFrontEnd::toplevel(&store, u"place");
}

bool add(IContainer& container, const Object& object) {
    return object.container ? container.add(object.container) : container.add(object.property);
}

Object memberOf(IContainer& container, const std::string& name) {
    Object found(container.findProperty(wide(name)));
    return found ? found : Object(container.find(wide(name)));
}

bool rename(const Object& object, const std::string& name) {
    return object.container ? object.container->rename(wide(name)) : object.property->rename(wide(name));
}

// What comes from a table takes its name along, and may bear one that no path can have.
Object firstIn(const SharedPtr<IContainer>& container) {
    Children children(Object(container->find(WideString())));
    return children.isAtEnd() ? Object() : children.take();
}

// By way of another store, where it can get its name without being in anything's way.
void copyIntoContainer(const Object& source, IContainer& parent, const std::string& name) {
    MemoryDataStore store;
    const SharedPtr<IContainer> place = placeIn(store);
    add(*place, source);
    {
        const Object copy = firstIn(place);
        if (copy.property && (flagsOf(copy) & metadata::kFixed) != 0) makeOwn(copy);
        if (nameOf(copy) != name) rename(copy, name);
    }
    add(parent, memberOf(*place->find(WideString()), name));
}

void copyIntoTable(const Tree& tree, const Object& source, const Object& table, const std::string& path) {
    IPrimitive* primitive = source.primitive();
    if (!primitive) throw refused(tree, "only primitives can be copied into a table");
    const PrimitiveContent content(*primitive);
    content.storeTo(*makePrimitive(table, Spot(path).name, content.type(), primitive->units()));
}

}  // namespace

void makeOwn(const Object& object) {
    Stack<Children> open;
    object.property->clearFlags(kOfClass);
    for (open.push(Children(object)); !open.isEmpty();) {
        if (open.top().isAtEnd()) {
            open.pop();
            continue;
        }
        const Object child = open.top().take();
        if (child.property) child.property->clearFlags(kOfClass);
        open.push(Children(child));
    }
}

SharedPtr<IPrimitive> makePrimitive(const Object& parent, const std::string& name, std::uint32_t type,
                                    std::uint32_t unit) {
    if (ITable* table = parent.table()) return table->makePrimitive(wide(name), type, unit);
    if (unit == 0) return parent.container->makePrimitive(wide(name), type);
    MemoryDataStore store;
    const SharedPtr<metadata::ITable> table = placeIn(store)->makeTable(u"table", nullptr);
    table->makePrimitive(wide(name), type, unit);
    parent.container->add(table->find(wide(name)));
    const SharedPtr<IProperty> made = parent.container->findProperty(wide(name));
    return SharedPtr<IPrimitive>(made, IPrimitive::to(made.get()));
}

PrimitiveContent::PrimitiveContent(IPrimitive& primitive)
    : type_(primitive.dataType()),
      flags_(primitive.property()->flags()),
      count_(primitive.count()),
      bytes_(std::size_t{count_} * primitive.elementSize()),
      structType_(primitive.structType()),
      locale_(primitive.locale()),
      uri_(primitive.uri()) {
    primitive.readValues(bytes_.data(), 0, count_);
    IProperty& property = *primitive.property();
    for (std::uint32_t i = 0; i < property.localisedCount(); ++i)
        names_.emplace_back(utf8(property.localeAt(i)), utf8(property.localised(property.localeAt(i))));
}

void PrimitiveContent::storeTo(IPrimitive& primitive) const {
    if (structType_.value()) primitive.setStructType(structType_);
    if (locale_.value()) primitive.setLocale(locale_);
    if (uri_.value()) primitive.setUri(uri_);
    if (count_ != 0) primitive.writeValues(bytes_.data(), 0, count_);
    IProperty& property = *primitive.property();
    property.setFlags(flags_ & metadata::kOptional);
    for (const auto& [locale, text] : names_) property.setLocalised(wide(locale), wide(text));
}

void copyTo(Editing& editing, const Object& source, const std::string& path) {
    Tree& tree = editing.tree();
    const Object parent = parentFor(tree, path);
    if (tree.isRoot(parent) && source.primitive())
        throw refused(tree, "no primitive can stand directly below the root");
    if (parent.table())
        copyIntoTable(tree, source, parent, path);
    else
        copyIntoContainer(source, *parent.container, Spot(path).name);
    touch(tree, Spot(path).parent);
    tree.refresh();
    if (!tree.find(path)) throw refused(tree, "the library takes nothing of the name of " + path);
}

}  // namespace qvt
