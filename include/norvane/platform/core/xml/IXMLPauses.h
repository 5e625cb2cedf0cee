#pragma once

#include "norvane/platform/core/Export.h"

namespace norvane::platform::core::xml {

/// Hears where a parse leaves the events of its document. The callback of a parser implements it beside
/// XMLCallback if it keeps back what it was told; the parser asks the callback for it where a parse begins.
class QVT_CORE_API IXMLPauses {
  public:
    virtual ~IXMLPauses() noexcept(false) {}

    /// Somebody else's code may run next: the parser turns for more to a reader that is not one of this
    /// library (MemoryReader and FileReader, but not what is derived from them), or is done, well or not.
    /// What is kept back must be carried out now. What it throws ends the parse, as from any callback.
    virtual void pausing() = 0;
};

}  // namespace norvane::platform::core::xml
