#include "xml/XMLContainer.h"

#include "model/Container.h"
#include "schema/SchemaLocatorImpl.h"

namespace norvane::platform::data {

XMLContainer::XMLContainer(const tKeyword& keyword, IDataStore* store, metadata::ISchemaLocator* locator)
    : Element(keyword, store),
      locator_(locator),
      ownLocator_(dynamic_cast<Schema::SchemaLocatorImpl*>(locator)) {}

Owned<Metadata::Item> XMLContainer::create(Attributes attributes) {
    const char* name = nameOf(attributes);
    if (!name) return {};
    auto container = makeOwned<Structural::Container>(store_, keyword().detail, decode(name));
    markOptional(*container, attributes);
    if (const char* classText = findAttribute("class", attributes))
        if (const auto schema = locate(locator_, decode(classText))) container->importClasses(schema.get());
    const char* target = findAttribute("to", attributes);
    if (target && container->kind() == structure::kLink) container->setLinkTarget(decode(target).c_str());
    return container;
}

// A class that is found has its say before its object is listed.
Owned<Metadata::Item> XMLContainer::createIn(Metadata::Set& parent, Attributes attributes) {
    const char* name = findAttribute("name", attributes);
    if (!name || mayHaveClass(attributes)) return {};
    name_.clear();
    core::string::StringAlgorithm::UTF8Decode(name, name_);
    if (!parent.hasRoomFor(name_)) return {};
    const bool isLink = keyword().detail == structure::kLink;
    const char* target = isLink ? findAttribute("to", attributes) : nullptr;
    return makeOwned<Structural::Container>(parent, keyword().detail, name_, optionalFlag(attributes),
                                            target ? decode(target).c_str() : nullptr);
}

// Objects without a class are written with an empty one, of which there is none unless a table has no name.
// It is looked for ahead of the object: a store that fails at that leaves no record behind.
bool XMLContainer::mayHaveClass(Attributes attributes) const {
    const char* classText = locator_ ? findAttribute("class", attributes) : nullptr;
    return classText && (*classText != '\0' || !ownLocator_ || ownLocator_->knows({}));
}

bool XMLContainer::takes(Record::Kind child) const { return child != Record::Kind::root; }

Owned<Metadata::Item> XMLContainer::nest(Metadata::Item& parent, Owned<Metadata::Item>& child) {
    switch (Record::kindOf(store_, child->offset())) {
        case static_cast<std::uint8_t>(Record::Kind::container):
            return addTo(parent, child);
        case static_cast<std::uint8_t>(Record::Kind::primitive):
        case static_cast<std::uint8_t>(Record::Kind::table):
            return addOrOverride(parent, child);
        default:
            return {};
    }
}

void XMLContainer::serialize(Metadata::Item& object, XMLSerializer& serializer) {
    const auto& container = static_cast<const Structural::Container&>(object);
    serializer.startPlainElement(keyword().name);
    serializer.addTextAttribute("name", container.name());
    serializer.addTextAttribute("class", container.classText());
    if (container.kind() == structure::kLink) serializer.addTextAttribute("to", container.linkTarget());
    writeDisplayNames(object, serializer);
}

}  // namespace norvane::platform::data
