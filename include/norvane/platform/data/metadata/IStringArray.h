#pragma once

#include "norvane/platform/core/Types.h"
#include "norvane/platform/data/metadata/IPrimitive.h"

namespace norvane::platform::data::metadata {

/// A list of strings, made from the elements of a text primitive and stored into one.
/// It is not tied to any primitive: it lives in memory alone, and takes no guard of its own. One array
/// belongs to one thread at a time.
///
/// Slots keep this order, new ones go last.
class QVT_DATA_TYPE IStringArray {
  public:
    virtual ~IStringArray() noexcept(false) {}

    /// The number of strings. Not of code units.
    virtual std::uint32_t count() = 0;

    /// A copy of the string at an index. A WideString without text past the end.
    virtual WideString at(std::uint32_t index) = 0;

    /// Adds a copy at the end.
    virtual void append(WideString text) = 0;

    /// Writes the strings, each with its NUL, over the elements of a primitive from element 0 on. False, with
    /// nothing changed, for null and when its type is not one of text. True in all other cases, also when the
    /// primitive refused, as one whose value is a URI does. The value is not shortened: a longer one keeps
    /// its tail, so `resize(0)` first to replace it. An empty array empties it.
    virtual bool storeTo(IPrimitive* primitive) = 0;

    /// Splits `count` code units (not strings), as IPrimitive::readValues gives them, at each NUL. What
    /// stands behind the last NUL is dropped, empty strings are kept. With `count` 0, and for null, an empty
    /// array. The caller owns the result and deletes it.
    static QVT_DATA_API IStringArray* to(const core::tWChar* text, unsigned count);
};

}  // namespace norvane::platform::data::metadata
