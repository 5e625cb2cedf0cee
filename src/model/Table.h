// Open tables: named sets of properties with defaults.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "model/Set.h"
#include "norvane/platform/data/metadata/ISchema.h"

namespace norvane::platform::data::Design {

// The dimension key of a unit id: its low 12 bits, which number the unit in its dimension, cleared.
constexpr std::int32_t dimensionKey(std::uint32_t unitId) {
    return static_cast<std::int32_t>(unitId & ~std::uint32_t{0xFFF});
}

// An open object on a table record: a set of primitives and tables, with a directory that says for a
// dimension of measure which type and unit a new member of it gets. It has no rows and no columns.
class Table final : public Metadata::Set {
  public:
    // Opens the table record there.
    Table(IDataStore* store, std::uint32_t offset, Metadata::Opening opening = Metadata::Opening::handle);
    // Appends a new table record, which nothing lists yet.
    Table(IDataStore* store, std::u16string_view name);

    // The directory of defaults goes too.
    void erase() override;
    std::uint32_t clone(IDataStore* target) override;

    // Name and class text are equal.
    bool sameAs(const Table& other) const;
    // Names of the layouts applied, joined by ";"; empty when there are none.
    const std::u16string& classText() const { return tableClass_; }

    // Declares the default of the unit's dimension, in place of one that is there. False for a 0.
    bool addDefault(std::uint32_t unitId, std::uint32_t type);
    // The dimensions with a default of this table's own, ascending as signed numbers.
    std::vector<std::int32_t> defaultKeys() const;
    // Of exactly that dimension key; 0 when there is none. A unit id is no key.
    std::uint32_t defaultType(std::int32_t key) const;
    std::uint32_t defaultUnit(std::int32_t key) const;

    // Adds the schema's names to the class text and copies the members in that are not here yet. Takes no
    // guard. Defined beside the schemas.
    bool applySchema(const metadata::ISchema* schema);

  private:
    void loadDefaults();
    std::uint32_t defaultAt(std::int32_t key, std::uint32_t which) const;

    std::map<std::int32_t, std::uint32_t> defaultIndex_;
    std::uint32_t defaultsOffset_;
    std::u16string tableClass_;
};

}  // namespace norvane::platform::data::Design
