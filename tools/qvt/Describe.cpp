#include "Describe.h"

#include <nlohmann/json.hpp>

#include "Units.h"

namespace qvt {

namespace {

constexpr std::uint32_t kMostNumbers = 16;  // a 4x4 matrix
constexpr std::uint32_t kMostUnits = 256;   // shows more characters than are printed, and the next text
constexpr std::size_t kMostCharacters = 60;

std::string shortTexts(const Value& value) {
    const std::vector<std::string> texts = value.texts();
    if (texts.empty()) return "";
    const std::string first = inQuotesCut(texts.front(), kMostCharacters);
    return texts.size() == 1 ? first : first + " " + ellipsis();
}

std::string shortStruct(const Value& value) {
    if (value.structsHere() == 0) return "";
    const std::vector<std::string> fields = value.fieldNames();
    std::string text;
    for (std::uint32_t i = 0; i < fields.size() && text.size() < 2 * kMostCharacters; ++i)
        text += (i == 0 ? "" : "; ") + fields[i] + " " + value.field(0, i);
    const std::string more = value.structCount() == 1 ? ""
                                                      : std::string(" ") + ellipsis() + " (" +
                                                            std::to_string(value.structCount()) + ")";
    return "{" + printable(text) + "}" + more;
}

std::string shortValue(const Value& value) {
    switch (value.form()) {
        case Value::Form::numbers:
            return value.numbers() +
                   (value.isCut() ? std::string(" ") + ellipsis() + " (" + std::to_string(value.count()) + ")"
                                  : "");
        case Value::Form::texts:
            return shortTexts(value);
        case Value::Form::structs:
            return shortStruct(value);
        case Value::Form::bytes:
            break;
    }
    return std::to_string(value.count()) + " bytes";
}

}  // namespace

Json orNull(const std::string& text) { return text.empty() ? Json() : Json(text); }

Json factsOf(const Object& object, ObjectsView& view) {
    const bool isRoot = view.hasRoot() && view.isRoot(object);
    Json facts{
        {"kind", isRoot ? "root" : kindOf(object)}, {"name", isRoot ? view.rootName() : nameOf(object)},
        {"class", orNull(classOf(object))},         {"type", orNull(typeOf(object))},
        {"unit", orNull(unitOf(object))},           {"inherited", isInherited(object)},
        {"overridden", isOverridden(object)}};
    if (facts["kind"] == "link") facts["target"] = targetOf(object);
    return facts;
}

Json factsAt(const std::string& path, const Object& object, ObjectsView& view) {
    Json facts{{"path", path}};
    facts.update(factsOf(object, view));
    return facts;
}

void addValue(Json& facts, const Object& object, ISchemaLocator* locator) {
    IPrimitive* primitive = object.primitive();
    facts["locale"] = primitive ? orNull(utf8(primitive->locale())) : Json();
    facts["uri"] = primitive ? orNull(utf8(primitive->uri())) : Json();
    facts["count"] = primitive ? Json(primitive->count()) : Json();
    facts["value"] = valueJson(object, locator);
}

Json valueJson(const Object& object, ISchemaLocator* locator) {
    IPrimitive* primitive = object.primitive();
    return primitive && !primitive->uri().value() ? Value(*primitive, locator).json() : Json();
}

std::vector<Default> defaultsOf(const Object& object) {
    std::vector<Default> defaults;
    ITable* table = object.table();
    const std::uint32_t count = table ? table->defaultCount() : 0;
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::uint32_t key = table->defaultDimension(i);
        defaults.push_back(
            {dimensionName(key), unitName(table->defaultUnit(key)), typeName(table->defaultType(key))});
    }
    return defaults;
}

Json defaultsJson(const Object& object) {
    Json defaults = Json::array();
    for (const Default& each : defaultsOf(object))
        defaults.push_back({{"dimension", each.dimension}, {"unit", each.unit}, {"type", each.type}});
    return defaults;
}

std::string shortValueOf(IPrimitive& primitive, ISchemaLocator* locator) {
    if (primitive.uri().value()) return "<" + printable(utf8(primitive.uri())) + ">";
    const bool isText = metadata::isTextType(primitive.dataType());
    return shortValue(Value(primitive, locator, isText ? kMostUnits : kMostNumbers));
}

void warnOfMissingLayout(const Object& object, Session& session) {
    IPrimitive* primitive = object.primitive();
    if (!primitive || primitive->uri().value() || primitive->count() == 0) return;
    if (Value(*primitive, session.locator(), 0).isWithoutLayout())
        session.messages().warn(session.name() + ": warning: class " + utf8(primitive->structType()) +
                                " is not known, the struct is printed as Base64 (--schemas STORE says where "
                                "to look)");
}

std::string Line::of(const Object& object) const {
    if (view_.hasRoot() && view_.isRoot(object))
        return palette_.name(printable(view_.rootName())) + ": " + palette_.type("root") + ", version " +
               std::to_string(view_.version());
    return head(object) + value(object) + remark(object);
}

std::string Line::head(const Object& object) const {
    return palette_.name(printable(nameOf(object))) + ": " + kind(object);
}

std::string Line::kind(const Object& object) const {
    const std::string classText = classOf(object);
    return palette_.type(object.primitive() ? typeOf(object) : kindOf(object)) +
           (classText.empty() ? "" : " [" + palette_.classText(printable(classText)) + "]");
}

std::string Line::value(const Object& object) const {
    IPrimitive* primitive = object.primitive();
    if (primitive && hasValues_) {
        const std::string value = shortValueOf(*primitive, view_.locator());
        const std::string unit = printable(unitOf(object));
        return (value.empty() ? "" : " = " + value) + (unit.empty() ? "" : " " + palette_.unit(unit));
    }
    const std::string target = targetOf(object);
    return target.empty() ? "" : " -> " + printable(target);
}

std::string Line::remark(const Object& object) const {
    if (isInherited(object)) return palette_.faint(" (inherited)");
    return isOverridden(object) ? palette_.faint(" (overridden)") : "";
}

}  // namespace qvt
