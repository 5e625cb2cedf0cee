// qvt stat STORE
#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>

#include "Output.h"
#include "Session.h"
#include "Stack.h"
#include "Table.h"
#include "Units.h"
#include "Values.h"
#include "Verbs.h"

namespace qvt {

namespace {

using Counts = std::map<std::string, std::uint64_t>;

struct Totals {
    std::uint64_t nodes = 0;
    std::uint64_t groups = 0;
    std::uint64_t links = 0;
    std::uint64_t tables = 0;
    std::uint64_t primitives = 0;
    std::uint64_t values = 0;
    std::uint64_t external = 0;
    std::uint64_t elements = 0;
    std::uint64_t displayNames = 0;
    std::uint64_t defaults = 0;
    std::uint64_t inherited = 0;
    std::uint64_t overridden = 0;
    std::uint64_t maxDepth = 0;
    Counts types;
    Counts units;
    Counts classes;
    Counts structTypes;
};

struct Records {
    std::uint64_t count = 0;
    std::uint64_t bytes = 0;
};

class Census {
  public:
    Totals totals;

    void take(ObjectsView& view) {
        totals.displayNames += displayNameCount(view.root());
        const std::uint64_t above = view.hasRoot() ? 1 : 0;
        totals.maxDepth = above;
        Stack<Children> open;
        for (open.push(Children(view.root())); !open.isEmpty();) {
            if (open.top().isAtEnd()) {
                open.pop();
                continue;
            }
            const Object object = open.top().take();
            count(object);
            totals.maxDepth = std::max<std::uint64_t>(totals.maxDepth, open.size() + above);
            if (!object.primitive()) open.push(Children(object));
        }
    }

  private:
    void count(const Object& object) {
        totals.displayNames += displayNameCount(object);
        totals.inherited += isInherited(object);
        totals.overridden += isOverridden(object);
        if (IPrimitive* primitive = object.primitive())
            countPrimitive(*primitive);
        else
            countSet(object);
    }

    void countSet(const Object& object) {
        const std::string kind = kindOf(object);
        const std::string classText = classOf(object);
        totals.nodes += kind == "node";
        totals.groups += kind == "group";
        totals.links += kind == "link";
        totals.tables += kind == "table";
        if (ITable* table = object.table()) totals.defaults += table->defaultCount();
        if (!classText.empty()) ++totals.classes[classText];
    }

    void countPrimitive(IPrimitive& primitive) {
        ++totals.primitives;
        totals.elements += primitive.count();
        totals.values += primitive.count() != 0;
        totals.external += primitive.uri().value() != nullptr;
        ++totals.types[typeName(primitive.dataType())];
        if (primitive.units() != 0) ++totals.units[unitName(primitive.units())];
        if (primitive.dataType() == metadata::kStruct) ++totals.structTypes[utf8(primitive.structType())];
    }
};

// The first byte of a record is its kind.
std::string recordKind(IDataStore& store, std::uint32_t offset) {
    static constexpr const char* kKinds[] = {"root", "primitive", "table", "offsets", "container", "locale"};
    std::uint8_t kind = 0;
    store.read(offset, &kind, 1);
    return kind < std::size(kKinds) ? kKinds[kind] : std::to_string(kind);
}

std::map<std::string, Records> recordsIn(IDataStore& store) {
    std::map<std::string, Records> kinds;
    const std::uint64_t end = store.size();
    for (std::uint64_t i = 0; i < end; ++i) {
        const auto offset = static_cast<std::uint32_t>(i);
        const std::uint32_t size = store.recordSize(offset);
        if (size == 0) continue;
        Records& records = kinds[recordKind(store, offset)];
        ++records.count;
        records.bytes += size;
    }
    return kinds;
}

class Report {
  public:
    Report(const Totals& totals, const std::map<std::string, Records>& kinds, std::uint32_t version)
        : totals_(totals), kinds_(kinds), version_(version) {
        for (const auto& [kind, records] : kinds) {
            all_.count += records.count;
            all_.bytes += records.bytes;
        }
    }

