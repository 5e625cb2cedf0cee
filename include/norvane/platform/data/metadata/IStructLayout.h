#pragma once

#include "norvane/platform/core/Types.h"
#include "norvane/platform/data/Names.h"

namespace norvane::platform::data::metadata {

/// The binary shape of a type: its members, flattened to a list of fields with their places in one packed
/// struct value. It is not live: it shows the type's table as it was when the layout was made, and never
/// changes. It belongs to the locator, as ISchema says. Read from any thread; no operation takes a guard.
///
/// Values are packed: a field begins where the one before it ended. Names are dotted; an array of structs
/// gives one field per member and struct, numbered from [0]. Members whose type is not found, is the type
/// itself, or takes no room have no field.
///
/// Slots keep this order, new ones go last.
class QVT_DATA_TYPE IStructLayout {
  public:
    /// One field. Plain data, owned by the layout.
    struct tField {
        const core::tWChar* name;  ///< Flattened name, with NUL, owned by the layout.
        std::uint32_t type;        ///< tDataType, never kStruct.
        std::uint32_t count;       ///< Elements. 0 for a member whose value is a URI, though it takes room.
        std::uint32_t offset;      ///< Byte position in one struct value.
        std::uint32_t size;        ///< Bytes.
    };

    virtual ~IStructLayout() noexcept(false) {}

    /// The number of fields.
    virtual std::uint32_t fieldCount() = 0;

    /// Bytes of one struct value.
    virtual std::uint32_t byteSize() = 0;

    /// Elements of one struct value, over all fields: the numbers that stand for it in a document.
    virtual std::uint32_t valueCount() = 0;

    /// The field at an index, borrowed. Null past the end.
    virtual tField* field(std::uint32_t index) = 0;

    /// The first field with this flattened name, borrowed. Null when there is none; the bare name of a struct
    /// member has none.
    virtual tField* field(WideString name) = 0;
};

}  // namespace norvane::platform::data::metadata
