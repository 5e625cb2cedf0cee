#pragma once

#include "model/Table.h"
#include "xml/Element.h"

namespace norvane::platform::data {

// The element of tables, with their defaults.
class XMLTable final : public Element {
  public:
    // The locator is borrowed and may be null; writing needs none.
    XMLTable(const tKeyword& keyword, IDataStore* store, metadata::ISchemaLocator* locator)
        : Element(keyword, store), locator_(locator) {}

    Owned<Metadata::Item> create(Attributes attributes) override;
    bool takes(Record::Kind child) const override;
    // Primitives and tables.
    Owned<Metadata::Item> nest(Metadata::Item& parent, Owned<Metadata::Item>& child) override;
    void endContent(Metadata::Item& object, const std::string& text) override;
    bool startSubElement(std::string_view name, Attributes attributes) override;
    void serialize(Metadata::Item& object, XMLSerializer& serializer) override;

  private:
    bool startDefault(Attributes attributes);

    std::string defaultUnitName_;
    std::string defaultTypeName_;
    metadata::ISchemaLocator* locator_;
};

}  // namespace norvane::platform::data
