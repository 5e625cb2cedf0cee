// A store whose reading is shown as progress.
#pragma once

#include <cstdint>
#include <vector>

#include "Names.h"
#include "Progress.h"
#include "norvane/platform/core/storage/datastore/IDataStore.h"

namespace qvt {

// Passes everything on to another store, and tells how many of its records were looked at.
class WatchedStore : public IDataStore {
  public:
    // Both are borrowed.
    WatchedStore(IDataStore& store, Progress& progress);

    void read(std::uint32_t offset, void* buffer, std::uint32_t size) override {
        lookedAt(offset);
        store_.read(offset, buffer, size);
    }
    Guard* lock() override { return store_.lock(); }
    void flush() override { store_.flush(); }
    std::uint32_t version() override { return store_.version(); }
    void setVersion(std::uint32_t version) override { store_.setVersion(version); }
    std::uint64_t size() override { return store_.size(); }
    std::uint32_t append(const void* buffer, std::uint32_t size) override {
        return store_.append(buffer, size);
    }
    void extend(std::uint32_t offset, const void* buffer, std::uint32_t size) override {
        store_.extend(offset, buffer, size);
    }
    void write(std::uint32_t offset, const void* buffer, std::uint32_t size, bool flag) override {
        store_.write(offset, buffer, size, flag);
    }
    std::uint32_t recordSize(std::uint32_t offset) override {
        lookedAt(offset);
        return store_.recordSize(offset);
    }
    void remove(std::uint32_t offset) override { store_.remove(offset); }
    const void* view(std::uint32_t offset, std::uint32_t& size) override {
        lookedAt(offset);
        return store_.view(offset, size);
    }
    bool patch(std::uint32_t offset, std::uint32_t position, const void* bytes, std::uint32_t size,
               bool flag) override {
        return store_.patch(offset, position, bytes, size, flag);
    }
    std::uint32_t recordLimit() override { return store_.recordLimit(); }
    std::uint64_t changeStamp() override { return store_.changeStamp(); }
    Companion* companion(std::unique_ptr<Companion> (*make)()) override { return store_.companion(make); }

  private:
    void lookedAt(std::uint32_t offset);

    IDataStore& store_;
    Progress& progress_;
    std::vector<bool> isKnown_;
    std::uint64_t count_ = 0;
};

}  // namespace qvt
