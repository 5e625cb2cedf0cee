// qvt get STORE PATH
#include <nlohmann/json.hpp>

#include "Describe.h"
#include "Output.h"
#include "Session.h"
#include "Values.h"
#include "Verbs.h"

namespace qvt {

namespace {

// Exact where a program reads on; a terminal is not to be moved by a text of unknown origin.
void putText(Output& output, const std::string& text) {
    output.line(output.isTerminal() ? printable(text) : text);
}

void putStructs(Output& output, const Value& value) {
    const auto fields = static_cast<std::uint32_t>(value.fieldNames().size());
    for (std::uint32_t i = 0; i < value.structsHere(); ++i) {
        std::string line;
        for (std::uint32_t at = 0; at < fields; ++at) line += (at == 0 ? "" : " ") + value.field(i, at);
        putText(output, line);
    }
}

void putValue(Output& output, const Value& value) {
    switch (value.form()) {
        case Value::Form::numbers:
            return output.line(value.numbers());
        case Value::Form::bytes:
            return output.line(value.base64());
        case Value::Form::texts:
            for (const std::string& text : value.texts()) putText(output, text);
            return;
        case Value::Form::structs:
            return putStructs(output, value);
    }
}

// What has no value.
std::string inWords(const Object& object, const ObjectsView& view) {
    if (view.hasRoot() && view.isRoot(object)) return "the root";
    return view.pathOf(object) + " is a " + kindOf(object) + " and";
}

// The one value there is: that of a primitive, or the target of a link.
void put(Output& output, const Object& object, ObjectsView& view, const Options& options) {
    const bool isJson = options.format == Format::json;
    IPrimitive* primitive = object.primitive();
    if (!isJson)
        return primitive ? putValue(output, Value(*primitive, view.locator()))
                         : putText(output, targetOf(object));
    Json answer = factsAt(view.pathOf(object), object, view);
    addValue(answer, object, view.locator());
    output.line(dumped(answer));
}

int get(const Options& options) {
    Session session(options);
    ObjectsView view(session);
    const Object object = view.get(options.path);
    const std::string name = session.name();
    IPrimitive* primitive = object.primitive();
    if (!primitive && (!object.container || kindOf(object) != "link"))
        throw Failure(kMissing, name + ": error: " + inWords(object, view) + " has no value");
    if (primitive && primitive->uri().value())
        throw Failure(kNo, name + ": error: the value of " + options.path +
                               " lies elsewhere: " + utf8(primitive->uri()));
    Output output(options);
    put(output, object, view, options);
    output.finish();
    warnOfMissingLayout(object, session);
    return session.status();
}

}  // namespace

const Verb kGet{
    "get",
    "print one value",
    "Numbers stand in one line, separated by blanks, each in the shortest form that reads back as\n"
    "the same number; a bool is 0 or 1. Texts stand one a line, exactly as they are; on a terminal,\n"
    "control characters are shown as \\n, \\x1b and so on. Structs stand one a line, their fields in the\n"
    "order of the layout. Bytes are Base64. Of a link, the target is printed.\n"
    "A value that lies elsewhere (URI) is not fetched: exit status 1.",
    "  qvt get plant.qvt hall.p1.power\n"
    "  qvt get plant.qvt hall.p1.maker -f json",
    Verb::kStore | Verb::kSchemas | Verb::kAnswers | Verb::kPath | Verb::kJson,
    get};

}  // namespace qvt
