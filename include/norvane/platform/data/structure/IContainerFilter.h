#pragma once

#include "norvane/platform/data/structure/IContainer.h"

namespace norvane::platform::data::structure {

/// A cursor over the child containers of a container, in the order in which they were added.
/// It is not live: it steps over the children that were there when it was made. Those added later are not
/// seen, those removed since are passed over. It does not keep the container open, and needs only the store
/// to live on.
///
/// It starts on the first container, or past the end when there is none. Steps take the guard. One cursor
/// belongs to one thread at a time. There is no way back to the start but `previous` or a new filter.
///
/// Slots keep this order, new ones go last.
class QVT_DATA_TYPE IContainerFilter {
  public:
    virtual ~IContainerFilter() noexcept(false) {}

    /// Goes to the following container. False when there is none: the cursor then stands past the end and
    /// `value` is null.
    virtual bool next() = 0;

    /// Goes to the container before; from past the end, to the last. False when there is none: the cursor
    /// then stays.
    virtual bool previous() = 0;

    /// A new handle, with its facet, on the container under the cursor. Null past the end, for a container of
    /// an unknown kind (whose open count then stays raised), and when the record is gone. Does not move the
    /// cursor.
    virtual SharedPtr<IContainer> value() = 0;
};

}  // namespace norvane::platform::data::structure
