// A backend in memory that counts its calls, fails when it is told to, and does not believe what it is told.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <map>
#include <set>
#include <string>

#include "norvane/platform/core/storage/datastore/IDataStore.h"
#include "norvane/platform/core/storage/datastore/StoreError.h"
#include "stores/overlay/Backend.h"
#include "stores/overlay/Overlay.h"

namespace norvane::platform::test {

using core::storage::datastore::Backend;
using core::storage::datastore::Change;
using core::storage::datastore::IDataStore;
using core::storage::datastore::LoadTarget;
using core::storage::datastore::Overlay;
using core::storage::datastore::OverlayOptions;
using core::storage::datastore::StoreError;
using core::storage::datastore::StoreMeta;

class MemoryBackend : public Backend {
  public:
    using Records = std::map<std::uint32_t, std::string>;

    const Records& records() const { return records_; }
    std::uint64_t loads() const { return loads_; }
    std::uint64_t commits() const { return commits_; }
    // The offsets that the last commit has changed.
    const std::set<std::uint32_t>& lastChanged() const { return lastChanged_; }

    // As if another writer had done it.
    void put(std::uint32_t offset, const std::string& bytes) {
        records_[offset] = bytes;
        newest_.recordCount = records_.size();
        newest_.next = std::max<std::uint64_t>(newest_.next, offset + std::uint64_t{1});
        ++newest_.revision;
    }
    // All calls fail until it is calm again; or the n-th from now, beginning with 1.
    void failAll() { failAt(0); }
    void failAt(std::uint64_t n) {
        failing_ = true;
        countdown_ = n;
    }
    void calm() { failing_ = false; }

    const StoreMeta& meta() const override { return meta_; }

    bool load(std::uint32_t offset, LoadTarget& target) override {
        ++loads_;
        failIfTold(StoreError::Code::notReadable);
        const auto found = records_.find(offset);
        if (found == records_.end()) return false;
        std::byte* room = target.take(static_cast<std::uint32_t>(found->second.size()));
        std::memcpy(room, found->second.data(), found->second.size());
        return true;
    }

    void commit(std::span<const Change> changes, const StoreMeta& meta) override {
        failIfTold(StoreError::Code::diskFull);
        Records after = records_;
        lastChanged_.clear();
        for (const Change& each : changes) {
            EXPECT_TRUE(lastChanged_.empty() || *lastChanged_.rbegin() < each.offset);
            EXPECT_EQ(each.isNew, !records_.contains(each.offset)) << each.offset;
            EXPECT_FALSE(each.isRemoved && each.isNew) << each.offset;
            lastChanged_.insert(each.offset);
            if (each.isRemoved)
                after.erase(each.offset);
            else
                after[each.offset].assign(reinterpret_cast<const char*>(each.bytes), each.size);
        }
        EXPECT_EQ(meta.revision, meta_.revision + 1);
        EXPECT_EQ(meta.recordCount, after.size());
        EXPECT_TRUE(after.empty() || after.rbegin()->first < meta.next);
        records_ = std::move(after);
        meta_ = newest_ = meta;
        ++commits_;
    }

    bool refresh() override {
        failIfTold(StoreError::Code::notReadable);
        const bool isOther = meta_ != newest_;
        meta_ = newest_;
        return isOther;
    }

  private:
    void failIfTold(StoreError::Code code) {
        if (failing_ && (countdown_ == 0 || --countdown_ == 0))
            throw StoreError(code, "the backend has failed", IDataStore::BADOFF);
    }

    Records records_;
    StoreMeta meta_;
    StoreMeta newest_;
    std::uint64_t loads_ = 0;
    std::uint64_t commits_ = 0;
    std::set<std::uint32_t> lastChanged_;
    bool failing_ = false;
    std::uint64_t countdown_ = 0;
};

// An overlay as a store.
class OverlayStore : public IDataStore {
  public:
    explicit OverlayStore(Backend& backend, const OverlayOptions& options = {}) : overlay(backend, options) {}
    ~OverlayStore() noexcept override = default;

    void read(std::uint32_t offset, void* buffer, std::uint32_t size) override {
        overlay.read(offset, buffer, size);
    }
    Guard* lock() override { return overlay.lock(); }
    void flush() override { overlay.flush(); }
    std::uint32_t version() override { return overlay.version(); }
    void setVersion(std::uint32_t version) override { overlay.setVersion(version); }
    std::uint64_t size() override { return overlay.size(); }
    std::uint32_t append(const void* buffer, std::uint32_t size) override {
        return overlay.append(buffer, size);
    }
    void extend(std::uint32_t offset, const void* buffer, std::uint32_t size) override {
        overlay.extend(offset, buffer, size);
    }
    void write(std::uint32_t offset, const void* buffer, std::uint32_t size, bool flag) override {
        overlay.write(offset, buffer, size, flag);
    }
    std::uint32_t recordSize(std::uint32_t offset) override { return overlay.recordSize(offset); }
    void remove(std::uint32_t offset) override { overlay.remove(offset); }
    const void* view(std::uint32_t offset, std::uint32_t& size) override {
        return overlay.view(offset, size);
    }
    bool patch(std::uint32_t offset, std::uint32_t position, const void* bytes, std::uint32_t size,
               bool flag) override {
        return overlay.patch(offset, position, bytes, size, flag);
    }
    std::uint32_t recordLimit() override { return overlay.recordLimit(); }
    std::uint64_t changeStamp() override { return overlay.changeStamp(); }
    Companion* companion(std::unique_ptr<Companion> (*make)()) override { return overlay.companion(make); }

    Overlay overlay;
};

}  // namespace norvane::platform::test
