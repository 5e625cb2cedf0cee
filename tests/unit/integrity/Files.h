// Stores in files: made, damaged and read byte by byte.
#pragma once

#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "norvane/platform/core/storage/datastore/FileDataStore.h"
#include "norvane/platform/core/storage/datastore/StoreFile.h"
#include "norvane/platform/core/string/StringAlgorithm.h"
#include "support/Folder.h"
#include "unit/integrity/Store.h"

namespace norvane::platform::test {

using core::storage::datastore::FileDataStore;
using core::storage::datastore::StoreError;
using core::storage::datastore::StoreFile;
using core::storage::datastore::StoreFileWriter;
using Records = std::map<std::uint32_t, std::string>;

inline std::string contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline void setContent(const std::string& path, const std::string& content) {
    std::ofstream(path, std::ios::binary).write(content.data(), static_cast<std::streamsize>(content.size()));
}

// Puts all records of a store into a file, at their offsets.
inline void writeFile(const std::string& path, IDataStore& store) {
    StoreFileWriter writer(path);
    for (std::uint32_t offset = 0; offset < store.size(); ++offset)
        if (const RecordBytes record = recordAt(store, offset); record.size() != 0)
            writer.put(offset, record.data(), record.size());
    writer.finish(store.version(), store.size());
}

inline Records recordsIn(const std::string& path, StoreFile::Search search = StoreFile::Search::byOrder) {
    Records records;
    StoreFile::visit(path, search, [&](std::uint32_t offset, const void* bytes, std::uint32_t size) {
        records[offset] = std::string(static_cast<const char*>(bytes), size);
    });
    return records;
}

inline Records contentsOf(IDataStore& store) {
    Records records;
    for (std::uint32_t offset = 0; offset < store.size(); ++offset)
        if (const RecordBytes record = recordAt(store, offset); record.size() != 0)
            records[offset] = record.bytes();
    return records;
}

inline std::set<std::string> filesIn(const Folder& folder) {
    std::set<std::string> names;
    for (const auto& each : std::filesystem::directory_iterator(folder.path()))
        names.insert(each.path().filename().string());
    return names;
}

// The names below the root of a file's model, as "root(g(p t))".
inline std::string namesBelow(IDataStore& store, std::uint32_t entity) {
    const RecordBytes record = recordAt(store, entity);
    std::string names;
    core::string::StringAlgorithm::UTF8Encode(record.view().name(), names);
    if (record.u8At(0) == 1 || record.u32At(14) == none()) return names;
    std::string below;
    const RecordBytes list = recordAt(store, record.u32At(14));
    for (std::uint32_t i = 0; i < list.view().valueCount(); ++i)
        below += (i == 0 ? "" : " ") + namesBelow(store, list.view().value(i));
    return names + "(" + below + ")";
}

inline std::string namesIn(const std::string& path) {
    FileDataStore store(path);
    return namesBelow(store, 0);
}

// The code of the StoreError that it throws; "none" if it throws none.
template <class Act>
std::string refusalOf(Act act) {
    using Code = StoreError::Code;
    static const std::map<Code, std::string> names{
        {Code::notFound, "notFound"},       {Code::exists, "exists"},
        {Code::notAStore, "notAStore"},     {Code::damaged, "damaged"},
        {Code::notReadable, "notReadable"}, {Code::diskFull, "diskFull"},
        {Code::notWritable, "notWritable"},
    };
    try {
        act();
        return "none";
    } catch (const StoreError& error) {
        const auto found = names.find(error.code());
        return found == names.end() ? "another" : found->second;
    }
}

}  // namespace norvane::platform::test
