#pragma once

#include "norvane/platform/data/Names.h"

namespace norvane::platform::data::metadata {
class IPrimitive;
class IProperty;
class IPropertyFilter;
class ISchema;
class ITable;
}  // namespace norvane::platform::data::metadata

namespace norvane::platform::data::structure {

class IContainerFilter;

/// A handle on one container: a node, a group or a link, with child containers and properties below it.
/// It is not the record, and a host cannot implement it: a handle keeps the name, the class text and the
/// index of its children as they were when it was opened, and asks the store for all else.
///
/// Each operation takes the guard for its whole length, except where it says "No guard".
///
/// Handles do not see each other. What one adds, removes or renames is in the store at once, but another
/// handle on the same record goes on with its own name and index until it is opened anew;
/// `find(WideString())` does that. A handle raises the open count of its record while it lives, and a record
/// that is open elsewhere cannot be removed.
///
/// Made by `find`, `parent` and the filters, a handle has the facet of its kind (INode, IGroup, ILink); made
/// by `makeContainer` it has IGroup or ILink; from the front end or ILink::resolve it has none.
///
/// Slots keep this order, new ones go last.
class QVT_DATA_TYPE IContainer {
  public:
    /// Takes the guard, stores the localised texts that were set, lowers the open count. May throw what the
    /// store throws.
    virtual ~IContainer() noexcept(false) {}

    /// The name, as it was when this handle was opened.
    virtual WideString name() = 0;

    /// The dotted path: names from below the root down to this one. The parents' names come from the store,
    /// its own from the handle.
    virtual WideString path() = 0;

    /// The store, borrowed. No guard.
    virtual IDataStore* store() = 0;

    /// A new handle on the container above. Null when this one stands directly below the root, is in no
    /// container, or when the parent is of an unknown kind (whose open count then stays raised).
    virtual SharedPtr<IContainer> parent() = 0;

    /// The class text: the names of the layouts that were applied, joined by ";". Empty when there are none.
    virtual WideString className() = 0;

    /// True when the handle's own index holds no child. No guard, and no look at the store.
    virtual bool isEmpty() = 0;

    /// The ContainerKind, or whatever other number the record held.
    virtual std::uint32_t kind() = 0;

    /// Deletes the direct child with this name and all that lies below it. False, with nothing changed, when
    /// there is no such child, when it is fixed (came from a class), or when it or anything below it is open
    /// elsewhere.
    virtual bool remove(WideString name) = 0;

    /// Gives the container another name (no path). False when it stands directly below the root, is fixed,
    /// already has that name, has a sibling with it, or is no longer found under the name this handle knows.
    /// The handle keeps the old name, so that a second rename through it is refused.
    virtual bool rename(WideString newName) = 0;

    /// Makes a table as direct child, dots in the name taken as they are. A schema, when given, has its
    /// members copied in as inherited children. Null when a direct child has that name; nothing is made then.
    virtual SharedPtr<metadata::ITable> makeTable(WideString name, metadata::ISchema* schema) = 0;

    /// Makes a primitive of a tDataType, without a value, as direct child. The type is not checked. Null when
    /// a direct child has that name; nothing is made then.
    virtual SharedPtr<metadata::IPrimitive> makePrimitive(WideString name, std::uint32_t type) = 0;

    /// Makes a container of a ContainerKind as direct child. A schema, when given, has its names added to the
    /// class text and its members copied in as inherited children. Null when a direct child has that name;
    /// nothing is made then. Null too for a kind above 2, but the child exists from then on. The record holds
    /// the low byte of `kind`.
    virtual SharedPtr<IContainer> makeContainer(std::uint32_t kind, WideString name,
                                                metadata::ISchema* schema) = 0;

    /// True when the dotted path leads to anything from here: container, table or primitive.
    virtual bool contains(WideString path) = 0;

    /// A new handle on the container at a dotted path below this one. Null when the path leads nowhere, to a
    /// property, or to a container of an unknown kind (whose open count then stays raised). Links are not
    /// followed. Given a WideString without text, a new handle on this same container, which sees the store
    /// as it is now.
    virtual SharedPtr<IContainer> find(WideString path) = 0;

    /// A new handle on the property at a dotted path below this one; members of tables are reached through
    /// the table's name. Null when the path leads nowhere or to a container.
    virtual SharedPtr<metadata::IProperty> findProperty(WideString path) = 0;

    /// A cursor over the properties that are direct children now, on the first of them. It needs the store,
    /// not this handle.
    virtual SharedPtr<metadata::IPropertyFilter> properties() = 0;

    /// A cursor over the containers that are direct children now, on the first of them. It needs the store,
    /// not this handle.
    virtual SharedPtr<IContainerFilter> containers() = 0;

    /// Tests the container or table at a dotted path below this one against a schema, as the form without
    /// path does. False when the path leads nowhere or to a primitive.
    virtual bool conforms(WideString path, metadata::ISchema* schema, bool classOnly) = 0;

    /// Tests this container against a schema. True when the class text is not empty and names every layout of
    /// the schema. If such a text does not, the answer is false when `classOnly` is set. Otherwise the
    /// children decide: each layout's members must occur among them, in order, with name and type, and others
    /// may stand between. A schema without members is never satisfied that way.
    virtual bool conforms(metadata::ISchema* schema, bool classOnly) = 0;

    /// Copies the children of `source`, of any store, into this container: as many as the handle on it
    /// counts, from the list in its store. A child whose name, read as a path, leads to something here
    /// already is left out, and both stay as they are. False when a child is of an unknown kind; those before
    /// it stay copied. Takes this store's guard only.
    virtual bool merge(SharedPtr<IContainer> source) = 0;

    /// Copies this container into a store under a dotted path from its root: up to the last "." the parent,
    /// which must exist as a container or a table, after it the name of the copy. Without a "." the text is
    /// both, so that the copy lands inside the top-level container of that very name. False when the parent
    /// is not found or is neither. True even when the parent has such a child, in which case the copy is in
    /// no container. Takes the destination's guard, then its own.
    virtual bool copyTo(IDataStore* destination, WideString path) = 0;

    /// Copies what is at the dotted path `source` (from the root when `absolute`, else from here) to the
    /// dotted path `destination`, which always starts here; without a "." it is the name of a direct child,
    /// which this handle then knows. False when the source is not found, when the parent is not found or no
    /// container, or when the name is taken.
    virtual bool copy(WideString source, WideString destination, bool absolute) = 0;

    /// Copies a container, of any store, into this one under its own name. False when that name, read as a
    /// path, leads to something here already. The item stays where it is. When a child bears that name, with
    /// its dots, already, the answer is true but the copy is in no container.
    virtual bool add(SharedPtr<IContainer> item) = 0;

    /// The same for a property.
    virtual bool add(SharedPtr<metadata::IProperty> item) = 0;

    /// How many display names there are. 0 as long as the record has none stored, also right after the first
    /// `setLocalised`.
    virtual std::uint32_t localisedCount() = 0;

    /// The locale of the display name at an index below `localisedCount`. Empty past the end.
    virtual WideString localeAt(std::uint32_t index) = 0;

    /// Sets the display name in a locale; a `text` that was never given text removes it. The change is held
    /// by this handle and reaches the store when the handle goes; of two handles the last to go wins. A
    /// removal that leaves no display name at all is not stored, and the names are back when the container is
    /// opened again.
    virtual void setLocalised(WideString locale, WideString text) = 0;

    /// The display name in a locale. Empty when there is none, and as long as the record has none stored.
    virtual WideString localised(WideString locale) = 0;
};

}  // namespace norvane::platform::data::structure
