#include "norvane/platform/core/storage/datastore/MemoryDataStore.h"

#include <algorithm>
#include <cstdlib>
#include <mutex>
#include <new>
#include <stdexcept>
#include <type_traits>
#include <utility>

#include "norvane/platform/core/thread/RecursiveMutex.h"
#include "stores/pool/RecordPool.h"

namespace norvane::platform::core::storage::datastore {
namespace {

// Stands for all guards of a store, which are taken for each operation on the public handles: deleting it
// lets go of the mutex once, and leaves it where it is.
class MemoryGuard final : public IDataStore::Guard {
  public:
    explicit MemoryGuard(core::thread::RecursiveMutex& mutex) : mutex_(mutex) {}
    ~MemoryGuard() noexcept override = default;

    static void operator delete(MemoryGuard* guard, std::destroying_delete_t) noexcept {
        guard->mutex_.unlock();
    }

  private:
    core::thread::RecursiveMutex& mutex_;
};

// Blocks by offset. The table is the C library's, which moves a large one without copying it.
class Slots {
  public:
    Slots() = default;
    Slots(const Slots&) = delete;
    Slots& operator=(const Slots&) = delete;
    ~Slots() { std::free(table_); }

    std::uint64_t count() const { return count_; }

    // Null where there is no record.
    Block* find(std::uint32_t offset) const {
        return offset < count_ && table_[offset].bytes ? &table_[offset] : nullptr;
    }

    // The slot of an offset below the count.
    const Block& operator[](std::uint32_t offset) const { return table_[offset]; }

    // Makes room for one more slot, so that `add` cannot fail.
    void prepare() {
        if (count_ < room_) return;
        const std::uint64_t room = room_ == 0 ? kFirstRoom : room_ * 2;
        void* table = std::realloc(static_cast<void*>(table_), room * sizeof(Block));
        if (!table) throw std::bad_alloc();
        table_ = static_cast<Block*>(table);
        room_ = room;
    }
    void add(const Block& block) { table_[count_++] = block; }

  private:
    static constexpr std::uint64_t kFirstRoom = 64;
    static_assert(std::is_trivially_copyable_v<Block>);

    Block* table_ = nullptr;
    std::uint64_t count_ = 0;
    std::uint64_t room_ = 0;
};

}  // namespace

struct MemoryDataStore::Contents {
    explicit Contents(Options chosen) : options(chosen) {}

    ~Contents() {
        for (std::uint64_t offset = 0; offset < slots.count(); ++offset)
            if (Block* block = slots.find(static_cast<std::uint32_t>(offset))) pool.releaseAtEnd(*block);
    }

    Block& at(std::uint32_t offset) const {
        Block* block = slots.find(offset);
        if (!block) throw std::out_of_range("no record at this offset");
        return *block;
    }

    void checkSize(std::uint64_t size) const {
        if (size > options.recordLimit) throw std::length_error("record larger than the store's limit");
    }

    [[gnu::noinline]] void readOther(std::uint32_t offset, void* buffer, std::uint32_t size) const {
        const Block* block = slots.find(offset);
        if (!block && size == 1) return;
        if (!block) throw std::out_of_range("no record at this offset");
        copyBytes(static_cast<std::byte*>(buffer), block->bytes, std::min(size, block->size));
    }

    [[gnu::noinline]] void rewrite(std::uint32_t offset, const void* buffer, std::uint32_t size, bool flag) {
        Block& block = at(offset);
        checkSize(size);
        const std::uint32_t before = block.size;
        pool.assign(block, buffer, size);
        byteCount += size;
        byteCount -= before;
        if (flag) changed(offset, 0);
    }

    void changed(std::uint32_t offset, std::uint32_t position) {
        ++changeStamp;
        if (companion) companion->changed(offset, position);
    }

