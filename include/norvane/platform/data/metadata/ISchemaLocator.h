#pragma once

#include "norvane/platform/data/metadata/ISchema.h"

namespace norvane::platform::data::metadata {

/// Finds types by name in a set of stores and keeps the layouts it made. A type is a table; its name is the
/// table's dotted path. It is not a view of the stores: a name once found keeps its layout, whatever happens
/// to the table, until its store is removed.
///
/// Stores are borrowed, and each must outlive its registration and every layout cached from it, so destroy
/// the locator first. A cached layout keeps its table open, which therefore cannot be removed meanwhile. The
/// order in which stores are asked is not defined.
///
/// No operation takes a guard. `locate` of names that are cached is safe from any thread; of others it opens
/// records and changes their open counts, so that the stores must be quiet or guarded by the caller.
///
/// Slots keep this order, new ones go last.
class QVT_DATA_TYPE ISchemaLocator {
  public:
    /// Closes the tables of all cached layouts.
    virtual ~ISchemaLocator() noexcept(false) {}

    /// The types of a class text, in its order; names that are not found are left out. Null when none is
    /// found and when `names` was never given text. The empty text is a name like any other. Misses are not
    /// remembered. The result points into the locator: see ISchema. A struct type that holds itself has no
    /// field for that member.
    virtual SharedPtr<ISchema> locate(WideString names) = 0;

    /// Registers a store. Nothing happens for null and for a store that is registered.
    virtual void addStore(IDataStore* store) = 0;

    /// Takes a store out, with all layouts cached from it: schemas that hold one are dangling then. So it
    /// must not run while another thread is in `locate`, which could be about to give one out. False when the
    /// store is not registered.
    virtual bool removeStore(IDataStore* store) = 0;

    /// Takes all stores out, but keeps the cached layouts: their names are still found, and their tables stay
    /// open.
    virtual void clearStores() = 0;

    /// A new locator that knows this store, or none for null.
    static QVT_DATA_API SharedPtr<ISchemaLocator> make(IDataStore* store);
};

}  // namespace norvane::platform::data::metadata
