// A root as a group.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

#include "Names.h"
#include "norvane/platform/core/storage/datastore/IDataStore.h"

namespace qvt {

// The public interface has handles on containers and properties and none on a root. This stands in front of a
// store and shows its root, record 0, as the group of that name, so that all there is for groups can be done
// with the root as well; what is changed in the group is changed in the root. All other records go through
// as they are.
//
// Where record 0 is no root (a document whose outermost element is another), a group that is in no store
// stands for one, with record 0 as its only child. That group is to be looked at, not changed.
//
// Handles made through this are to go before it does. Guards are those of the store.
class RootAsGroup : public IDataStore {
  public:
    // The store is borrowed.
    explicit RootAsGroup(IDataStore& store);

    bool hasRoot() const { return hasRoot_; }
    // A handle on the group.
    SharedPtr<IContainer> open();

    void read(std::uint32_t offset, void* buffer, std::uint32_t size) override;
    Guard* lock() override { return store_.lock(); }
    void flush() override { store_.flush(); }
    std::uint32_t version() override { return store_.version(); }
    void setVersion(std::uint32_t version) override { store_.setVersion(version); }
    std::uint64_t size() override;
    std::uint32_t append(const void* buffer, std::uint32_t size) override;
    void extend(std::uint32_t offset, const void* buffer, std::uint32_t size) override;
    void write(std::uint32_t offset, const void* buffer, std::uint32_t size, bool flag) override;
    std::uint32_t recordSize(std::uint32_t offset) override;
    void remove(std::uint32_t offset) override;
    const void* view(std::uint32_t offset, std::uint32_t& size) override;
    bool patch(std::uint32_t offset, std::uint32_t position, const void* bytes, std::uint32_t size,
               bool flag) override;
    std::uint32_t recordLimit() override { return store_.recordLimit(); }
    std::uint64_t changeStamp() override { return store_.changeStamp(); }

  private:
    using Bytes = std::vector<std::byte>;

    std::uint32_t top() const;
    // The bytes to show in place of the store's, or null.
    Bytes* shown(std::uint32_t offset);
    // Takes what was changed in them.
    void take(std::uint32_t offset, bool flag);

    IDataStore& store_;
    bool hasRoot_;
    std::map<std::uint32_t, Bytes> made_;  // records that are in no store
    Bytes group_;                          // the root as it was shown last
};

}  // namespace qvt
