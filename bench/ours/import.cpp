// Documents into memory stores: time, memory, depth.
#include <pthread.h>

#include <memory>

#include "norvane/platform/core/io/FileReader.h"
#include "ours/Model.h"

namespace bench {
namespace {

void tellWalk(const Walk& walk, Result& result) {
    result.set("values", walk.digest.text());
    result.set("containers", walk.containers);
}

// The store goes after the clock has stopped, as the peers' trees do.
void importTask(const Arguments& arguments, Result& result) {
    const std::string document = readFile(arguments.text("document"));
    repeatFresh(arguments, result, [&] {
        return [&document, store = std::make_unique<MemoryDataStore>()]() mutable -> std::uint64_t {
            importText(*store, document);
            return 1;
        };
    });
    MemoryDataStore store;
    importText(store, document);
    tellWalk(walk(store), result);
}

// Peak memory over what the process had before, with the document read in pieces from its file.
void memoryTask(const Arguments& arguments, Result& result) {
    norvane::platform::core::io::FileReader reader(arguments.text("document"));
    const std::uint64_t before = residentBytes();
    MemoryDataStore store;
    import(store, reader);
    result.set("bytes", peakBytes() - before);
    result.set("records", store.byteCount());
    const Walk found = walk(store);
    result.set("payload", found.bytes);
    result.set("units", found.values);
    tellWalk(found, result);
}

struct SmallStack {
    const std::string& document;
    bool isRead = false;
};

void* importOnThread(void* given) {
    auto& work = *static_cast<SmallStack*>(given);
    MemoryDataStore store;
    importText(store, work.document);
    work.isRead = store.recordCount() != 0;
    return nullptr;
}

// What recurses over a deep document dies here.
void smallStackTask(const Arguments& arguments, Result& result) {
    const std::string document = readFile(arguments.text("document"));
    SmallStack work{document};
    pthread_attr_t attributes;
    pthread_t thread;
    require(pthread_attr_init(&attributes) == 0, "no thread");
    require(pthread_attr_setstacksize(&attributes, arguments.number("stack", 256 << 10)) == 0, "no thread");
    require(pthread_create(&thread, &attributes, importOnThread, &work) == 0, "no thread");
    pthread_join(thread, nullptr);
    result.set("read", std::uint64_t{work.isRead});
}

}  // namespace
}  // namespace bench

int main(int count, char** words) {
    return bench::run(count, words,
                      {{"import", bench::importTask},
                       {"memory", bench::memoryTask},
                       {"small-stack", bench::smallStackTask}});
}
