#pragma once

#include "norvane/platform/data/metadata/IProperty.h"

namespace norvane::platform::data::metadata {

/// A cursor over the properties in a container or a table, in the order in which they were added.
/// It is not live: what is added after it was made is not reached. Of a container it steps over the children
/// there were, and needs only the store to live on; of a table it keeps the table open and looks up each
/// position in the list that is in the store then.
///
/// It starts on the first property, or past the end when there is none. Steps take the guard. One cursor
/// belongs to one thread at a time. There is no way back to the start but `previous` or a new filter.
///
/// Slots keep this order, new ones go last.
class QVT_DATA_TYPE IPropertyFilter {
  public:
    /// That of a filter over a table lowers the table's open count, without the guard.
    virtual ~IPropertyFilter() noexcept(false) {}

    /// Goes to the following property. False when there is none: the cursor then stands past the end and
    /// `value` is null.
    virtual bool next() = 0;

    /// Goes to the property before; from past the end, to the last. False when there is none: the cursor then
    /// stays.
    virtual bool previous() = 0;

    /// A new handle on the property under the cursor. Null past the end and when the record is gone. Does not
    /// move the cursor.
    virtual SharedPtr<IProperty> value() = 0;
};

}  // namespace norvane::platform::data::metadata
