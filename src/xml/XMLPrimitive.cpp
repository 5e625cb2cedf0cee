#include "xml/XMLPrimitive.h"

#include <utility>

#include "xml/UnitTable.h"
#include "xml/ValueReader.h"
#include "xml/ValueWriter.h"

namespace norvane::platform::data {
namespace {

void describe(Design::Primitive& primitive, Attributes attributes) {
    const char* uri = findAttribute("uri", attributes);
    if (uri && !primitive.setUri(decode(uri).c_str())) throw TooLarge();
    if (const char* locale = findAttribute("locale", attributes)) primitive.setLocale(decode(locale).c_str());
    if (const char* units = findAttribute("units", attributes)) primitive.setUnits(unitIdOf(units));
}

}  // namespace

Owned<Metadata::Item> XMLPrimitive::create(Attributes attributes) {
    const char* name = nameOf(attributes);
    if (!name) return {};
    const char* structType = isStruct() ? structTypeOf(attributes) : nullptr;
    if (isStruct() && !structType) return {};
    auto primitive = makeOwned<Design::Primitive>(store_, keyword().detail, decode(name));
    describe(*primitive, attributes);
    size(*primitive, presetCount(keyword().detail, findAttribute("dim", attributes)), structType);
    return primitive;
}

// The `type` attribute, or null and an error.
const char* XMLPrimitive::structTypeOf(Attributes attributes) {
    const char* type = findAttribute("type", attributes);
    if (!type)
        error_ = u"missing mandatory 'type' attribute for <struct>";
    else if (!locator_)
        error_ = u"missing locator to resolve the 'type' attribute";
    return locator_ ? type : nullptr;
}

void XMLPrimitive::size(Design::Primitive& primitive, std::uint32_t count, const char* structType) {
    if (structType)
        sizeStructs(primitive, count, decode(structType));
    else if (count != 0)
        primitive.resizeOrThrow(count);
}

// A type that is not found leaves the value without type and size.
void XMLPrimitive::sizeStructs(Design::Primitive& primitive, std::uint32_t count,
                               const std::u16string& type) {
    const SharedPtr<metadata::ISchema> schema = locate(locator_, type);
    if (!schema) {
        error_ = u"unable to resolve type schema '" + type + u"'";
        return;
    }
    primitive.setStructType(type.c_str());
    if (count != 0 && !primitive.hasUri())
        primitive.resizeOrThrow(Record::checkedSize(std::uint64_t{count} * schema->layout()->byteSize()));
}

void XMLPrimitive::endContent(Metadata::Item& object, const std::string& text) {
    if (takeName(object, text)) return;
    const bool isVal = std::exchange(subElement_, SubElement::none) == SubElement::val;
    auto* primitive = dynamic_cast<Design::Primitive*>(&object);
    if (!primitive || primitive->hasUri()) return;
    const std::uint32_t type = keyword().detail;
    if (isStruct())
        readStructs(*primitive, text, locate(locator_, primitive->structType()));
    else if (type == metadata::kBinary)
        readBinary(*primitive, text);
    else if (metadata::isTextType(type))
        readText(*primitive, text, isVal ? primitive->count() : 0);
    else
        readNumbers(*primitive, text);
}

void XMLPrimitive::serialize(Metadata::Item& object, XMLSerializer& serializer) {
    const auto& primitive = static_cast<const Design::Primitive&>(object);
    serializer.startPlainElement(keyword().name);
    serializer.addTextAttribute("name", primitive.name());
    if (const std::uint32_t units = primitive.units()) writeWord(serializer, "units", unitNameOf(units));
    if (!primitive.localeTag().empty()) serializer.addTextAttribute("locale", primitive.localeTag());
    if (isStruct()) serializer.addTextAttribute("type", primitive.structType());
    if (primitive.hasUri()) serializer.addTextAttribute("uri", primitive.uri());
    const bool hasNames = writeDisplayNames(object, serializer) != 0;
    writeValue(primitive, serializer, hasNames, locator_);
}

}  // namespace norvane::platform::data
