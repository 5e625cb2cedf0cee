// Looking at a model that is there: lookups, paths, traversal, writing it as text.
#include "norvane/platform/core/io/FileWriter.h"
#include "norvane/platform/core/io/MemoryWriter.h"
#include "ours/Model.h"

namespace bench {
namespace {

using norvane::platform::core::io::MemoryWriter;

// Some places, far from each other, in no order. Their texts are made anew, in the order in which they will
// be asked for: to fetch a question from far away is no part of answering it.
std::vector<Place> someOf(std::vector<Place> places, std::uint64_t count) {
    Random random(1);
    for (std::size_t i = places.size(); i-- > 1;) std::swap(places[i], places[random.below(i + 1)]);
    std::vector<Place> some;
    const std::size_t size = std::min<std::size_t>(count, places.size());
    some.reserve(size);
    for (std::size_t i = 0; i < size; ++i)
        some.push_back({WideString(places[i].container.string()), WideString(places[i].name.string())});
    return some;
}

// One name after another in containers that are open already.
void heldTask(const Arguments& arguments, Result& result) {
    MemoryDataStore store;
    fill(store, arguments);
    const auto places = someOf(placesOfDoubles(store), 500);
    std::vector<SharedPtr<IContainer>> held;
    for (const Place& place : places) held.push_back(IContainerFrontEnd::find(&store, place.container));
    double sum = 0;
    repeat(arguments, result, [&]() -> std::uint64_t {
        for (std::size_t i = 0; i < places.size(); ++i) sum += readDouble(*held[i], places[i].name);
        return places.size();
    });
    keep(sum);
}

double valueAt(IDataStore& store, const Place& place) {
    return readDouble(*IContainerFrontEnd::find(&store, place.container), place.name);
}

// From the root to a value, with nothing open. The first lookups in a wide group pay for its index, which the
// store then has.
void pathTask(const Arguments& arguments, Result& result) {
    MemoryDataStore store;
    fill(store, arguments);
    const auto places = someOf(placesOfDoubles(store), 5'000);
    std::size_t next = 0;
    for (const Place& place : someOf(places, 20)) keep(valueAt(store, place));
    repeat(arguments, result, [&]() -> std::uint64_t {
        constexpr std::uint64_t kBatch = 20;
        double sum = 0;
        for (std::uint64_t i = 0; i < kBatch; ++i) sum += valueAt(store, places[next++ % places.size()]);
        keep(sum);
        return kBatch;
    });
}

void traverseTask(const Arguments& arguments, Result& result) {
    MemoryDataStore store;
    fill(store, arguments);
    Walk found;
    repeat(arguments, result, [&] {
        found = walk(store);
        return found.values;
    });
    result.set("values", found.digest.text());
}

std::uint64_t textSize(IDataStore& store) {
    const auto locator = ISchemaLocator::make(&store);
    MemoryWriter writer;
    IXMLFrontEnd::serialize(&store, &writer, locator.get(), 0);
    return writer.text().size();
}

// `numbers` counts the numbers and texts that are written.
void writeTask(const Arguments& arguments, Result& result) {
    MemoryDataStore store;
    fill(store, arguments);
    const Walk found = walk(store);
    std::uint64_t size = 0;
    repeat(arguments, result, [&]() -> std::uint64_t {
        size = textSize(store);
        return 1;
    });
    result.set("text", size);
    result.set("numbers", found.digest.count());
    result.set("values", found.digest.text());
}

// The text itself, into a file. It must say the same as the document that the model came from.
void saveTask(const Arguments& arguments, Result& result) {
    MemoryDataStore store;
    fill(store, arguments);
    const auto locator = ISchemaLocator::make(&store);
    norvane::platform::core::io::FileWriter writer(arguments.text("out"));
    IXMLFrontEnd::serialize(&store, &writer, locator.get(), 0);
    require(!writer.failed(), "not written");
    MemoryDataStore again;
    importText(again, readFile(arguments.text("out")));
    require(walk(again).digest.text() == walk(store).digest.text(), "something else was written");
    result.set("units", std::uint64_t{1});
}

// How long it takes to open a group for the first time and to find some of its properties, for which it makes
// an index.
void openTask(const Arguments& arguments, Result& result) {
    MemoryDataStore store;
    fill(store, arguments);
    const auto places = someOf(placesOfDoubles(store), 100);
    const double start = cpuSeconds();
    const auto container = IContainerFrontEnd::find(&store, places.front().container);
    double sum = 0;
    for (const Place& place : places) sum += readDouble(*container, place.name);
    result.set("seconds", cpuSeconds() - start);
    result.set("units", std::uint64_t{1});
    keep(sum);
}

}  // namespace
}  // namespace bench

int main(int count, char** words) {
    return bench::run(count, words,
                      {{"held", bench::heldTask},
                       {"path", bench::pathTask},
                       {"traverse", bench::traverseTask},
                       {"write", bench::writeTask},
                       {"save", bench::saveTask},
                       {"open", bench::openTask}});
}
