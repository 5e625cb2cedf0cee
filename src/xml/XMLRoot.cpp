#include "xml/XMLRoot.h"

#include "xml/NumberText.h"
#include "xml/NumberTypes.h"

namespace norvane::platform::data {

Owned<Metadata::Item> XMLRoot::create(Attributes attributes) {
    const char* name = nameOf(attributes);
    if (!name) return {};
    if (const char* text = findAttribute("version", attributes)) {
        std::uint32_t version = 0;  // stays so when the text is no number
        parseNumber(text, &version, numberIndex(metadata::kUint32));
        store_->setVersion(version);
    }
    return makeOwned<Metadata::Root>(store_, decode(name));
}

bool XMLRoot::takes(Record::Kind child) const {
    return child == Record::Kind::table || child == Record::Kind::container;
}

Owned<Metadata::Item> XMLRoot::nest(Metadata::Item& parent, Owned<Metadata::Item>& child) {
    const std::uint8_t kind = Record::kindOf(store_, child->offset());
    const bool mayStandHere = kind == static_cast<std::uint8_t>(Record::Kind::table) ||
                              kind == static_cast<std::uint8_t>(Record::Kind::container);
    return mayStandHere ? addTo(parent, child) : Owned<Metadata::Item>();
}

void XMLRoot::serialize(Metadata::Item& object, XMLSerializer& serializer) {
    const std::uint32_t version = store_->version();
    char text[kNumberTextSize];
    const std::size_t length = formatNumber(&version, text, numberIndex(metadata::kUint32));
    serializer.startPlainElement(keyword().name);
    serializer.addPlainAttribute("version", {text, length});
    serializer.addTextAttribute("name", object.name());
    writeDisplayNames(object, serializer);
}

}  // namespace norvane::platform::data
