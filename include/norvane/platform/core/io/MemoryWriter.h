#pragma once

#include <cstddef>
#include <string>

#include "norvane/platform/core/Export.h"
#include "norvane/platform/core/io/IDataWriter.h"

namespace norvane::platform::core::io {

/// Collects what is written to it.
class QVT_CORE_API MemoryWriter : public IDataWriter {
  public:
    ~MemoryWriter() noexcept override {}

    /// Forgets what was collected. Always true.
    bool open() override;
    /// Ends the output: `closed` is true from then on.
    void close() override;
    /// Takes all bytes.
    std::size_t write(const void* buffer, std::size_t size) override;

    /// All bytes since `open`.
    const std::string& text() const { return text_; }
    /// True if the output was ended and not just broken off.
    bool closed() const { return closed_; }

  private:
    std::string text_;
    bool closed_ = false;
};

}  // namespace norvane::platform::core::io
