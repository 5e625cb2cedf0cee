// Several threads: cached lookups of a locator, a store for each thread, one store under its guard. Time is
// that on the wall; `rate` is what all threads did in a second.
#include <atomic>
#include <memory>
#include <thread>

#include "ours/Model.h"

namespace bench {
namespace {

// Lets the threads begin together, and go on until the time is up.
template <class Work>
void onThreads(const Arguments& arguments, Result& result, Work work) {
    const auto count = arguments.number("threads", 1);
    std::atomic<bool> isOver = false;
    std::atomic<std::uint64_t> waiting = count;
    std::atomic<std::uint64_t> done = 0;
    std::vector<std::thread> threads;
    for (std::uint64_t number = 0; number < count; ++number)
        threads.emplace_back([&, number] {
            std::uint64_t own = 0;
            --waiting;
            while (waiting != 0) std::this_thread::yield();
            while (!isOver) own += work(number);
            done += own;
        });
    while (waiting != 0) std::this_thread::yield();
    const double start = wallSeconds();
    const double cpuStart = cpuSeconds();
    std::this_thread::sleep_for(std::chrono::duration<double>(arguments.duration()));
    isOver = true;
    for (std::thread& thread : threads) thread.join();
    const double seconds = wallSeconds() - start;
    result.set("cpu", (cpuSeconds() - cpuStart) / static_cast<double>(done));
    result.set("seconds", seconds);
    result.set("units", done.load());
    result.set("rate", static_cast<double>(done) / seconds);
}

void locatorTask(const Arguments& arguments, Result& result) {
    MemoryDataStore store;
    build(store, Recording({"classes", 1, 1}));
    const auto locator = ISchemaLocator::make(&store);
    const WideString name = wide(kClass);
    require(locator->locate(name).get() != nullptr, "no such class");
    onThreads(arguments, result, [&](std::uint64_t) -> std::uint64_t {
        constexpr std::uint64_t kBatch = 1000;
        for (std::uint64_t i = 0; i < kBatch; ++i) keep(locator->locate(name));
        return kBatch;
    });
}

// Each thread reads a document into a store of its own, walks over it and lets it go.
void storesTask(const Arguments& arguments, Result& result) {
    const std::string document = readFile(arguments.text("document"));
    onThreads(arguments, result, [&](std::uint64_t) -> std::uint64_t {
        MemoryDataStore store;
        importText(store, document);
        return walk(store).values;
    });
}

// All threads look up values of one store, under the guard that each operation takes.
void sharedTask(const Arguments& arguments, Result& result) {
    MemoryDataStore store;
    fill(store, arguments);
    const auto places = placesOfDoubles(store);
    onThreads(arguments, result, [&](std::uint64_t number) -> std::uint64_t {
        const Place& place = places[number * 7919 % places.size()];
        const auto container = IContainerFrontEnd::find(&store, place.container);
        constexpr std::uint64_t kBatch = 100;
        for (std::uint64_t i = 0; i < kBatch; ++i) keep(readDouble(*container, place.name));
        return kBatch;
    });
}

}  // namespace
}  // namespace bench

int main(int count, char** words) {
    return bench::run(
        count, words,
        {{"locator", bench::locatorTask}, {"stores", bench::storesTask}, {"shared", bench::sharedTask}});
}
