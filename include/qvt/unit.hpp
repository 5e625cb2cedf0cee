#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "norvane/platform/data/format/xml/UnitTable.h"
#include "qvt/text.hpp"

namespace qvt {

/// A unit of measure, or none. A literal is looked up when the program is compiled: `Unit unit = "Kilowatt"`
/// compiles, a name that there is not does not.
class Unit {
  public:
    /// No unit.
    constexpr Unit() = default;
    /// The unit of a literal; one that there is not does not compile.
    consteval Unit(const char* name) : id_(idOf(name)) {
        if (id_ == 0) throw "there is no unit of this name";
    }

    /// The unit of a name that is known only at run time. Names are compared exactly.
    static constexpr std::optional<Unit> named(std::string_view name) {
        const std::uint32_t id = idOf(name);
        return id == 0 ? std::nullopt : std::optional<Unit>(ofId(id));
    }
    /// The unit of an id, as records hold it. The id may be one that has no name.
    static constexpr Unit ofId(std::uint32_t id) {
        Unit unit;
        unit.id_ = id;
        return unit;
    }

    /// 0 for none.
    constexpr std::uint32_t id() const { return id_; }
    /// True if it is a unit.
    constexpr explicit operator bool() const { return id_ != 0; }
    /// Empty for none, and for an id without a name.
    constexpr std::string_view name() const { return nameOf(data::format::xml::kUnitTable, id_); }
    /// What is measured, as "Power". Empty where the name is.
    constexpr std::string_view dimension() const {
        return nameOf(data::format::xml::kDimensionTable, data::format::xml::dimensionKeyOf(id_));
    }

    /// Equal if the ids are.
    friend constexpr bool operator==(Unit, Unit) = default;

  private:
    static constexpr std::uint32_t idOf(std::string_view name) {
        for (const auto& row : data::format::xml::kUnitTable)
            if (row.name && name == row.name) return row.id;
        return 0;
    }
    template <class Table>
    static constexpr std::string_view nameOf(const Table& table, std::uint32_t id) {
        for (const auto& row : table)
            if (row.name && row.id == id) return row.name;
        return {};
    }

    std::uint32_t id_ = 0;
};

}  // namespace qvt
