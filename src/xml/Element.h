// The handlers of the keywords.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "model/Item.h"
#include "model/Set.h"
#include "norvane/platform/core/xml/XMLSerializer.h"
#include "norvane/platform/data/metadata/ISchemaLocator.h"
#include "xml/Attributes.h"
#include "xml/Keywords.h"

namespace norvane::platform::data {

using core::xml::XMLSerializer;

// Knows one keyword: how an object is made from the attributes of a start tag, what may stand in it, what its
// text means, and how it is written again. It drives the objects of the model, not the public handles.
//
// While a document is read there is one handler for each keyword, which serves all elements of that name.
// What it remembers of an open sub-element is never reset by the start of another element: after a
// sub-element that means nothing here, all further ones are refused for the rest of the document.
class Element {
  public:
    Element(const tKeyword& keyword, IDataStore* store) : keyword_(keyword), store_(store) {}
    Element(const Element&) = delete;
    Element& operator=(const Element&) = delete;
    virtual ~Element() = default;

    const tKeyword& keyword() const { return keyword_; }
    // Why the last `create` gave nothing.
    const std::u16string& error() const { return error_; }

    // Makes the object and its record, which nothing lists yet. Null, with nothing made, when the attributes
    // will not do.
    virtual Owned<Metadata::Item> create(Attributes attributes) = 0;

    // Makes the object as a child of an open one that may have it, listed in it already, and not yet counted
    // as open. Null, with nothing made, for an element that takes `create` and `nest`: they say what is wrong
    // with one, and decide where somebody else's code has its say.
    virtual Owned<Metadata::Item> createIn(Metadata::Set& parent, Attributes attributes);
    // Whether records of that kind may stand in such an element.
    virtual bool takes(Record::Kind child) const;

    // Puts a new object under an open one and gives what goes on in its place: the child itself, or the
    // existing object that it overrides. Null when the child may not stand there. The child stays with the
    // caller unless it is the result.
    virtual Owned<Metadata::Item> nest(Metadata::Item& parent, Owned<Metadata::Item>& child);

    // The text of the open sub-element, or else that of the element itself. The object need not be one that
    // this handler has made: a document can be read into a container, whatever its first element is.
    virtual void endContent(Metadata::Item& object, const std::string& text);

    // True if this is a sub-element that may stand here. The name is in lower case.
    virtual bool startSubElement(std::string_view name, Attributes attributes);

    // Writes start tag, attributes, display names and value.
    virtual void serialize(Metadata::Item& object, XMLSerializer& serializer) = 0;

  protected:
    enum class SubElement { none, name, val, defaults };

    // The `name` attribute, or null and an error.
    const char* nameOf(Attributes attributes);
    void startName(Attributes attributes);
    // True if the text was that of a `name`, which the object then has.
    bool takeName(Metadata::Item& object, const std::string& text);

    const tKeyword& keyword_;
    IDataStore* store_;
    std::u16string error_;
    SubElement subElement_ = SubElement::none;

  private:
    std::string subLocale_;
};

// What containers and tables have in common.
std::uint8_t optionalFlag(Attributes attributes);
void markOptional(Metadata::Item& object, Attributes attributes);

// The schema of a class text. Null without a locator, and for schemas that are not of this library.
SharedPtr<metadata::ISchema> locate(metadata::ISchemaLocator* locator, const std::u16string& classText);

// Lists the child under its name. Null when the parent has no children or will not take it.
Owned<Metadata::Item> addTo(Metadata::Item& parent, Owned<Metadata::Item>& child);

// The same for a property, which overrides one that is there with the same name and the same type or class.
Owned<Metadata::Item> addOrOverride(Metadata::Item& parent, Owned<Metadata::Item>& child);

// ASCII that needs no escape, as all words of our own are; a null text is written as an empty one.
void writeWord(XMLSerializer& serializer, std::string_view name, const char* word);

// Gives their number.
std::uint32_t writeDisplayNames(Metadata::Item& object, XMLSerializer& serializer);

}  // namespace norvane::platform::data