    Options options;
    RecordPool pool;
    Slots slots;
    std::uint32_t version = 0;
    std::uint64_t recordCount = 0;
    std::uint64_t byteCount = 0;
    std::uint64_t changeStamp = 1;
    std::unique_ptr<Companion> companion;
    std::once_flag companionIsMade;
    core::thread::RecursiveMutex mutex;
    MemoryGuard guard{mutex};
};

MemoryDataStore::MemoryDataStore() : MemoryDataStore(Options()) {}

MemoryDataStore::MemoryDataStore(Options options) : contents_(new Contents(options)) {}

MemoryDataStore::~MemoryDataStore() noexcept = default;

// What is not short is kept out of the way of what is, here and in `write`. Where there is no record the
// block has no bytes.
void MemoryDataStore::read(std::uint32_t offset, void* buffer, std::uint32_t size) {
    const Contents& contents = *contents_;
    if (offset < contents.slots.count()) {
        const Block& block = contents.slots[offset];
        const std::uint32_t wanted = std::min(size, block.size);
        if (isShort(wanted)) return copyShort(static_cast<std::byte*>(buffer), block.bytes, wanted);
    }
    contents.readOther(offset, buffer, size);
}

IDataStore::Guard* MemoryDataStore::lock() {
    contents_->mutex.lock();
    return &contents_->guard;
}

void MemoryDataStore::flush() {}

std::uint32_t MemoryDataStore::version() { return contents_->version; }

void MemoryDataStore::setVersion(std::uint32_t version) { contents_->version = version; }

std::uint64_t MemoryDataStore::size() { return contents_->slots.count(); }

std::uint32_t MemoryDataStore::append(const void* buffer, std::uint32_t size) {
    contents_->checkSize(size);
    const std::uint64_t offset = contents_->slots.count();
    if (offset >= BADOFF) throw std::length_error("the store has given out all offsets");
    contents_->slots.prepare();
    contents_->slots.add(contents_->pool.copy(buffer, size));
    ++contents_->recordCount;
    contents_->byteCount += size;
    contents_->changed(static_cast<std::uint32_t>(offset), 0);
    return static_cast<std::uint32_t>(offset);
}

void MemoryDataStore::extend(std::uint32_t offset, const void* buffer, std::uint32_t size) {
    Block& block = contents_->at(offset);
    const std::uint32_t before = block.size;
    const std::uint64_t wanted = std::uint64_t{before} + size;
    contents_->checkSize(wanted);
    contents_->pool.extend(block, buffer, size, contents_->options.recordLimit);
    contents_->byteCount += size;
    contents_->changed(offset, before);
}

// Most writes change a few bytes of a record that keeps its size; all else is kept out of their way.
void MemoryDataStore::write(std::uint32_t offset, const void* buffer, std::uint32_t size, bool flag) {
    Contents& contents = *contents_;
    if (offset < contents.slots.count() && isShort(size) && contents.slots[offset].size == size) {
        copyShort(contents.slots[offset].bytes, static_cast<const std::byte*>(buffer), size);
        if (flag) contents.changed(offset, 0);
        return;
    }
    contents.rewrite(offset, buffer, size, flag);
}

std::uint32_t MemoryDataStore::recordSize(std::uint32_t offset) {
    const Block* block = contents_->slots.find(offset);
    return block ? block->size : 0;
}

void MemoryDataStore::remove(std::uint32_t offset) {
    Block* block = contents_->slots.find(offset);
    if (!block) return;
    contents_->byteCount -= block->size;
    --contents_->recordCount;
    contents_->pool.release(*block);
    contents_->changed(offset, 0);
}

const void* MemoryDataStore::view(std::uint32_t offset, std::uint32_t& size) {
    const Block* block = contents_->slots.find(offset);
    size = block ? block->size : 0;
    return block ? block->bytes : nullptr;
}

bool MemoryDataStore::patch(std::uint32_t offset, std::uint32_t position, const void* bytes,
                            std::uint32_t size, bool flag) {
    const Block& block = contents_->at(offset);
    if (std::uint64_t{position} + size > block.size) throw std::out_of_range("patch outside of the record");
    if (std::uint32_t number = 0; size == sizeof number) {  // as most patches are
        std::memcpy(&number, bytes, sizeof number);
        std::memcpy(block.bytes + position, &number, sizeof number);
    } else {
        copyBytes(block.bytes + position, bytes, size);
    }
    if (flag) contents_->changed(offset, position);
    return true;
}

std::uint32_t MemoryDataStore::recordLimit() { return contents_->options.recordLimit; }

std::uint64_t MemoryDataStore::changeStamp() { return contents_->changeStamp; }

IDataStore::Companion* MemoryDataStore::companion(std::unique_ptr<Companion> (*make)()) {
    std::call_once(contents_->companionIsMade, [&] { contents_->companion = make(); });
    return contents_->companion.get();
}

std::uint64_t MemoryDataStore::recordCount() const { return contents_->recordCount; }

std::uint64_t MemoryDataStore::byteCount() const { return contents_->byteCount; }

}  // namespace norvane::platform::core::storage::datastore
