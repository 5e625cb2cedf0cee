#include "norvane/platform/core/io/MemoryWriter.h"

namespace norvane::platform::core::io {

bool MemoryWriter::open() {
    text_.clear();
    closed_ = false;
    return true;
}

void MemoryWriter::close() { closed_ = true; }

std::size_t MemoryWriter::write(const void* buffer, std::size_t size) {
    text_.append(static_cast<const char*>(buffer), size);
    return size;
}

}  // namespace norvane::platform::core::io
