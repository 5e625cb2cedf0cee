// qvt show STORE [PATH]
#include <nlohmann/json.hpp>

#include "Describe.h"
#include "Output.h"
#include "Table.h"
#include "Verbs.h"
#include "norvane/platform/data/structure/ILink.h"

namespace qvt {

namespace {

using structure::ILink;

std::vector<std::string> flagWords(std::uint8_t flags) {
    std::vector<std::string> words;
    if (flags & metadata::kOptional) words.emplace_back("optional");
    if (flags & metadata::kFixed) words.emplace_back("fixed");
    if (flags & metadata::kInherited) words.emplace_back("inherited");
    if (flags & metadata::kHasUri) words.emplace_back("uri");
    return words;
}

std::uint32_t childCount(const Object& object) {
    std::uint32_t count = 0;
    for (Children children(object); !children.isAtEnd(); ++count) children.take();
    return count;
}

Object targetObject(const Object& object) {
    ILink* link = ILink::to(object.container.get());
    return link ? Object(link->resolve(nullptr)) : Object();
}

class AsJson {
  public:
    AsJson(ObjectsView& view, const Object& object) : view_(view), object_(object) {}

    std::string text() {
        Json answer = factsAt(view_.pathOf(object_), object_, view_);
        answer["names"] = Json::object();
        for (const auto& [locale, text] : displayNamesOf(object_)) answer["names"][locale] = text;
        answer["flags"] = flagWords(flagsOf(object_));
        addValue(answer, object_, view_.locator());
        addSizes(answer);
        addLink(answer);
        addDefaults(answer);
        if (answer["kind"] == "root") answer["version"] = view_.version();
        return dumped(answer, 2) + "\n";
    }

  private:
    void addSizes(Json& answer) {
        IPrimitive* primitive = object_.primitive();
        answer["bytes"] = primitive ? Json(primitive->valueBytes()) : Json();
        if (!primitive) answer["count"] = childCount(object_);
    }

    void addLink(Json& answer) {
        if (answer["kind"] != "link") return;
        const Object target = targetObject(object_);
        answer["resolves"] = static_cast<bool>(target);
    }

    void addDefaults(Json& answer) {
        if (!object_.table()) return;
        answer["defaults"] = defaultsJson(object_);
    }

    ObjectsView& view_;
    const Object& object_;
};

class AsText {
  public:
    AsText(ObjectsView& view, const Object& object) : view_(view), object_(object) {}

    std::string text() {
        const Json facts = factsOf(object_, view_);
        add("path", view_.pathOf(object_));
        for (const char* fact : {"kind", "name", "type", "class"})
            if (facts[fact].is_string()) add(fact, facts[fact]);
        if (facts["kind"] == "root") add("version", std::to_string(view_.version()));
        for (const auto& [locale, text] : displayNamesOf(object_)) add("name " + printable(locale), text);
        addFlags();
        if (IPrimitive* primitive = object_.primitive())
            addPrimitive(*primitive);
        else
            addSet(facts["kind"] == "link");
        return table_.text();
    }

  private:
    void add(const std::string& label, const std::string& text) {
        if (!text.empty()) table_.add({label, printable(text)});
    }

    void addFlags() {
        std::string words;
        for (const std::string& word : flagWords(flagsOf(object_)))
            words += (words.empty() ? "" : ", ") + word;
        add("flags", isOverridden(object_) ? words + " (overridden)" : words);
    }

    void addSet(bool isLink) {
        for (const Default& each : defaultsOf(object_))
            add("default", each.dimension + ": " + each.type + " in " + each.unit);
        add("children", std::to_string(childCount(object_)));
        if (isLink) addTarget();
    }

    void addTarget() {
        add("target", targetOf(object_));
        const Object target = targetObject(object_);
        const std::string classText = target ? classOf(target) : "";
        const std::string found = target ? "a " + kindOf(target) : "nothing";
        add("leads to", found + (classText.empty() ? "" : " [" + classText + "]"));
    }

    void addPrimitive(IPrimitive& primitive) {
        add("unit", unitOf(object_));
        add("locale", utf8(primitive.locale()));
        add("uri", utf8(primitive.uri()));
        add("count", std::to_string(primitive.count()));
        if (!primitive.uri().value()) addValue(Value(primitive, view_.locator()));
    }

    void addValue(const Value& value) {
        switch (value.form()) {
            case Value::Form::numbers:
                return add("value", value.numbers());
            case Value::Form::bytes:
                return add("value", value.base64());
            case Value::Form::texts:
                for (const std::string& text : value.texts()) table_.add({"value", inQuotes(text)});
                return;
            case Value::Form::structs:
                return addStructs(value);
        }
    }

    void addStructs(const Value& value) {
        const std::vector<std::string> fields = value.fieldNames();
        for (std::uint32_t i = 0; i < value.structsHere(); ++i) {
            const std::string label = "value [" + std::to_string(i) + "]";
            for (std::uint32_t at = 0; at < fields.size(); ++at)
                table_.add({label, printable(fields[at] + " = " + value.field(i, at))});
        }
    }

    ObjectsView& view_;
    const Object& object_;
    Table table_;
};

int show(const Options& options) {
    Session session(options);
    ObjectsView view(session);
    const Object object = view.get(options.path);
    Output output(options);
    output.put(options.format == Format::json ? AsJson(view, object).text() : AsText(view, object).text());
    output.finish();
    warnOfMissingLayout(object, session);
    return session.status();
}

}  // namespace

const Verb kShow{
    "show",
    "print one object in full",
    "Kind, type, class, display names by locale, flags, unit, locale and URI of the value, the number of\n"
    "elements (code units for text, bytes for structs; children for containers and tables), the value. A\n"
    "struct is printed field by field where its class is known. Control characters are shown as \\n, \\x1b\n"
    "and so on. In JSON the value is an array of numbers or texts, of objects for structs, or Base64.",
    "  qvt show plant.qvt hall.p1.power\n"
    "  qvt show plant.qvt hall.p1 -f json",
    Verb::kStore | Verb::kSchemas | Verb::kAnswers | Verb::kOptionalPath | Verb::kJson,
    show};

}  // namespace qvt
