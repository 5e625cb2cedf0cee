#pragma once

#include <cstddef>

#include "norvane/platform/core/Export.h"

namespace norvane::platform::core::io {

/// A sink of bytes, given by the host. Slots keep this order, new ones go last.
class QVT_CORE_API IDataWriter {
  public:
    virtual ~IDataWriter() noexcept(false) {}

    /// Makes the sink ready. Writers of this library that could not be made ready take no bytes afterwards.
    virtual bool open() = 0;
    /// Ends the output. It is not called after a failure, which a writer can tell an abandoned output by.
    virtual void close() = 0;
    /// Takes up to `size` bytes and answers how many. The rest is offered again; 0 means that no more can be
    /// taken.
    virtual std::size_t write(const void* buffer, std::size_t size) = 0;
};

}  // namespace norvane::platform::core::io
