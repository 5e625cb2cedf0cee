// A store in front of another one, for tests that watch or disturb the calls that a store gets.
#pragma once

#include <cstdint>
#include <cstring>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "norvane/platform/core/storage/datastore/IDataStore.h"

namespace norvane::platform::test {

using core::storage::datastore::IDataStore;
using core::storage::datastore::kWholeRecord;

// Whether the operations behind the required ones are offered. Off, every look at a record is a call of
// `read`, and every change of one a call of `write`.
enum class Extensions { off, on };

// One call of a store. What an operation does not have is 0, false or empty; `append` has the offset that it
// gave.
struct StoreCall {
    std::string name;
    std::uint32_t offset = 0;
    std::uint32_t size = 0;
    bool flag = false;
    std::string bytes;  // that were handed in

    friend bool operator==(const StoreCall&, const StoreCall&) = default;
};

inline std::ostream& operator<<(std::ostream& out, const StoreCall& call) {
    return out << call.name << " @" << call.offset << " size " << call.size << (call.flag ? " flagged" : "");
}

// Forwards everything. Derived classes hear of each call before it is made and after it has succeeded;
// `unlock` is the end of a guard.
//
// The views that it gives are copies that go with the next change, so that AddressSanitizer finds whoever
// looks at a view for too long.
class ForwardingStore : public IDataStore {
  public:
    // The other store is borrowed.
    ForwardingStore(IDataStore& store, Extensions extensions) : store_(store), extensions_(extensions) {}

    ~ForwardingStore() noexcept override {}

    void setExtensions(Extensions extensions) { extensions_ = extensions; }
    int guardsHeld() const { return guardsHeld_; }

    void read(std::uint32_t offset, void* buffer, std::uint32_t size) override {
        before("read");
        store_.read(offset, buffer, size);
        after({"read", offset, size, false, {}});
    }

    Guard* lock() override {
        before("lock");
        Guard* guard = new WatchedGuard(*this, std::unique_ptr<Guard>(store_.lock()));
        after({"lock", 0, 0, false, {}});
        return guard;
    }

    void flush() override {
        before("flush");
        store_.flush();
        after({"flush", 0, 0, false, {}});
    }

    std::uint32_t version() override {
        before("version");
        const std::uint32_t version = store_.version();
        after({"version", 0, 0, false, {}});
        return version;
    }

    // The version stands in the place of the size.
    void setVersion(std::uint32_t version) override {
        before("setVersion");
        store_.setVersion(version);
        after({"setVersion", 0, version, false, {}});
    }

    std::uint64_t size() override {
        before("size");
        const std::uint64_t size = store_.size();
        after({"size", 0, 0, false, {}});
        return size;
    }

    std::uint32_t append(const void* buffer, std::uint32_t size) override {
        before("append");
        const std::uint32_t offset = store_.append(buffer, size);
        after({"append", offset, size, false, bytesOf(buffer, size)});
        views_.clear();
        return offset;
    }

    void extend(std::uint32_t offset, const void* buffer, std::uint32_t size) override {
        before("extend");
        store_.extend(offset, buffer, size);
        after({"extend", offset, size, false, bytesOf(buffer, size)});
        views_.clear();
    }

    void write(std::uint32_t offset, const void* buffer, std::uint32_t size, bool flag) override {
        before("write");
        store_.write(offset, buffer, size, flag);
        after({"write", offset, size, flag, bytesOf(buffer, size)});
        views_.clear();
    }

    std::uint32_t recordSize(std::uint32_t offset) override {
        before("recordSize");
        const std::uint32_t size = store_.recordSize(offset);
        after({"recordSize", offset, 0, false, {}});
        return size;
    }

    void remove(std::uint32_t offset) override {
        before("remove");
        store_.remove(offset);
        after({"remove", offset, 0, false, {}});
        views_.clear();
    }

    const void* view(std::uint32_t offset, std::uint32_t& size) override {
        if (extensions_ == Extensions::off) return IDataStore::view(offset, size);
        before("view");
        const void* bytes = store_.view(offset, size);
        const void* result = bytes ? keepView(bytes, size) : nullptr;
        after({"view", offset, size, false, {}});
        return result;
    }

    // The position stands before the bytes, as four of them.
    bool patch(std::uint32_t offset, std::uint32_t position, const void* bytes, std::uint32_t size,
               bool flag) override {
        if (extensions_ == Extensions::off) return IDataStore::patch(offset, position, bytes, size, flag);
        before("patch");
        const bool done = store_.patch(offset, position, bytes, size, flag);
        after({"patch", offset, size, flag, bytesOf(&position, sizeof position) + bytesOf(bytes, size)});
        views_.clear();
        return done;
    }

    // The limit holds in any case, since the other store refuses what is above it.
    std::uint32_t recordLimit() override { return store_.recordLimit(); }

    std::uint64_t changeStamp() override {
        return extensions_ == Extensions::off ? IDataStore::changeStamp() : store_.changeStamp();
    }

  protected:
    virtual void before(const char*) {}
    virtual void after(const StoreCall&) {}

  private:
    class WatchedGuard : public Guard {
      public:
        WatchedGuard(ForwardingStore& store, std::unique_ptr<Guard> guard)
            : store_(store), guard_(std::move(guard)) {
            ++store_.guardsHeld_;
        }
        ~WatchedGuard() noexcept(false) override {
            --store_.guardsHeld_;
            store_.after({"unlock", 0, 0, false, {}});
            guard_.reset();
        }

      private:
        ForwardingStore& store_;
        std::unique_ptr<Guard> guard_;
    };

    static std::string bytesOf(const void* bytes, std::size_t size) {
        return size == 0 ? std::string() : std::string(static_cast<const char*>(bytes), size);
    }

    const void* keepView(const void* bytes, std::uint32_t size) {
        views_.emplace_back(new char[size == 0 ? 1 : size]);
        if (size != 0) std::memcpy(views_.back().get(), bytes, size);
        return views_.back().get();
    }

    IDataStore& store_;
    Extensions extensions_;
    int guardsHeld_ = 0;
    std::vector<std::unique_ptr<char[]>> views_;
};

}  // namespace norvane::platform::test
