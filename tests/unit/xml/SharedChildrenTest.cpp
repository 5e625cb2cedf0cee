#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "model/Subtree.h"
#include "schema/Conformance.h"
#include "unit/schema/Types.h"
#include "unit/xml/Documents.h"

namespace norvane::platform::test {
namespace {

// Each set lists the next one twice: from the top to the bottom lead more ways than any walk could go.
constexpr int kLevels = 64;

class EachSetListedTwice : public testing::Test {
  public:
    ~EachSetListedTwice() noexcept override = default;

  protected:
    Offset chainOfTables() {
        const Offset top = build_.table(0, u"T");
        for (Offset table = top, level = 0; level < kLevels; ++level) {
            const Offset next = build_.table(table, u"t");
            build_.listAnyway(table, next);
            table = next;
        }
        return top;
    }

    MemoryDataStore store_;
    Builder build_{store_};
};

TEST_F(EachSetListedTwice, IsWrittenOnceEach) {
    chainOfTables();
    const std::string document = data::test::written(store_);
    std::size_t tables = 0;
    for (std::size_t at = document.find("<table"); at != document.npos; at = document.find("<table", at + 1))
        ++tables;
    EXPECT_EQ(tables, 1u + kLevels);
}

TEST_F(EachSetListedTwice, IsCopiedOnceEach) {
    const Offset top = chainOfTables();
    const std::uint64_t before = store_.recordCount();
    Metadata::cloneSubtree(&store_, top, &store_);
    EXPECT_EQ(store_.recordCount() - before, 2u * kLevels + 1u);
}

TEST_F(EachSetListedTwice, IsClosedAndIsErased) {
    const Offset top = chainOfTables();
    EXPECT_TRUE(Metadata::isSubtreeClosed(&store_, top));
    Metadata::eraseSubtree(&store_, top);
    EXPECT_EQ(store_.recordCount(), 3u);  // the root, its list, and the table
}

TEST_F(EachSetListedTwice, IsFlattenedAndComparedInTheEnd) {
    const Offset top = chainOfTables();
    const auto locator = ISchemaLocator::make(&store_);
    const auto schema = locator->locate(u"T");
    ASSERT_NE(schema, nullptr);
    EXPECT_EQ(schema->layout()->fieldCount(), 0u);
    EXPECT_TRUE(Schema::matchesStructure(schema.get(), Design::Table(&store_, top)));
}

}  // namespace
}  // namespace norvane::platform::test
