// What is nested without end needs no deep stack.
#include <gtest/gtest.h>
#include <pthread.h>

#include <functional>
#include <string>

#include "records/NewEntity.h"
#include "schema/Conformance.h"
#include "unit/schema/Types.h"

namespace norvane::platform::test {
namespace {

using namespace data::metadata;

constexpr int kLevels = 100'000;
constexpr std::size_t kSmallStack = 256 * 1024;

void onASmallStack(std::function<void()> work) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, kSmallStack);
    pthread_t thread;
    const auto run = [](void* given) -> void* {
        (*static_cast<std::function<void()>*>(given))();
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, &attributes, run, &work), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

// Tables named t, each in the one before, with a number in the innermost. Made of bare records, which is
// quicker than opening each.
Offset nestedTables(Builder& build, std::u16string_view name) {
    IDataStore* const store = build.store();
    Offset inner = build.primitive(build.table(0, u"t"), kInt32, u"n");
    inner = Record::Snapshot(store, inner)->load(field::parent);
    for (int level = 1; level < kLevels; ++level) {
        Record::Offsets list(store);
        list.append(&inner, 1);
        Record::NewEntity table(Record::Kind::table);
        table.set(field::children, list.offset());
        table.addText(field::tableNameSize, u"t");
        const Offset outer = table.appendTo(store);
        Record::storeField(store, inner, field::parent, outer);
        inner = outer;
    }
    const Offset outermost = build.table(0, name);
    Design::Table(store, outermost).addChild(inner);
    return outermost;
}

TEST(DeepTypes, NestedTablesAreFlattened) {
    onASmallStack([] {
        MemoryDataStore store;
        Builder build(store);
        nestedTables(build, u"T");
        const auto locator = ISchemaLocator::make(&store);

        IStructLayout& shape = *locator->locate(u"T")->layout();

        ASSERT_EQ(shape.fieldCount(), 1u);
        EXPECT_EQ(std::u16string_view(shape.field(0)->name).size(), 2u * kLevels + 1);
        EXPECT_EQ(shape.byteSize(), 4u);
    });
}

TEST(DeepTypes, NestedTablesAreImportedAndCompared) {
    onASmallStack([] {
        MemoryDataStore store;
        Builder build(store);
        nestedTables(build, u"T");
        const Offset object = build.container(0, u"object");
        const auto locator = ISchemaLocator::make(&store);
        const auto schema = locator->locate(u"T");

        EXPECT_TRUE(Structural::Container(&store, object).importClasses(schema.get()));

        EXPECT_TRUE(Schema::matchesStructure(schema.get(), Structural::Container(&store, object)));
    });
}

// Each type has an empty struct of the next. They stand in groups, since a path is walked for each.
TEST(DeepTypes, TypesOfTypesAreFound) {
    constexpr int kTypes = 5'000;
    constexpr int kGroup = 70;
    onASmallStack([] {
        const auto digits = [](int number) {
            const std::string text = std::to_string(number);
            return std::u16string(text.begin(), text.end());
        };
        const auto path = [&](int type) { return u"g" + digits(type / kGroup) + u".t" + digits(type); };
        MemoryDataStore store;
        Builder build(store);
        Offset group = 0;
        Offset last = 0;
        for (int type = 0; type < kTypes; ++type) {
            if (type % kGroup == 0) group = build.container(0, u"g" + digits(type / kGroup));
            last = build.table(group, u"t" + digits(type));
            build.structOf(last, u"next", path(type + 1).c_str(), 0);
        }
        build.primitive(last, kInt32, u"n");
        {
            const auto locator = ISchemaLocator::make(&store);

            const auto schema = locator->locate(path(0).c_str());

            EXPECT_EQ(schema->layout()->fieldCount(), 0u);
            EXPECT_EQ(openCount(store, last), 1u);
        }
        EXPECT_EQ(openCount(store, last), 0u);
    });
}

}  // namespace
}  // namespace norvane::platform::test
