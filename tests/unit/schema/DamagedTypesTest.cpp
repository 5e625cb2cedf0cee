// Types in records that no operation has made so.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "schema/Conformance.h"
#include "unit/schema/Types.h"

namespace norvane::platform::test {
namespace {

using namespace data::metadata;
using testing::ElementsAre;

// A type and an object with the same members: a number, a nested table with a text, structs.
class DamagedTypes : public testing::Test {
  public:
    ~DamagedTypes() noexcept override = default;

  protected:
    static void build(IDataStore& store) {
        Builder made(store);
        made.primitive(made.table(0, u"S"), kInt8, u"x");
        for (const char16_t* name : {u"T", u"object"}) {
            const Offset set = made.table(0, name);
            made.primitive(set, kInt32, u"n");
            const Offset nested = made.table(set, u"nested");
            made.primitive(nested, kString, u"text", 3);
            made.structOf(set, u"p", u"S", 2);
        }
    }

    static std::vector<std::string> soundRecords() {
        MemoryDataStore store;
        build(store);
        return allRecords(store);
    }

    // All that this layer does with types; only that it ends and stays within the records is asked.
    static void use(IDataStore& store) {
        const auto locator = ISchemaLocator::make(&store);
        const auto schema = locator->locate(u"T;S;object;T.nested;T.n;;T.");
        if (!schema) return;
        for (Schema::Layout* layout : layoutsOf(schema)) fieldsOf(*layout);
        for (const char16_t* path : {u"object", u"T", u"S"}) {
            const Offset offset = Metadata::resolvePath(&store, 0, path);
            const auto item = Metadata::openItem(&store, offset);
            if (item) Schema::matchesStructure(schema.get(), *item);
        }
        if (schema->layout()->byteSize() > 1000) return;
        Design::Table(&store, Design::Table(&store, u"t").offset()).applySchema(schema.get());
        Structural::Container(&store, 1, u"c").importClasses(schema.get());
    }
};

void fill(MemoryDataStore& store, const std::vector<std::string>& records) {
    for (const std::string& record : records)
        store.append(record.data(), static_cast<std::uint32_t>(record.size()));
}

TEST_F(DamagedTypes, EveryFieldMayHoldAnything) {
    const auto sound = soundRecords();
    for (Offset offset = 0; offset < sound.size(); ++offset) {
        for (std::size_t position = 0; position < sound[offset].size(); ++position) {
            for (const std::uint32_t value : {0u, 3u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
                auto records = sound;
                const std::size_t left = records[offset].size() - position;
                std::memcpy(records[offset].data() + position, &value, std::min<std::size_t>(4, left));
                MemoryDataStore store;
                fill(store, records);
                use(store);
            }
        }
    }
}

TEST_F(DamagedTypes, EveryRecordMayBeCutShortOrMissing) {
    const auto sound = soundRecords();
    for (Offset offset = 0; offset < sound.size(); ++offset) {
        for (std::size_t size = 0; size < sound[offset].size(); ++size) {
            auto records = sound;
            records[offset].resize(size);
            MemoryDataStore store;
            fill(store, records);
            if (size == 0) store.remove(offset);
            use(store);
        }
    }
}

TEST_F(DamagedTypes, SizeOfAValueThatIsNotThereGivesNoStructs) {
    MemoryDataStore store;
    Builder build(store);
    build.primitive(build.table(0, u"S"), kInt8, u"x");
    const Offset table = build.table(0, u"T");
    const Offset structs = build.structOf(table, u"p", u"S", 2);
    const Offset number = build.primitive(table, kInt8, u"n", 3);
    for (const Offset each : {structs, number})
        Record::storeField(&store, each, field::valueSize, 0xFFFFFFF0u);

    const auto locator = ISchemaLocator::make(&store);
    IStructLayout& shape = *locator->locate(u"T")->layout();

    EXPECT_THAT(fieldsOf(shape),
                ElementsAre(FieldRow{u"p[0].x", kInt8, 1, 0, 1}, FieldRow{u"p[1].x", kInt8, 1, 1, 1},
                            FieldRow{u"n", kInt8, 3, 2, 3}));
}

TEST_F(DamagedTypes, TableThatHoldsItselfIsWalkedOnce) {
    MemoryDataStore store;
    Builder build(store);
    const Offset table = build.table(0, u"T");
    const Offset nested = build.table(table, u"nested");
    build.primitive(nested, kInt8, u"x");
    build.listAnyway(nested, table);
    build.listAnyway(nested, nested);

    const auto locator = ISchemaLocator::make(&store);
    IStructLayout& shape = *locator->locate(u"T")->layout();

    EXPECT_THAT(fieldsOf(shape), ElementsAre(FieldRow{u"nested.x", kInt8, 1, 0, 1}));
}

TEST_F(DamagedTypes, TypeThatHoldsItselfIsNotSatisfied) {
    MemoryDataStore store;
    Builder build(store);
    const Offset table = build.table(0, u"T");
    const Offset nested = build.table(table, u"nested");
    build.primitive(nested, kInt8, u"x");
    build.listAnyway(nested, table);
    const auto locator = ISchemaLocator::make(&store);

    EXPECT_FALSE(Schema::matchesStructure(locator->locate(u"T").get(), Design::Table(&store, table)));
}

TEST_F(DamagedTypes, CachedTypeWhoseRecordHasGoneSatisfiesNothingAndGivesNothing) {
    MemoryDataStore store;
    Builder build(store);
    const Offset table = build.table(0, u"T");
    build.primitive(table, kInt8, u"x");
    const Offset object = build.table(0, u"object");
    build.primitive(object, kInt8, u"x");
    const auto locator = ISchemaLocator::make(&store);
    const auto schema = locator->locate(u"T");

    store.remove(table);

    EXPECT_FALSE(Schema::matchesStructure(schema.get(), Design::Table(&store, object)));
    EXPECT_EQ(schema->layout()->fieldCount(), 1u);
}

}  // namespace
}  // namespace norvane::platform::test
