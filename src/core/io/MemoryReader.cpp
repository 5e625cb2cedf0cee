#include "norvane/platform/core/io/MemoryReader.h"

namespace norvane::platform::core::io {

bool MemoryReader::open() {
    position_ = 0;
    return true;
}

void MemoryReader::close() {}

std::size_t MemoryReader::read(void* buffer, std::size_t size) {
    const std::size_t taken = bytes_.copy(static_cast<char*>(buffer), size, position_);
    position_ += taken;
    return taken;
}

}  // namespace norvane::platform::core::io
