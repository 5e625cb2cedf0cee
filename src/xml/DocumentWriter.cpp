#include "xml/DocumentWriter.h"

#include <algorithm>

#include "model/Open.h"

namespace norvane::platform::data {
namespace {

Owned<Metadata::Item> openEntity(IDataStore* store, std::uint32_t offset) {
    if (Record::kindOf(store, offset) == static_cast<std::uint8_t>(Record::Kind::root))
        return makeOwned<Metadata::Root>(store, offset);
    return Metadata::openItem(store, offset);
}

// As many as the index has names: of children that share a name, as many of the last ones in the list are
// left out.
std::vector<std::uint32_t> childrenOf(Metadata::Item& object) {
    auto* set = dynamic_cast<Metadata::Set*>(&object);
    if (!set) return {};
    std::vector<std::uint32_t> children = set->children();
    children.resize(std::min<std::size_t>(children.size(), set->childCount()));
    return children;
}

}  // namespace

DocumentWriter::DocumentWriter(IDataStore* store, XMLSerializer& serializer,
                               metadata::ISchemaLocator* locator)
    : store_(store), serializer_(serializer), handlers_(store, locator) {}

// Anything is still open only while an exception is under way, and then closing throws no other.
DocumentWriter::~DocumentWriter() noexcept(false) {
    for (; !levels_.empty(); levels_.pop_back()) delete levels_.back().object;
}

void DocumentWriter::write(std::uint32_t offset) {
    open(offset);
    while (!levels_.empty()) {
        Level& level = levels_.back();
        if (level.next < level.children.size())
            open(level.children[level.next++]);
        else
            close();
    }
}

void DocumentWriter::open(std::uint32_t offset) {
    if (offset == IDataStore::BADOFF) return;
    if (!met_.insert(offset)) return;
    Owned<Metadata::Item> object = openEntity(store_, offset);
    if (!object || object->isInert() || (object->flags() & Record::kInherited) != 0) return;
    Element* handler = handlers_.of(*object);
    if (!handler) return;
    handler->serialize(*object, serializer_);
    levels_.push_back({object.get(), childrenOf(*object), 0});
    object.release();
}

void DocumentWriter::close() {
    serializer_.endElement(false);
    const Owned<Metadata::Item> closing(levels_.back().object);
    levels_.pop_back();
}

}  // namespace norvane::platform::data
