#pragma once

#include "model/Primitive.h"
#include "xml/Element.h"

namespace norvane::platform::data {

// The elements of values, one for each data type.
class XMLPrimitive final : public Element {
  public:
    // The locator is borrowed and may be null; only structs need it.
    XMLPrimitive(const tKeyword& keyword, IDataStore* store, metadata::ISchemaLocator* locator)
        : Element(keyword, store), locator_(locator) {}

    Owned<Metadata::Item> create(Attributes attributes) override;
    // The text of the element replaces from the start; so does that of a `val`, except that texts are added
    // at the end. A value behind a URI takes none.
    void endContent(Metadata::Item& object, const std::string& text) override;
    void serialize(Metadata::Item& object, XMLSerializer& serializer) override;

  private:
    bool isStruct() const { return keyword().detail == metadata::kStruct; }
    const char* structTypeOf(Attributes attributes);
    void size(Design::Primitive& primitive, std::uint32_t count, const char* structType);
    void sizeStructs(Design::Primitive& primitive, std::uint32_t count, const std::u16string& type);

    metadata::ISchemaLocator* locator_;
};

}  // namespace norvane::platform::data
