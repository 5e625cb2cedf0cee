// qvt schema STORE CLASS
#include <nlohmann/json.hpp>

#include "Classes.h"
#include "Objects.h"
#include "Output.h"
#include "Session.h"
#include "Table.h"
#include "Values.h"
#include "Verbs.h"

namespace qvt {

namespace {

std::string asText(IStructLayout& layout) {
    Table table;
    table.add({"field", "type", "count", "offset", "size"});
    for (std::uint32_t i = 0; i < layout.fieldCount(); ++i) {
        const IStructLayout::tField& field = *layout.field(i);
        table.add({printable(utf8(field.name)), typeName(field.type), std::to_string(field.count),
                   std::to_string(field.offset), std::to_string(field.size)});
    }
    return table.text() + std::to_string(layout.byteSize()) + " bytes, " +
           std::to_string(layout.valueCount()) + " elements\n";
}

std::string asJson(const std::string& className, IStructLayout& layout) {
    Json fields = Json::array();
    for (std::uint32_t i = 0; i < layout.fieldCount(); ++i) {
        const IStructLayout::tField& field = *layout.field(i);
        fields.push_back({{"field", utf8(field.name)},
                          {"type", typeName(field.type)},
                          {"count", field.count},
                          {"offset", field.offset},
                          {"size", field.size}});
    }
    const Json answer{{"class", className},
                      {"bytes", layout.byteSize()},
                      {"elements", layout.valueCount()},
                      {"fields", std::move(fields)}};
    return dumped(answer, 2) + "\n";
}

int schema(const Options& options) {
    if (options.className.find(';') != std::string::npos)
        throw Failure(kUsage, "error: a layout is that of one class");
    Session session(options);
    const SharedPtr<ISchema> found = classNamed(options.className, session.classes());
    Output output(options);
    output.put(options.format == Format::json ? asJson(options.className, *found->layout())
                                              : asText(*found->layout()));
    output.finish();
    return session.status();
}

}  // namespace

const Verb kSchema{
    "schema",
    "print the layout of a class",
    "One line for each field of a packed struct value of this class: its dotted name, its type, the\n"
    "number of elements, the byte offset and the size in bytes. A member whose value lies elsewhere\n"
    "(URI) has 0 elements.",
    "  qvt schema plant.qvt Types.Point",
    Verb::kStore | Verb::kSchemas | Verb::kAnswers | Verb::kClass | Verb::kJson,
    schema};

}  // namespace qvt
