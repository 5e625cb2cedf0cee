// Stores in files: opening one, reading a value, commits.
#include <unistd.h>

#include <cstdio>
#include <filesystem>

#include "norvane/platform/core/storage/datastore/FileDataStore.h"
#include "ours/Model.h"

namespace bench {
namespace {

using norvane::platform::core::storage::datastore::FileDataStore;

std::string storePath(const Arguments& arguments, const std::string& name) {
    return arguments.text("folder") + "/" + name + ".qvt";
}

void removeStore(const std::string& path) {
    for (const char* suffix : {"", "-wal", "-shm"}) std::remove((path + suffix).c_str());
}

// The store of a document, made once, and the place of a value in the midst of it.
std::string storeOf(const Arguments& arguments) {
    const std::filesystem::path document = arguments.text("document");
    std::string path = storePath(arguments, document.stem());
    if (std::filesystem::exists(path)) return path;
    const std::string unfinished = path + ".new";
    removeStore(unfinished);
    FileDataStore store(unfinished);
    importText(store, readFile(document));
    store.close();
    std::filesystem::rename(unfinished, path);
    return path;
}

void makeTask(const Arguments& arguments, Result&) { storeOf(arguments); }

// A process that knows nothing of the store yet. The store was made by an earlier one.
void openTask(const Arguments& arguments, Result& result) {
    const std::string path = storeOf(arguments);
    const WideString container = wide(arguments.text("container"));
    const WideString name = wide(arguments.text("name"));
    FileDataStore::Options options;
    options.access = FileDataStore::Access::readOnly;
    const std::uint64_t before = residentBytes();
    const double start = cpuSeconds();
    double value = 0;
    {
        FileDataStore store(path, options);
        value = readDouble(*IContainerFrontEnd::find(&store, container), name);
    }
    result.set("seconds", cpuSeconds() - start);
    result.set("units", std::uint64_t{1});
    result.set("bytes", peakBytes() - before);
    keep(value);
}

// One record changed and made durable, again and again. Time on the wall.
void commitTask(const Arguments& arguments, Result& result) {
    const std::string path = storePath(arguments, "commit");
    removeStore(path);
    const std::uint64_t times = arguments.number("times", 50);
    FileDataStore store(path);
    std::string record(64, 'a');
    const std::uint32_t offset = store.append(record.data(), 64);
    store.commit();
    const double start = wallSeconds();
    for (std::uint64_t i = 0; i < times; ++i) {
        record[0] = static_cast<char>('b' + i % 20);
        store.write(offset, record.data(), 64, true);
        store.commit();
    }
    result.set("seconds", wallSeconds() - start);
    result.set("units", times);
    store.close();
    removeStore(path);
}

// New records, all in one commit.
void appendTask(const Arguments& arguments, Result& result) {
    const std::string path = storePath(arguments, "append");
    const std::uint64_t count = arguments.number("size", 100'000);
    removeStore(path);
    const std::string record(64, 'a');
    const double start = cpuSeconds();
    FileDataStore store(path);
    for (std::uint64_t i = 0; i < count; ++i) store.append(record.data(), 64);
    store.commit();
    store.close();
    result.set("seconds", cpuSeconds() - start);
    result.set("units", count);
    removeStore(path);
}

}  // namespace
}  // namespace bench

int main(int count, char** words) {
    return bench::run(count, words,
                      {{"make", bench::makeTask},
                       {"open", bench::openTask},
                       {"commit", bench::commitTask},
                       {"append", bench::appendTask}});
}
