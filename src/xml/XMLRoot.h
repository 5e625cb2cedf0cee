#pragma once

#include "xml/Element.h"

namespace norvane::platform::data {

// The element of a whole store.
class XMLRoot final : public Element {
  public:
    using Element::Element;

    Owned<Metadata::Item> create(Attributes attributes) override;
    bool takes(Record::Kind child) const override;
    // Tables and containers; nothing here overrides.
    Owned<Metadata::Item> nest(Metadata::Item& parent, Owned<Metadata::Item>& child) override;
    void serialize(Metadata::Item& object, XMLSerializer& serializer) override;
};

}  // namespace norvane::platform::data
