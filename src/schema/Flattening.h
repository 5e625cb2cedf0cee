// From a table to the fields of a struct.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "records/OffsetSet.h"
#include "schema/Layout.h"

namespace norvane::platform::data::Schema {

// Fills a layout from its table. Members of nested tables come in place, under a dotted name. A struct member
// needs the layout of its own type first: the flattening then stops, so that whoever looks that type up need
// not do so from inside of it. Types can lead to types without end, and tables can be nested without end;
// nothing here recurses.
class Flattening {
  public:
    explicit Flattening(Layout& layout);

    // Adds the fields up to the next struct member, and stops there; false at the end of the table.
    bool advance();
    // The type text of the member it stopped at, never empty.
    const std::u16string& structType() const { return structType_; }
    // Adds the fields of that member: those of its type, once for each struct in the member's value. Null
    // means that the type is not known; the member then has no field.
    void unroll(const Layout* type);

  private:
    struct Level {
        std::vector<std::uint32_t> members;
        std::size_t next;
        std::size_t outerPrefix;  // length of the prefix outside of this table
    };

    bool visit(std::uint32_t offset);
    void enter(std::uint32_t offset);
    void leave();
    void addPrimitive(const Record::View& member);
    void add(std::u16string_view name, std::uint32_t type, std::uint32_t count, std::uint32_t size);

    Layout& layout_;
    IDataStore* store_;
    std::vector<Level> levels_;
    Record::OffsetSet met_;  // the tables walked through: a damaged one can hold another twice, or itself
    std::u16string prefix_;
    std::u16string structName_;
    std::u16string structType_;
    std::uint32_t structBytes_ = 0;
};

}  // namespace norvane::platform::data::Schema
