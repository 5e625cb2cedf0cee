#pragma once

#include "norvane/platform/data/Names.h"

namespace norvane::platform::data::format::xml {

/// Receives what is wrong in a document while it is read. To be implemented by the host.
/// It is not a log and cannot stop the reading: each report stands for one element that was skipped with all
/// its content. What ends the reading, as a syntax error or an exception, is not reported.
///
/// Slots keep this order, new ones go last.
class QVT_DATA_TYPE IErrorReporter {
  public:
    virtual ~IErrorReporter() noexcept(false) {}

    /// Called on the thread of the parse, while elements are open: the element's name, " : " and what is
    /// wrong.
    virtual void report(WideString message) = 0;
};

}  // namespace norvane::platform::data::format::xml
