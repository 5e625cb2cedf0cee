#pragma once

#include <array>
#include <cstdint>

namespace norvane::platform::core {

/// A universally unique identifier. Default-constructed it is the nil one, all of whose bytes are 0.
class QVTUUID {
  public:
    QVTUUID() = default;

    /// All 16 bytes, in the order in which an identifier is written.
    const std::array<std::uint8_t, 16>& bytes() const { return bytes_; }

  private:
    std::array<std::uint8_t, 16> bytes_{};
};

}  // namespace norvane::platform::core
