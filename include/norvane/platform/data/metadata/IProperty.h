#pragma once

#include "norvane/platform/data/Names.h"

namespace norvane::platform::data::metadata {

class ITable;

/// Bits of IProperty::flags.
enum tPropertyFlag : std::uint8_t {
    kOptional = 1,   ///< For hosts; nothing here acts on it.
    kFixed = 2,      ///< Came from a class: it can be neither removed nor renamed.
    kInherited = 4,  ///< Came from a class and was not changed since: it is not written to documents.
    kHasUri = 8,     ///< The value is a URI; set through IPrimitive::setUri only.
};

/// A handle on one property, which is a primitive or a table: the part that both have in common.
/// It is not the value: IPrimitive::to and ITable::to lead to that. A host cannot implement it.
///
/// Each operation takes the guard for its whole length, except where it says "No guard".
///
/// Handles do not see each other: each keeps the name it read when it was opened. While a handle lives, the
/// property and the tables and containers around it cannot be removed.
///
/// Slots keep this order, new ones go last.
class QVT_DATA_TYPE IProperty {
  public:
    /// Takes the guard, stores the localised texts that were set, lowers the open count. May throw what the
    /// store throws.
    virtual ~IProperty() noexcept(false) {}

    /// The name, as it was when this handle was opened.
    virtual WideString name() = 0;

    /// The dotted path from below the root. The parents' names come from the store, its own from the handle.
    virtual WideString path() = 0;

    /// The store, borrowed. No guard.
    virtual IDataStore* store() = 0;

    /// 0 for a primitive, 1 for anything else. Asks the store each time. Not a ContainerKind.
    virtual std::uint32_t kind() = 0;

    /// Gives the property another name (no path). False when it is in no table or container, is fixed,
    /// already has that name, has a sibling with it, or is no longer found under the name this handle knows.
    /// The handle keeps the old name.
    virtual bool rename(WideString newName) = 0;

    /// A new handle on the table that the property is a member of. Null when it stands in a container or in
    /// nothing.
    virtual SharedPtr<ITable> parent() = 0;

    /// How many display names there are. 0 as long as the record has none stored, also right after the first
    /// `setLocalised`.
    virtual std::uint32_t localisedCount() = 0;

    /// The locale of the display name at an index below `localisedCount`. Empty past the end.
    virtual WideString localeAt(std::uint32_t index) = 0;

    /// Sets the display name in a locale; a `text` that was never given text removes it. The change is held
    /// by this handle and reaches the store when the handle goes; of two handles the last to go wins. A
    /// removal that leaves no display name at all is not stored, and the names are back when the property is
    /// opened again.
    virtual void setLocalised(WideString locale, WideString text) = 0;

    /// The display name in a locale. Empty when there is none, and as long as the record has none stored.
    virtual WideString localised(WideString locale) = 0;

    /// The flags as they are in the store now; see tPropertyFlag.
    virtual std::uint8_t flags() = 0;

    /// Sets these bits in the store and leaves the others. No bit is protected: kHasUri set here disagrees
    /// with open handles.
    virtual void setFlags(std::uint8_t bits) = 0;

    /// Clears these bits in the store and leaves the others. No bit is protected.
    virtual void clearFlags(std::uint8_t bits) = 0;
};

}  // namespace norvane::platform::data::metadata
