#pragma once

#include "norvane/platform/data/structure/IContainer.h"

namespace norvane::platform::data::structure {

/// The way from a store to its first container.
/// It has no objects, and it is not a session: what it returns depends on the store alone and outlives the
/// call.
///
/// `toplevel` and `find` run one at a time in the process, whatever the store, and take the guard inside that
/// lock. Their results are handles without facets (see IContainer). All refusals are a null SharedPtr.
class QVT_DATA_TYPE IContainerFrontEnd {
  public:
    /// Opens the top-level container with this name (dots are part of the name), and makes it, as a group,
    /// when no child of the root has the name. A WideString without text asks for the first container below
    /// the root, whatever its name, and makes a group called "default" when there is none. On an empty store
    /// the root comes first, and the store's version is set to 1. Null when the name belongs to a property.
    /// When "default" does, the new group is returned but is in no container.
    static QVT_DATA_API SharedPtr<IContainer> toplevel(IDataStore* store, WideString name);

    /// Opens the container at a dotted path from the root. Makes nothing. Null when the store is empty, when
    /// the path leads nowhere or to a property, and for a WideString without text.
    static QVT_DATA_API SharedPtr<IContainer> find(IDataStore* store, WideString path);

    /// The version of this interface: 1. Not that of any store.
    static QVT_DATA_API std::uint32_t version();
};

}  // namespace norvane::platform::data::structure
