#include "xml/Element.h"

#include "model/Open.h"
#include "model/Primitive.h"
#include "model/Table.h"
#include "schema/SchemaImpl.h"

namespace norvane::platform::data {

using metadata::ISchema;
using metadata::ISchemaLocator;

Owned<Metadata::Item> Element::createIn(Metadata::Set&, Attributes) { return {}; }

bool Element::takes(Record::Kind) const { return false; }

Owned<Metadata::Item> Element::nest(Metadata::Item&, Owned<Metadata::Item>&) {
    error_ = u"unable to nest";
    return {};
}

void Element::endContent(Metadata::Item& object, const std::string& text) { takeName(object, text); }

bool Element::startSubElement(std::string_view name, Attributes attributes) {
    if (subElement_ != SubElement::none) return false;
    if (name == "val") {
        subElement_ = SubElement::val;
        return true;
    }
    if (name != "name") return false;
    startName(attributes);
    return true;
}

const char* Element::nameOf(Attributes attributes) {
    const char* name = findAttribute("name", attributes);
    if (!name) error_ = u"missing mandatory 'id' attribute";
    return name;
}

void Element::startName(Attributes attributes) {
    const char* locale = findAttribute("locale", attributes);
    subLocale_ = locale ? locale : "en-us";
    subElement_ = SubElement::name;
}

bool Element::takeName(Metadata::Item& object, const std::string& text) {
    if (subElement_ != SubElement::name) return false;
    object.setLocalised(decode(text).c_str(), decode(subLocale_).c_str());
    subElement_ = SubElement::none;
    return true;
}

std::uint8_t optionalFlag(Attributes attributes) {
    const char* optional = findAttribute("optional", attributes);
    return optional && std::string_view(optional) == "true" ? Record::kOptional : std::uint8_t{0};
}

void markOptional(Metadata::Item& object, Attributes attributes) {
    if (const std::uint8_t flag = optionalFlag(attributes)) object.setFlags(flag);
}

SharedPtr<ISchema> locate(ISchemaLocator* locator, const std::u16string& classText) {
    if (!locator) return {};
    SharedPtr<ISchema> schema = locator->locate(WideString(classText.c_str()));
    return Schema::SchemaImpl::of(schema.get()) ? schema : SharedPtr<ISchema>();
}

Owned<Metadata::Item> addTo(Metadata::Item& parent, Owned<Metadata::Item>& child) {
    auto* set = dynamic_cast<Metadata::Set*>(&parent);
    return set && set->addChild(child->offset()) ? std::move(child) : Owned<Metadata::Item>();
}

namespace {

template <class T>
bool areSame(const Metadata::Item& existing, const Metadata::Item& child) {
    const auto* left = dynamic_cast<const T*>(&existing);
    const auto* right = dynamic_cast<const T*>(&child);
    return left && right && left->sameAs(*right);
}

Owned<Metadata::Item> existingLike(const Metadata::Item& child, IDataStore* store, std::uint32_t offset) {
    if (Record::kindOf(store, offset) != Record::kindOf(child.store(), child.offset())) return {};
    Owned<Metadata::Item> existing = Metadata::openItem(store, offset);
    if (!existing) return {};
    if (!areSame<Design::Primitive>(*existing, child) && !areSame<Design::Table>(*existing, child)) return {};
    existing->touch();
    return existing;
}

}  // namespace

Owned<Metadata::Item> addOrOverride(Metadata::Item& parent, Owned<Metadata::Item>& child) {
    auto* set = dynamic_cast<Metadata::Set*>(&parent);
    if (!set) return {};
    const std::uint32_t existing = set->find(child->name());
    if (existing != IDataStore::BADOFF) return existingLike(*child, set->store(), existing);
    set->addChild(child->offset());
    return std::move(child);
}

void writeWord(XMLSerializer& serializer, std::string_view name, const char* word) {
    serializer.addPlainAttribute(name, word ? word : "");
}

std::uint32_t writeDisplayNames(Metadata::Item& object, XMLSerializer& serializer) {
    const std::uint32_t count = object.localisedCount();
    for (std::uint32_t i = 0; i < count; ++i) {
        serializer.startPlainElement("name");
        serializer.addTextAttribute("locale", object.localeAt(i));
        serializer.addCharacterData(object.textAt(i).c_str());
        serializer.endElement(false);
    }
    return count;
}

}  // namespace norvane::platform::data
