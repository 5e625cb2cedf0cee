#pragma once

#include <cstddef>
#include <string_view>

#include "norvane/platform/core/Export.h"
#include "norvane/platform/core/io/IDataReader.h"

namespace norvane::platform::core::io {

/// Reads bytes that the host holds. They are borrowed for as long as the reader lives.
class QVT_CORE_API MemoryReader : public IDataReader {
  public:
    /// Reads these bytes.
    explicit MemoryReader(std::string_view bytes) : bytes_(bytes) {}
    /// Reads `size` bytes from `bytes` on.
    MemoryReader(const void* bytes, std::size_t size) : bytes_(static_cast<const char*>(bytes), size) {}

    ~MemoryReader() noexcept override {}

    /// Goes back to the first byte. Always true.
    bool open() override;
    /// Does nothing.
    void close() override;
    std::size_t read(void* buffer, std::size_t size) override;

  private:
    std::string_view bytes_;
    std::size_t position_ = 0;
};

}  // namespace norvane::platform::core::io
