// Whether an item satisfies a schema.
#pragma once

#include <string_view>

#include "model/Item.h"
#include "norvane/platform/data/metadata/ISchema.h"

namespace norvane::platform::data::Schema {

// Whether the class text names every layout of the schema; it may name more. False for null and for a schema
// of somebody else's making.
bool matchesClass(const metadata::ISchema* schema, std::u16string_view classText);

// Whether the members of every layout stand among the item's children in the layout's order, with anything
// between them. Primitives match by name and type, tables by name and, in turn, their members. False where no
// layout has a member, and as above. Looks at the records as they are now, not at what the item remembers;
// changes nothing, and takes no guard.
bool matchesStructure(const metadata::ISchema* schema, const Metadata::Item& item);

}  // namespace norvane::platform::data::Schema
