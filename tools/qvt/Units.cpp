#include "Units.h"

#include <cstdio>
#include <unordered_map>

#include "Nearest.h"
#include "Options.h"
#include "Text.h"
#include "norvane/platform/data/format/xml/UnitTable.h"

namespace qvt {

namespace {

using norvane::platform::data::format::xml::dimensionKeyOf;
using norvane::platform::data::format::xml::kDimensionTable;
using norvane::platform::data::format::xml::kUnitTable;
using norvane::platform::data::format::xml::tUnit;

using Names = std::unordered_map<std::uint32_t, const char*>;

// Of two names for one id, the first is the one that documents get.
Names namesOf(const tUnit* rows) {
    Names names;
    for (; rows->name; ++rows) names.emplace(rows->id, rows->name);
    return names;
}

std::string nameIn(const Names& names, std::uint32_t id) {
    const auto found = names.find(id);
    return found == names.end() ? hexadecimal(id) : found->second;
}

}  // namespace

std::string unitName(std::uint32_t id) {
    static const Names names = namesOf(kUnitTable);
    return id == 0 ? std::string() : nameIn(names, id);
}

std::string dimensionName(std::uint32_t id) {
    static const Names names = namesOf(kDimensionTable);
    return nameIn(names, dimensionKeyOf(id));
}

std::uint32_t unitIdOf(std::string_view name) {
    static const auto ids = [] {
        std::unordered_map<std::string_view, std::uint32_t> all;
        for (const tUnit* row = kUnitTable; row->name; ++row) all.emplace(row->name, row->id);
        return all;
    }();
    const auto found = ids.find(name);
    return found == ids.end() ? 0 : found->second;
}

std::uint32_t unitNamed(const std::string& name) {
    if (const std::uint32_t id = unitIdOf(name)) return id;
    throw Failure(kUsage, "error: no unit " + shown(name) + Nearest::asQuestion(unitNear(name)) +
                              " (qvt units lists them)");
}

std::string unitNear(const std::string& name) {
    Nearest nearest(name);
    for (const tUnit* row = kUnitTable; row->name; ++row) nearest.offer(row->name);
    return nearest.name();
}

std::string hexadecimal(std::uint32_t number) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%04x", number);
    return text;
}

}  // namespace qvt