    std::string json() const {
        Json answer = Json::object();
        for (const auto& [name, number] : numbers()) answer[name] = number;
        answer["recordKinds"] = Json::object();
        for (const auto& [kind, records] : kinds_)
            answer["recordKinds"][kind] = {{"records", records.count}, {"bytes", records.bytes}};
        for (const auto& [name, counts] : tables())
            answer[name] = counts->empty() ? Json::object() : Json(*counts);
        return dumped(answer, 2) + "\n";
    }

    std::string text() const {
        Table table;
        for (const auto& [name, number] : numbers()) table.add({name, std::to_string(number)});
        std::string text = table.text() + recordsText();
        for (const auto& [name, counts] : tables()) text += countsText(name, *counts);
        return text;
    }

  private:
    std::string recordsText() const {
        Table table;
        for (const auto& [kind, records] : kinds_)
            table.add({"  " + kind, std::to_string(records.count) + " records",
                       std::to_string(records.bytes) + " bytes"});
        return "recordKinds\n" + table.text();
    }

    static std::string countsText(const std::string& title, const Counts& counts) {
        Table table;
        for (const auto& [what, count] : counts) table.add({"  " + std::to_string(count), printable(what)});
        return counts.empty() ? std::string() : title + "\n" + table.text();
    }

    std::vector<std::pair<const char*, std::uint64_t>> numbers() const {
        const Totals& t = totals_;
        return {{"version", version_},
                {"containers", t.nodes + t.groups + t.links},
                {"nodes", t.nodes},
                {"groups", t.groups},
                {"links", t.links},
                {"tables", t.tables},
                {"primitives", t.primitives},
                {"values", t.values},
                {"external", t.external},
                {"elements", t.elements},
                {"displayNames", t.displayNames},
                {"defaults", t.defaults},
                {"inherited", t.inherited},
                {"overridden", t.overridden},
                {"maxDepth", t.maxDepth},
                {"records", all_.count},
                {"bytes", all_.bytes}};
    }

    std::vector<std::pair<const char*, const Counts*>> tables() const {
        return {{"types", &totals_.types},
                {"units", &totals_.units},
                {"classes", &totals_.classes},
                {"structTypes", &totals_.structTypes}};
    }

    const Totals& totals_;
    const std::map<std::string, Records>& kinds_;
    std::uint32_t version_;
    Records all_;
};

int stat(const Options& options) {
    Session session(options);
    const std::map<std::string, Records> kinds = recordsIn(session.store());
    ObjectsView view(session);
    Census census;
    census.take(view);
    const Report report(census.totals, kinds, session.store().version());
    Output output(options);
    output.put(options.format == Format::json ? report.json() : report.text());
    output.finish();
    return session.status();
}

}  // namespace

const Verb kStat{
    "stat",
    "count what a store holds",
    "What classes bring in counts like what was given to the objects themselves.\n"
    "  containers    nodes, groups and links together; the root is none of them\n"
    "  tables, primitives\n"
    "  values        primitives with at least one element\n"
    "  external      primitives whose value lies elsewhere (URI); these have no elements\n"
    "  elements      the sum of element counts: a number, a component of a vector or matrix, a byte of\n"
    "                binary or struct, a UTF-16 code unit of text with one for each text's end\n"
    "  displayNames  also those of the root\n"
    "  defaults      default units and types that tables declare\n"
    "  inherited     tables and primitives that came from a class and are as the class has them; all\n"
    "                others, the containers and the root stand in the document themselves\n"
    "  overridden    those that came from a class and have another value\n"
    "  maxDepth      of objects, nested; the root has depth 1\n"
    "  records       of all kinds, also those that nothing leads to, of a document those in the store that "
    "it\n"
    "                is read into; bytes is the sum of their sizes\n"
    "Then records by kind; primitives by type and by unit; objects by class text; structs by class.",
    "  qvt stat plant.qvt\n"
    "  qvt stat pump.xml --schemas pump.lib.xml -f json",
    Verb::kStore | Verb::kSchemas | Verb::kAnswers | Verb::kJson,
    stat};

}  // namespace qvt
