// qvt units [NAME]
#include "Units.h"

#include <nlohmann/json.hpp>
#include <vector>

#include "Nearest.h"
#include "Output.h"
#include "Table.h"
#include "UnitScales.h"
#include "Values.h"
#include "Verbs.h"
#include "norvane/platform/data/format/xml/UnitTable.h"

namespace qvt {

namespace {

using data::format::xml::dimensionKeyOf;
using data::format::xml::kDimensionTable;
using data::format::xml::kUnitTable;
using data::format::xml::tUnit;

std::uint32_t idIn(const tUnit* rows, const std::string& name) {
    for (; rows->name; ++rows)
        if (name == rows->name) return rows->id;
    return 0;
}

// Every unit, those of a dimension, or the one of that name.
std::vector<tUnit> unitsFor(const std::string& name) {
    const std::uint32_t dimension = idIn(kDimensionTable, name);
    std::vector<tUnit> found;
    for (const tUnit* row = kUnitTable; row->name; ++row)
        if (name.empty() || name == row->name || (dimension != 0 && dimensionKeyOf(row->id) == dimension))
            found.push_back(*row);
    return found;
}

Failure unknown(const std::string& name) {
    Nearest nearest(name);
    for (const tUnit* row = kDimensionTable; row->name; ++row) nearest.offer(row->name);
    for (const tUnit* row = kUnitTable; row->name; ++row) nearest.offer(row->name);
    return {kMissing, "error: no unit or dimension " + name + nearest.question()};
}

std::string asText(const std::vector<tUnit>& units) {
    Table table;
    for (const tUnit& unit : units) table.add({hexadecimal(unit.id), dimensionName(unit.id), unit.name});
    return table.text();
}

std::string asJson(const std::vector<tUnit>& units) {
    Json rows = Json::array();
    for (const tUnit& unit : units) {
        const std::optional<UnitScale> scale = scaleOf(unit.id);
        rows.push_back({{"unit", unit.name},
                        {"id", unit.id},
                        {"dimension", dimensionName(unit.id)},
                        {"factor", scale ? Json(static_cast<double>(scale->factor)) : Json()},
                        {"shift", scale ? Json(static_cast<double>(scale->offset)) : Json()}});
    }
    return dumped({{"units", std::move(rows)}}, 2) + "\n";
}

int units(const Options& options) {
    const std::vector<tUnit> found = unitsFor(options.name);
    if (found.empty()) throw unknown(options.name);
    Output output(options);
    output.put(options.format == Format::json ? asJson(found) : asText(found));
    output.finish();
    return kDone;
}

}  // namespace

const Verb kUnits{
    "units",
    "print units of measure",
    "One line for each unit: its id, its dimension, its name. NAME is a dimension, whose units are\n"
    "printed, or a unit. Names are compared exactly; some hold a comma and blanks at their end, which\n"
    "-f json shows.",
    "  qvt units Velocity\n"
    "  qvt units Inch -f json",
    Verb::kOptionalName | Verb::kJson | Verb::kAnswers,
    units};

}  // namespace qvt
