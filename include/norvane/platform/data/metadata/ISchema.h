#pragma once

#include "norvane/platform/data/metadata/IStructLayout.h"

namespace norvane::platform::data::metadata {

/// One or more types, the answer to one ISchemaLocator::locate.
/// It does not own its layouts: let it go before the locator goes, and before the store of a type is taken
/// out of the locator. A host cannot implement it. Read from any thread; no operation takes a guard.
///
/// Slots keep this order, new ones go last.
class QVT_DATA_TYPE ISchema {
  public:
    virtual ~ISchema() noexcept(false) {}

    /// The name of the first type that was found: the dotted path of its table.
    virtual WideString name() = 0;

    /// The layout of the first type that was found, borrowed from the locator. Never null.
    virtual IStructLayout* layout() = 0;
};

}  // namespace norvane::platform::data::metadata
