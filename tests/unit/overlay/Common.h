// An overlay on a backend in memory, and short forms of what is done to it.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

#include "contract/StoreContract.h"
#include "support/MemoryBackend.h"

namespace norvane::platform::test {

using Guard = IDataStore::Guard;

// A guard that goes with its scope.
class Held {
  public:
    explicit Held(IDataStore& store) : guard_(store.lock()) {}
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;
    ~Held() noexcept(false) { delete guard_; }

  private:
    Guard* guard_;
};

struct OperationFailed : std::runtime_error {
    OperationFailed() : std::runtime_error("the operation has failed") {}
};

// Runs an operation under a guard that an exception ends.
template <class Operation>
void failUnderGuard(IDataStore& store, Operation operation) {
    try {
        const Held guard(store);
        operation();
        throw OperationFailed();
    } catch (const OperationFailed&) {
    }
}

// An entity: kind, parent, open count, and so on, here only as long as a test needs it.
inline std::string entity(std::uint32_t openCount, const std::string& rest = "locale,flags") {
    std::string bytes(
        "\x04"
        "PPPP",
        5);
    for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(openCount >> shift & 0xFF);
    return bytes + rest;
}

class OverlayTest : public testing::Test {
  protected:
    ~OverlayTest() noexcept override {}

    std::uint32_t append(const std::string& bytes) { return store.append(bytes.data(), sizeOf(bytes)); }
    void write(std::uint32_t offset, const std::string& bytes, bool flag = true) {
        store.write(offset, bytes.data(), sizeOf(bytes), flag);
    }
    void extend(std::uint32_t offset, const std::string& bytes) {
        store.extend(offset, bytes.data(), sizeOf(bytes));
    }
    void patch(std::uint32_t offset, std::uint32_t position, const std::string& bytes, bool flag = true) {
        store.patch(offset, position, bytes.data(), sizeOf(bytes), flag);
    }
    std::string bytes(std::uint32_t offset) { return bytesOf(store, offset); }

    MemoryBackend backend;
    OverlayStore store{backend};
    Overlay& overlay = store.overlay;
};

// The code of the StoreError that a step throws.
template <class Step>
StoreError::Code codeOf(Step step) {
    try {
        step();
    } catch (const StoreError& error) {
        return error.code();
    }
    ADD_FAILURE() << "nothing was thrown";
    return StoreError::Code::wrongState;
}

}  // namespace norvane::platform::test
