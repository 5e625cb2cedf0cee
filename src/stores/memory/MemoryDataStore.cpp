#include "norvane/platform/core/storage/datastore/MemoryDataStore.h"

#include <algorithm>
#include <cstring>
#include <mutex>
#include <stdexcept>
#include <vector>

#include "stores/memory/RecordPool.h"

namespace norvane::platform::core::storage::datastore {
namespace {

class MemoryGuard : public IDataStore::Guard {
  public:
    explicit MemoryGuard(std::recursive_mutex& mutex) : lock_(mutex) {}

  private:
    std::unique_lock<std::recursive_mutex> lock_;
};

// Blocks by offset, in pages, so that a growing table is never copied and has no spare half.
class Slots {
  public:
    std::uint64_t count() const { return count_; }

    // Null where there is no record.
    Block* find(std::uint32_t offset) const {
        if (offset >= count_) return nullptr;
        Block& block = pages_[offset / kPage][offset % kPage];
        return block.bytes ? &block : nullptr;
    }

    // Makes room for one more slot, so that `add` cannot fail.
    void prepare() {
        if (count_ == pages_.size() * kPage) pages_.emplace_back(new Block[kPage]);
    }
    void add(const Block& block) {
        pages_[count_ / kPage][count_ % kPage] = block;
        ++count_;
    }

  private:
    static constexpr std::uint32_t kPage = 256;

    std::vector<std::unique_ptr<Block[]>> pages_;
    std::uint64_t count_ = 0;
};

void copyBytes(std::byte* to, const void* from, std::size_t size) {
    if (size != 0) std::memmove(to, from, size);
}

}  // namespace

struct MemoryDataStore::Contents {
    explicit Contents(Options chosen) : options(chosen) {}

    ~Contents() {
        for (std::uint64_t offset = 0; offset < slots.count(); ++offset)
            if (Block* block = slots.find(static_cast<std::uint32_t>(offset))) pool.release(*block);
    }

    Block& at(std::uint32_t offset) const {
        Block* block = slots.find(offset);
        if (!block) throw std::out_of_range("no record at this offset");
        return *block;
    }

    void checkSize(std::uint64_t size) const {
        if (size > options.recordLimit) throw std::length_error("record larger than the store's limit");
    }

    // Puts a new block in the place of one. Called when the new one has all its bytes, since they may come
    // from the old.
    void replace(Block& block, const Block& fresh) {
        pool.release(block);
        block = fresh;
    }

    void grewBy(std::uint32_t size) {
        byteCount += size;
        ++changeStamp;
    }

    Options options;
    RecordPool pool;
    Slots slots;
    std::uint32_t version = 0;
    std::uint64_t recordCount = 0;
    std::uint64_t byteCount = 0;
    std::uint64_t changeStamp = 1;
    std::recursive_mutex mutex;
};

MemoryDataStore::MemoryDataStore() : MemoryDataStore(Options()) {}

MemoryDataStore::MemoryDataStore(Options options) : contents_(new Contents(options)) {}

MemoryDataStore::~MemoryDataStore() noexcept = default;

void MemoryDataStore::read(std::uint32_t offset, void* buffer, std::uint32_t size) {
    const Block* block = contents_->slots.find(offset);
    if (!block && size == 1) return;
    if (!block) throw std::out_of_range("no record at this offset");
    copyBytes(static_cast<std::byte*>(buffer), block->bytes, std::min(size, block->size));
}

IDataStore::Guard* MemoryDataStore::lock() { return new MemoryGuard(contents_->mutex); }

void MemoryDataStore::flush() {}

std::uint32_t MemoryDataStore::version() { return contents_->version; }

void MemoryDataStore::setVersion(std::uint32_t version) { contents_->version = version; }

std::uint64_t MemoryDataStore::size() { return contents_->slots.count(); }

std::uint32_t MemoryDataStore::append(const void* buffer, std::uint32_t size) {
    contents_->checkSize(size);
    const std::uint64_t offset = contents_->slots.count();
    if (offset >= BADOFF) throw std::length_error("the store has given out all offsets");
    contents_->slots.prepare();
    const Block block = contents_->pool.take(size);
    copyBytes(block.bytes, buffer, size);
    contents_->slots.add(block);
    ++contents_->recordCount;
    contents_->grewBy(size);
    return static_cast<std::uint32_t>(offset);
}

void MemoryDataStore::extend(std::uint32_t offset, const void* buffer, std::uint32_t size) {
    Block& block = contents_->at(offset);
    const std::uint32_t before = block.size;
    const std::uint64_t wanted = std::uint64_t{before} + size;
    contents_->checkSize(wanted);
    const auto after = static_cast<std::uint32_t>(wanted);
    if (after <= block.capacity) {
        RecordPool::resize(block, after);
        copyBytes(block.bytes + before, buffer, size);
    } else {
        const auto roomy = std::min<std::uint64_t>(wanted + wanted / 2, contents_->options.recordLimit);
        const Block fresh = contents_->pool.take(after, static_cast<std::uint32_t>(roomy));
        copyBytes(fresh.bytes, block.bytes, before);
        copyBytes(fresh.bytes + before, buffer, size);
        contents_->replace(block, fresh);
    }
    contents_->grewBy(size);
}

void MemoryDataStore::write(std::uint32_t offset, const void* buffer, std::uint32_t size, bool flag) {
    Block& block = contents_->at(offset);
    contents_->checkSize(size);
    const std::uint32_t before = block.size;
    // A block much too large for its record goes back.
    if (size <= block.capacity && size >= block.capacity / 4) {
        RecordPool::resize(block, std::max(before, size));
        copyBytes(block.bytes, buffer, size);
        RecordPool::resize(block, size);
    } else {
        const Block fresh = contents_->pool.take(size);
        copyBytes(fresh.bytes, buffer, size);
        contents_->replace(block, fresh);
    }
    contents_->byteCount += size;
    contents_->byteCount -= before;
    if (flag) ++contents_->changeStamp;
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
    ++contents_->changeStamp;
    contents_->pool.release(*block);
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
    copyBytes(block.bytes + position, bytes, size);
    if (flag) ++contents_->changeStamp;
    return true;
}

std::uint32_t MemoryDataStore::recordLimit() { return contents_->options.recordLimit; }

std::uint64_t MemoryDataStore::changeStamp() { return contents_->changeStamp; }

std::uint64_t MemoryDataStore::recordCount() const { return contents_->recordCount; }

std::uint64_t MemoryDataStore::byteCount() const { return contents_->byteCount; }

}  // namespace norvane::platform::core::storage::datastore
