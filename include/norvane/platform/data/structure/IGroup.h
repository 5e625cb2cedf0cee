#pragma once

#include "norvane/platform/data/structure/IContainer.h"

namespace norvane::platform::data::structure {

/// The facet that marks a container as a group, reached with `to`.
/// It is not an object of its own: it belongs to the handle it was taken from and goes with it. It adds
/// nothing to IContainer.
///
/// Slots keep this order, new ones go last.
class QVT_DATA_TYPE IGroup {
  public:
    virtual ~IGroup() noexcept(false) {}

    /// The handle that this facet belongs to, borrowed. No guard.
    virtual IContainer* container() = 0;

    /// The facet of a handle whose kind is group. Null for null, for another kind, and for a handle that has
    /// no facets, as those of the front end; `handle->find(WideString())` gives one that has. Borrowed: keep
    /// the SharedPtr that holds the handle. Takes the guard to ask for the kind.
    static QVT_DATA_API IGroup* to(IContainer* container);
};

}  // namespace norvane::platform::data::structure
