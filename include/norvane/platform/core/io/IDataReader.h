#pragma once

#include <cstddef>

#include "norvane/platform/core/Export.h"

namespace norvane::platform::core::io {

/// A source of bytes, given by the host. Slots keep this order, new ones go last.
class QVT_CORE_API IDataReader {
  public:
    virtual ~IDataReader() noexcept(false) {}

    /// Makes the source ready, at its beginning. False means that nothing can be read; neither `read` nor
    /// `close` is called then.
    virtual bool open() = 0;
    /// Lets the source go. Called once after an `open` that was true, and not after an exception.
    virtual void close() = 0;
    /// Copies up to `size` bytes to `buffer` and answers how many. 0 is the end, and only the end.
    virtual std::size_t read(void* buffer, std::size_t size) = 0;
};

}  // namespace norvane::platform::core::io
