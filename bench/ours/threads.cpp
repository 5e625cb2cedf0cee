// Several threads: cached lookups of a locator, a store for each thread, one store under its guard. Time is
// that on the wall; `rate` is what all threads did in a second of the best slice of the time, since what else
// the machine does only takes processors away.
#include <algorithm>
#include <atomic>
#include <memory>
#include <thread>

#include "ours/Model.h"

namespace bench {
namespace {

// Slices are long for the work of one call.
constexpr double kSlice = 0.05;

// What each thread has done so far, on a line of memory of its own.
struct alignas(64) Count {
    std::atomic<std::uint64_t> done = 0;
};

std::uint64_t sumOf(const std::vector<Count>& counts) {
    std::uint64_t sum = 0;
    for (const Count& count : counts) sum += count.done.load(std::memory_order_relaxed);
    return sum;
}

// The best rate of so many slices, or of more if nothing was done in them.
double bestRate(const std::vector<Count>& counts, int slices) {
    double best = 0;
    double time = wallSeconds();
    std::uint64_t before = sumOf(counts);
    for (; slices > 0 || best == 0; --slices) {
        std::this_thread::sleep_for(std::chrono::duration<double>(kSlice));
        const double now = wallSeconds();
        const std::uint64_t done = sumOf(counts);
        best = std::max(best, static_cast<double>(done - before) / (now - time));
        time = now;
        before = done;
    }
    return best;
}

// Lets the threads begin together, and go on until the time is up: ten times as long as others, in which some
// slices are undisturbed.
template <class Work>
void onThreads(const Arguments& arguments, Result& result, Work work) {
    std::vector<Count> counts(arguments.number("threads", 1));
    std::atomic<bool> isOver = false;
    std::atomic<std::uint64_t> waiting = counts.size();
    std::vector<std::thread> threads;
    for (std::uint64_t number = 0; number < counts.size(); ++number)
        threads.emplace_back([&, number] {
            --waiting;
            while (waiting != 0) std::this_thread::yield();
            while (!isOver) counts[number].done.fetch_add(work(number), std::memory_order_relaxed);
        });
    while (waiting != 0) std::this_thread::yield();
    const double start = wallSeconds();
    const double cpuStart = cpuSeconds();
    const double rate = bestRate(counts, std::max(1, static_cast<int>(arguments.duration() * 10 / kSlice)));
    isOver = true;
    for (std::thread& thread : threads) thread.join();
    result.set("cpu", (cpuSeconds() - cpuStart) / static_cast<double>(sumOf(counts)));
    result.set("seconds", wallSeconds() - start);
    result.set("units", sumOf(counts));
    result.set("rate", rate);
}

void locatorTask(const Arguments& arguments, Result& result) {
    MemoryDataStore store;
    build(store, Recording({"classes", 1, 1}));
    const auto locator = ISchemaLocator::make(&store);
    require(locator->locate(wide(kClass)).get() != nullptr, "no such class");
    onThreads(arguments, result, [&](std::uint64_t) -> std::uint64_t {
        constexpr std::uint64_t kBatch = 1000;
        const WideString name = wide(kClass);  // copies of one text would share the count of its users
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
