#pragma once

#include "norvane/platform/data/structure/IContainer.h"

namespace norvane::platform::data::structure {

/// The facet of a container that is a link: a target, which is the dotted path of another container.
/// It is not a reference: the target is a text that is looked up afresh each time, nothing keeps it true when
/// containers are renamed or removed, and no operation of IContainer follows it. It belongs to the handle it
/// was taken from and goes with it.
///
/// Slots keep this order, new ones go last.
class QVT_DATA_TYPE ILink {
  public:
    virtual ~ILink() noexcept(false) {}

    /// The handle that this facet belongs to, borrowed. No guard.
    virtual IContainer* container() = 0;

    /// A new handle, without facets, on the container at the target, walked from the root of `store`, or of
    /// the link's own store when that is null. Null when the link has no target, when the path leads nowhere
    /// there, or to a property. A target that is a link is returned as that link. Takes the guard of the
    /// link's store, then that of `store`.
    virtual SharedPtr<IContainer> resolve(IDataStore* store) = 0;

    /// Stores the target, a dotted path from a root; a WideString without text removes it. It need not lead
    /// anywhere. Takes the guard. Another handle on this link keeps the target it read when it was opened.
    virtual void setTarget(WideString target) = 0;

    /// The target, as read when the handle was opened or last set through it. Empty when there is none. Takes
    /// the guard.
    virtual WideString target() = 0;

    /// The facet of a handle whose kind is link. Null for null, for another kind, and for a handle that has
    /// no facets, as those of the front end; `handle->find(WideString())` gives one that has. Borrowed: keep
    /// the SharedPtr that holds the handle. Takes the guard to ask for the kind.
    static QVT_DATA_API ILink* to(IContainer* container);
};

}  // namespace norvane::platform::data::structure
