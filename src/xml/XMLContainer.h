#pragma once

#include "xml/Element.h"

namespace norvane::platform::data {

namespace Schema {
class SchemaLocatorImpl;
}

// The elements of nodes, groups and links.
class XMLContainer final : public Element {
  public:
    // The locator is borrowed and may be null; writing needs none.
    XMLContainer(const tKeyword& keyword, IDataStore* store, metadata::ISchemaLocator* locator);

    Owned<Metadata::Item> create(Attributes attributes) override;
    Owned<Metadata::Item> createIn(Metadata::Set& parent, Attributes attributes) override;
    bool takes(Record::Kind child) const override;
    // Containers, tables and primitives. A container is refused when its name is taken, also by one that came
    // from a class: only properties override.
    Owned<Metadata::Item> nest(Metadata::Item& parent, Owned<Metadata::Item>& child) override;
    void serialize(Metadata::Item& object, XMLSerializer& serializer) override;

  private:
    bool mayHaveClass(Attributes attributes) const;

    metadata::ISchemaLocator* locator_;
    Schema::SchemaLocatorImpl* ownLocator_;  // the same, if it is this library's
    std::u16string name_;                    // of the element that was begun last
};

}  // namespace norvane::platform::data
