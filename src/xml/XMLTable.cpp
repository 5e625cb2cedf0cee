#include "xml/XMLTable.h"

#include "xml/DefaultTypeNames.h"
#include "xml/UnitTable.h"

namespace norvane::platform::data {

Owned<Metadata::Item> XMLTable::create(Attributes attributes) {
    const char* name = nameOf(attributes);
    if (!name) return {};
    auto table = makeOwned<Design::Table>(store_, decode(name));
    markOptional(*table, attributes);
    if (const char* classText = findAttribute("class", attributes))
        if (const auto schema = locate(locator_, decode(classText))) table->applySchema(schema.get());
    return table;
}

bool XMLTable::takes(Record::Kind child) const {
    return child == Record::Kind::primitive || child == Record::Kind::table;
}

Owned<Metadata::Item> XMLTable::nest(Metadata::Item& parent, Owned<Metadata::Item>& child) {
    switch (Record::kindOf(store_, child->offset())) {
        case static_cast<std::uint8_t>(Record::Kind::primitive):
        case static_cast<std::uint8_t>(Record::Kind::table):
            return addOrOverride(parent, child);
        default:
            return {};
    }
}

void XMLTable::endContent(Metadata::Item& object, const std::string& text) {
    if (takeName(object, text) || subElement_ != SubElement::defaults) return;
    const std::uint32_t type = defaultTypeOf(defaultTypeName_.c_str());
    if (type == 0) return;  // and so no sub-element of any table is taken any more
    if (auto* table = dynamic_cast<Design::Table*>(&object))
        table->addDefault(unitIdOf(defaultUnitName_.c_str()), type);
    subElement_ = SubElement::none;
}

bool XMLTable::startSubElement(std::string_view name, Attributes attributes) {
    if (subElement_ != SubElement::none) return false;
    if (name == "default") return startDefault(attributes);
    if (name != "name") return false;
    startName(attributes);
    return true;
}

bool XMLTable::startDefault(Attributes attributes) {
    const char* unit = findAttribute("unit", attributes);
    const char* type = findAttribute("type", attributes);
    if (!unit || !type) return false;
    defaultUnitName_ = unit;
    defaultTypeName_ = type;
    subElement_ = SubElement::defaults;
    return true;
}

void XMLTable::serialize(Metadata::Item& object, XMLSerializer& serializer) {
    const auto& table = static_cast<const Design::Table&>(object);
    serializer.startPlainElement(keyword().name);
    serializer.addTextAttribute("name", table.name());
    serializer.addTextAttribute("class", table.classText());
    for (const std::int32_t key : table.defaultKeys()) {
        serializer.startPlainElement("default");
        writeWord(serializer, "unit", unitNameOf(table.defaultUnit(key)));
        if (const char* type = defaultTypeNameOf(table.defaultType(key))) writeWord(serializer, "type", type);
        serializer.endElement(false);
    }
    writeDisplayNames(object, serializer);
}

}  // namespace norvane::platform::data
