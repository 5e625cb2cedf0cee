// Changing a model through the interface: building, arrays, adding to and removing from wide groups, copies.
#include <algorithm>
#include <memory>

#include "ours/Model.h"

namespace bench {
namespace {

using norvane::platform::data::structure::kNode;
namespace metadata = norvane::platform::data::metadata;

void buildTask(const Arguments& arguments, Result& result) {
    const Recording recording(workloadOf(arguments));
    MemoryDataStore whole;
    build(whole, recording);
    const Walk found = walk(whole);
    repeatFresh(arguments, result, [&] {
        return [&, store = std::make_unique<MemoryDataStore>()]() mutable -> std::uint64_t {
            build(*store, recording);
            return found.values;
        };
    });
    result.set("values", found.digest.text());
}

std::vector<double> someDoubles(std::uint64_t count) {
    std::vector<double> values(count);
    for (std::uint64_t i = 0; i < count; ++i) values[i] = static_cast<double>(i) * 0.5;
    return values;
}

SharedPtr<IContainer> newTop(IDataStore& store) { return IContainerFrontEnd::toplevel(&store, u"top"); }

void arrayWriteTask(const Arguments& arguments, Result& result) {
    const auto count = static_cast<std::uint32_t>(arguments.number("size", 1'000'000));
    const auto values = someDoubles(count);
    MemoryDataStore store;
    const auto primitive = newTop(store)->makePrimitive(u"samples", metadata::kDouble);
    require(primitive->writeValues(values.data(), 0, count), "not written");
    repeat(arguments, result, [&]() -> std::uint64_t {
        require(primitive->writeValues(values.data(), 0, count), "not written");
        return 1;
    });
}

void arrayReadTask(const Arguments& arguments, Result& result) {
    const auto count = static_cast<std::uint32_t>(arguments.number("size", 1'000'000));
    const auto values = someDoubles(count);
    std::vector<double> copy(count);
    MemoryDataStore store;
    const auto primitive = newTop(store)->makePrimitive(u"samples", metadata::kDouble);
    require(primitive->writeValues(values.data(), 0, count), "not written");
    repeat(arguments, result, [&]() -> std::uint64_t {
        require(primitive->readValues(copy.data(), 0, count), "not read");
        return 1;
    });
    require(copy == values, "something else was read");
}

// The handle on the group is held; the one on the array is not.
void elementTask(const Arguments& arguments, Result& result) {
    const auto count = static_cast<std::uint32_t>(arguments.number("size", 1'000'000));
    MemoryDataStore store;
    const auto group = newTop(store);
    require(
        group->makePrimitive(u"samples", metadata::kDouble)->writeValues(someDoubles(count).data(), 0, count),
        "not written");
    const WideString name(u"samples");
    std::uint32_t element = 0;
    repeat(arguments, result, [&]() -> std::uint64_t {
        const auto property = group->findProperty(name);
        double value = 0;
        element = (element + 7919) % count;
        require(IPrimitive::to(property.get())->readValues(&value, element, 1), "not read");
        require(value == element * 0.5, "something else was read");
        return 1;
    });
}

std::string childName(std::uint64_t number) { return "child_" + std::to_string(number); }

// A group of so many children without content.
std::unique_ptr<MemoryDataStore> storeOfChildren(std::uint64_t count) {
    auto store = std::make_unique<MemoryDataStore>();
    const auto group = newTop(*store)->makeContainer(kNode, u"wide", nullptr);
    for (std::uint64_t i = 0; i < count; ++i) group->makeContainer(kNode, wide(childName(i)), nullptr);
    return store;
}

// The group, through a handle that has its index already.
SharedPtr<IContainer> groupOf(IDataStore& store) {
    auto group = IContainerFrontEnd::find(&store, u"top.wide");
    group->makeContainer(kNode, u"one_more", nullptr);
    require(group->remove(u"one_more"), "not removed");
    return group;
}

// More children for a group of so many, through one handle.
void addTask(const Arguments& arguments, Result& result) {
    const std::uint64_t size = arguments.number("size", 1000);
    const std::uint64_t more = arguments.number("more", 500);
    const auto store = storeOfChildren(size);
    const auto group = groupOf(*store);
    const double start = cpuSeconds();
    for (std::uint64_t i = 0; i < more; ++i) group->makeContainer(kNode, wide(childName(size + i)), nullptr);
    result.set("seconds", cpuSeconds() - start);
    result.set("units", more);
}

// Children from all over a group of so many, through one handle.
void removeTask(const Arguments& arguments, Result& result) {
    const std::uint64_t size = arguments.number("size", 1000);
    const std::uint64_t fewer = std::min(size, arguments.number("fewer", 500));
    const auto store = storeOfChildren(size);
    const auto group = groupOf(*store);
    const std::uint64_t step = size / fewer;
    const double start = cpuSeconds();
    for (std::uint64_t i = 0; i < fewer; ++i)
        require(group->remove(wide(childName((fewer - 1 - i) * step))), "not removed");
    result.set("seconds", cpuSeconds() - start);
    result.set("units", fewer);
}

// A copy of the whole model beside it.
void cloneTask(const Arguments& arguments, Result& result) {
    MemoryDataStore store;
    fill(store, arguments);
    const auto from = top(store);
    const Walk found = walk(from);
    const auto into = IContainerFrontEnd::toplevel(&store, u"copies");
    const double start = cpuSeconds();
    require(into->add(from), "not copied");
    result.set("seconds", cpuSeconds() - start);
    result.set("units", found.values + found.containers);
    require(walk(into->find(u"top")).digest.text() == found.digest.text(), "the copy differs");
}

}  // namespace
}  // namespace bench

int main(int count, char** words) {
    return bench::run(count, words,
                      {{"build", bench::buildTask},
                       {"array-write", bench::arrayWriteTask},
                       {"array-read", bench::arrayReadTask},
                       {"element", bench::elementTask},
                       {"add", bench::addTask},
                       {"remove", bench::removeTask},
                       {"clone", bench::cloneTask}});
}
