#pragma once

#include "norvane/platform/data/metadata/IProperty.h"

namespace norvane::platform::data::metadata {

class IPrimitive;
class IPropertyFilter;
class ISchema;

/// The members of a table property: named primitives and further tables, with a default unit and type per
/// dimension of measure. It has no rows and no columns. It is a facet, belongs to the handle it was taken
/// from, and goes with it.
///
/// A dimension key is a unit id with its low 12 bits cleared.
///
/// Each operation takes the guard for its whole length, except where it says "No guard".
///
/// Handles do not see each other: `find`, `count` and the tests for a taken name use the index this handle
/// made when it was opened and what it added since; `at` and the filters read the list in the store.
///
/// Slots keep this order, new ones go last.
class QVT_DATA_TYPE ITable {
  public:
    virtual ~ITable() noexcept(false) {}

    /// The handle that this facet belongs to, borrowed. No guard.
    virtual IProperty* property() = 0;

    /// A new handle on the property at a dotted path below this table. Null when it leads nowhere or to a
    /// container.
    virtual SharedPtr<IProperty> find(WideString path) = 0;

    /// A cursor over the members there are now. It keeps this table open for as long as it lives.
    virtual SharedPtr<IPropertyFilter> properties() = 0;

    /// Tests this table against a schema. True when the class text is not empty and names every layout;
    /// otherwise the members decide (see IContainer::conforms).
    virtual bool conforms(ISchema* schema) = 0;

    /// Makes a primitive with the default type and unit for a dimension key. Null when neither this table nor
    /// its parent has one, or when `makePrimitive` gives null.
    virtual SharedPtr<IPrimitive> makeByDimension(WideString name, std::uint32_t key) = 0;

    /// Makes a primitive of a tDataType and a unit id (0: none), without a value, as member. Neither number
    /// is checked. Null when `name`, read as a path, leads to something; nothing is made then. The member
    /// bears the text as it is, dots included; made a second time under a name with dots, it is in no table.
    /// A member made in a table that is still kInherited is not written to documents until it gets a value.
    virtual SharedPtr<IPrimitive> makePrimitive(WideString name, std::uint32_t type, std::uint32_t unit) = 0;

    /// Makes a table as member. A schema, when given, has its members copied in as inherited. Null when
    /// `name`, read as a path, leads to something; nothing is made then. Dots in the name as above.
    virtual SharedPtr<ITable> makeTable(WideString name, ISchema* schema) = 0;

    /// Deletes the member with this name (no path) and all that lies below it. False, with nothing changed,
    /// when there is none, when it is fixed (came from a class), or when it or anything below it is open
    /// elsewhere.
    virtual bool remove(WideString name) = 0;

    /// The number of members.
    virtual std::uint32_t count() = 0;

    /// A new handle on the member at an index, in the order in which members were added. Null past the end.
    virtual SharedPtr<IProperty> at(std::uint32_t index) = 0;

    /// Makes `unit` and `type` the default for the unit's dimension, in place of an earlier one. False when
    /// either is 0.
    virtual bool addDefault(std::uint32_t unit, std::uint32_t type) = 0;

    /// How many defaults this table itself declares.
    virtual std::uint32_t defaultCount() = 0;

    /// The dimension key of the default at an index below `defaultCount`, in ascending order. 0 past the end.
    virtual std::uint32_t defaultDimension(std::uint32_t index) = 0;

    /// The default tDataType for a dimension key (not for a unit id). When this table has none, that of its
    /// parent table; not of one further up. 0 when there is none.
    virtual std::uint32_t defaultType(std::uint32_t key) = 0;

    /// The default unit id for a dimension key, looked up in the same way. 0 when there is none.
    virtual std::uint32_t defaultUnit(std::uint32_t key) = 0;

    /// The class text: the names of the layouts that were applied, joined by ";". A WideString without text
    /// when there are none.
    virtual WideString className() = 0;

    /// The facet of a handle on a table. Null for null and for a handle on a primitive. Borrowed: keep the
    /// SharedPtr that holds the handle. Takes the guard to ask for the kind.
    static QVT_DATA_API ITable* to(IProperty* property);
};

}  // namespace norvane::platform::data::metadata
