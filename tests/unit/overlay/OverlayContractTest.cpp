// The contract of all stores, on an overlay that has all memory and on one that has hardly any.
#include "Common.h"

namespace norvane::platform::test {
namespace {

struct Roomy {
    IDataStore& store() { return store_; }
    MemoryBackend backend_;
    OverlayStore store_{backend_};
};

// Commits before each look, so that nearly every record is fetched anew; not after a failure, when nothing
// can be committed.
class ForgetfulStore : public OverlayStore {
  public:
    using OverlayStore::OverlayStore;
    ~ForgetfulStore() noexcept override = default;

    std::uint32_t recordSize(std::uint32_t offset) override {
        try {
            overlay.commit();
        } catch (const std::logic_error&) {
        }
        return OverlayStore::recordSize(offset);
    }
};

struct Cramped {
    static OverlayOptions options() {
        OverlayOptions options;
        options.memoryLimit = 3000;
        return options;
    }
    IDataStore& store() { return store_; }
    MemoryBackend backend_;
    ForgetfulStore store_{backend_, options()};
};

}  // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(RoomyOverlay, StoreContract, Roomy);
INSTANTIATE_TYPED_TEST_SUITE_P(CrampedOverlay, StoreContract, Cramped);

}  // namespace norvane::platform::test
