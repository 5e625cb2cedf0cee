// Store files for tests: folders that go away, and the least that can stand on a backend.
#pragma once

#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "norvane/platform/core/storage/datastore/FileDataStore.h"
#include "norvane/platform/core/storage/datastore/StoreFile.h"
#include "stores/file/FileBackend.h"
#include "support/Folder.h"

namespace norvane::platform::core::storage::datastore {

using test::Folder;

inline std::string contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline void setContent(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

class StringTarget : public LoadTarget {
  public:
    std::byte* take(std::uint32_t size) override {
        bytes.assign(size, '-');
        return reinterpret_cast<std::byte*>(bytes.data());
    }

    std::string bytes;
};

inline std::optional<std::string> loaded(Backend& backend, std::uint32_t offset) {
    StringTarget target;
    if (!backend.load(offset, target)) return std::nullopt;
    return target.bytes;
}

using Records = std::map<std::uint32_t, std::string>;

// Everything that there is, record by record.
inline Records recordsOf(Backend& backend) {
    Records records;
    for (std::uint64_t offset = 0; offset < backend.meta().next; ++offset)
        if (auto bytes = loaded(backend, static_cast<std::uint32_t>(offset)))
            records.emplace(static_cast<std::uint32_t>(offset), std::move(*bytes));
    return records;
}

// A batch of changes in order of offset; no bytes mean that the record goes.
using Batch = std::map<std::uint32_t, std::optional<std::string>>;

// What the file has after a batch, and the same as a backend takes it.
struct Revision {
    StoreMeta meta;
    Records records;

    Revision with(const Batch& batch) const {
        Revision next = *this;
        for (const auto& [offset, bytes] : batch) {
            next.records.erase(offset);
            if (bytes) next.records.emplace(offset, *bytes);
            next.meta.next = std::max<std::uint64_t>(next.meta.next, std::uint64_t{offset} + 1);
        }
        next.meta.recordCount = next.records.size();
        ++next.meta.revision;
        return next;
    }

    friend bool operator==(const Revision&, const Revision&) = default;
};

inline Revision revisionOf(Backend& backend) { return {backend.meta(), recordsOf(backend)}; }

inline std::vector<Change> changesOf(const Batch& batch, const Records& before) {
    std::vector<Change> changes;
    for (const auto& [offset, bytes] : batch) {
        Change change;
        change.offset = offset;
        change.isRemoved = !bytes;
        change.isNew = !before.contains(offset);
        if (bytes) {
            change.bytes = reinterpret_cast<const std::byte*>(bytes->data());
            change.size = static_cast<std::uint32_t>(bytes->size());
        }
        changes.push_back(change);
    }
    return changes;
}

// Commits a batch on a revision, which becomes the one after it.
inline void commit(Backend& backend, Revision& revision, const Batch& batch) {
    const Revision next = revision.with(batch);
    backend.commit(changesOf(batch, revision.records), next.meta);
    revision = next;
}

inline std::unique_ptr<FileBackend> openWriter(const std::string& path, FileDataStore::Options options = {}) {
    return FileBackend::open(path, options);
}

inline std::unique_ptr<FileBackend> openReader(const std::string& path) {
    FileDataStore::Options options;
    options.access = FileDataStore::Access::readOnly;
    return FileBackend::open(path, options);
}

// The code of the error that a step ends with; none if it does not.
template <class Step>
std::optional<StoreError::Code> codeOfFailure(Step&& step) {
    try {
        step();
    } catch (const StoreError& error) {
        return error.code();
    }
    return std::nullopt;
}

}  // namespace norvane::platform::core::storage::datastore
