#include "xml/DocumentWriter.h"

#include <algorithm>

#include "model/Container.h"
#include "model/Open.h"
#include "model/Primitive.h"

namespace norvane::platform::data {
namespace {

bool isKind(std::uint8_t byte, Record::Kind kind) { return byte == static_cast<std::uint8_t>(kind); }

// Whether an object is written at all: not if it is damaged, or came from a class and was not changed.
bool isWritten(const Metadata::Item& object) {
    return !object.isInert() && (object.flags() & Record::kInherited) == 0;
}

// As many as there are names: of children that share a name, as many of the last ones in the list are left
// out.
std::vector<std::uint32_t> childrenOf(Metadata::Set& set) {
    std::vector<std::uint32_t> children = set.children();
    if (!children.empty()) children.resize(std::min<std::size_t>(children.size(), set.childCount()));
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
    if (offset == IDataStore::BADOFF || !met_.insert(offset)) return;
    const std::uint8_t kind = Record::kindOf(store_, offset);
    if (isKind(kind, Record::Kind::primitive))
        writePrimitive(offset);
    else if (Owned<Metadata::Set> set = Metadata::openSet(store_, offset))
        enter(std::move(set), static_cast<Record::Kind>(kind));
}

// Nothing stands below it, so that it need not wait for its end.
void DocumentWriter::writePrimitive(std::uint32_t offset) {
    Design::Primitive primitive(store_, offset);
    if (!isWritten(primitive)) return;
    Element* handler = handlers_.of(Record::Kind::primitive, primitive.dataType());
    if (!handler) return;
    handler->serialize(primitive, serializer_);
    serializer_.endElement(false);
}

void DocumentWriter::enter(Owned<Metadata::Set> set, Record::Kind kind) {
    if (!isWritten(*set)) return;
    const bool isContainer = kind == Record::Kind::container;
    Element* handler =
        handlers_.of(kind, isContainer ? static_cast<const Structural::Container&>(*set).kind() : 0);
    if (!handler) return;
    handler->serialize(*set, serializer_);
    levels_.push_back({set.get(), childrenOf(*set), 0});
    set.release();
}

void DocumentWriter::close() {
    serializer_.endElement(false);
    const Owned<Metadata::Set> closing(levels_.back().object);
    levels_.pop_back();
}

}  // namespace norvane::platform::data
