#pragma once

#include "norvane/platform/data/metadata/IProperty.h"
#include "norvane/platform/data/metadata/tDataType.h"

namespace norvane::platform::data::metadata {

/// The value of a primitive property: a counted run of elements of one type, with a unit.
/// It is not typed access: elements go in and out as the bytes they are, little-endian and without gaps, and
/// only bounds are checked. It is a facet, belongs to the handle it was taken from, and goes with it.
///
/// An element is a number, a code unit of text, one component of a vector or matrix, or one byte of a struct.
/// Text is one or more strings, each with its NUL, which counts. A primitive whose value is a URI has no
/// elements.
///
/// Each operation takes the guard for its whole length, except where it says "No guard".
///
/// Value bytes and unit always come from the store. Count, sizes, struct type, URI and locale are those this
/// handle read when it was opened or set itself: after a `resize` through another handle it still has the old
/// ones.
///
/// Slots keep this order, new ones go last.
class QVT_DATA_TYPE IPrimitive {
  public:
    virtual ~IPrimitive() noexcept(false) {}

    /// The handle that this facet belongs to, borrowed. No guard.
    virtual IProperty* property() = 0;

    /// The number of elements. 0 when the value is a URI or the type is none.
    virtual std::uint32_t count() = 0;

    /// Bytes of one element. 0 when the type is none.
    virtual std::uint32_t elementSize() = 0;

    /// Bytes of the whole value; of the URI with its NUL when the value is one.
    virtual std::uint32_t valueBytes() = 0;

    /// The tDataType, or whatever other number the record held.
    virtual std::uint32_t dataType() = 0;

    /// The unit id, 0 for none. There is no way to change it on a primitive that exists.
    virtual std::uint32_t units() = 0;

    /// Sets the class text by which the layout of a struct is found. False, with nothing changed, when the
    /// type is not struct, `name` was never given text, or it would not fit a record.
    virtual bool setStructType(WideString name) = 0;

    /// That class text; a WideString without text when there is none.
    virtual WideString structType() = 0;

    /// Makes the value a URI; a WideString without text makes it an empty value again. What the value was
    /// before is gone both ways. False, with nothing changed, only when it would not fit a record.
    virtual bool setUri(WideString uri) = 0;

    /// The URI; a WideString without text when the value is none.
    virtual WideString uri() = 0;

    /// Sets the locale of the value, kept verbatim; a WideString without text removes it. Not that of a
    /// display name. Removing it from a struct that has a struct type leaves the value misplaced by the
    /// length of that type: set the value again.
    virtual void setLocale(WideString tag) = 0;

    /// The locale of the value; a WideString without text when there is none.
    virtual WideString locale() = 0;

    /// Writes `count` elements from element `start` on. Past the end the value grows to the end of the write,
    /// with zeros in a gap; it never shrinks. `source` is the first element to write, except when the value
    /// is empty and `start` is not 0: then it is the element 0 of an array from which elements `start` and on
    /// are taken. False, with nothing changed, when `count` is 0, `source` is null, the value is a URI, the
    /// type is none, or the value would not fit a record. On success the property loses kInherited, and so do
    /// the tables and containers around it, up to the first that does not have it.
    virtual bool writeValues(const void* source, std::uint32_t start, std::uint32_t count) = 0;

    /// Replaces the value by `count` zero elements; nothing of the old value is kept. False, with nothing
    /// changed, when the value is a URI or would not fit a record. Leaves kInherited as it is.
    virtual bool resize(std::uint32_t count) = 0;

    /// Reads `count` elements from element `start` on into `target`. All or nothing: false, with `target`
    /// left alone, when the range ends past the value, the value is empty or a URI, or the type is none.
    /// False without a guard when `count` is 0.
    virtual bool readValues(void* target, std::uint32_t start, std::uint32_t count) = 0;

    /// The facet of a handle on a primitive. Null for null and for a handle on a table. Borrowed: keep the
    /// SharedPtr that holds the handle. Takes the guard to ask for the kind.
    static QVT_DATA_API IPrimitive* to(IProperty* property);
};

}  // namespace norvane::platform::data::metadata
