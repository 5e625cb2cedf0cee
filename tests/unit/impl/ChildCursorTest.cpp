#include <gtest/gtest.h>

#include "impl/ContainerFilters.h"
#include "impl/Kinds.h"
#include "model/Primitive.h"
#include "support/LoggingStore.h"

namespace norvane::platform::data {
namespace {

// Children: a primitive, a container, a primitive.
class ChildCursorTest : public ::testing::Test {
  protected:
    ChildCursorTest() {
        Structural::Container parent(&store, container);
        for (const std::uint32_t child : {first, inner, second}) parent.addChild(child);
    }
    ~ChildCursorTest() noexcept override = default;

    test::LoggingStore store;
    std::uint32_t root = Metadata::Root(&store, u"root").offset();
    std::uint32_t container = Structural::Container(&store, 1, u"c").offset();
    std::uint32_t first = Design::Primitive(&store, 12, u"first").offset();
    std::uint32_t inner = Structural::Container(&store, 1, u"inner").offset();
    std::uint32_t second = Design::Primitive(&store, 12, u"second").offset();
};

TEST_F(ChildCursorTest, StandsOnMembersOnly) {
    ChildCursor cursor(&store, container, isPrimitive);

    EXPECT_EQ(cursor.offset(), first);
    EXPECT_TRUE(cursor.next());
    EXPECT_EQ(cursor.offset(), second);
    EXPECT_FALSE(cursor.next());
    EXPECT_EQ(cursor.offset(), IDataStore::BADOFF);
    EXPECT_TRUE(cursor.previous());
    EXPECT_EQ(cursor.offset(), second);
}

TEST_F(ChildCursorTest, FailedStepBackStays) {
    ChildCursor cursor(&store, container, isContainer);

    EXPECT_FALSE(cursor.previous());

    EXPECT_EQ(cursor.offset(), inner);
}

TEST_F(ChildCursorTest, FailedStepBackFromPastTheEndStaysThere) {
    ChildCursor cursor(&store, container, isTable);

    EXPECT_FALSE(cursor.previous());

    EXPECT_EQ(cursor.offset(), IDataStore::BADOFF);
}

TEST_F(ChildCursorTest, StepReadsOneByteOfEachChildItMeets) {
    ChildCursor cursor(&store, container, isPrimitive);
    store.takeCalls();

    cursor.next();

    EXPECT_EQ(store.count("read"), 2u);
    for (const test::StoreCall& call : store.calls()) EXPECT_TRUE(call.name != "read" || call.size == 1);
}

TEST_F(ChildCursorTest, NoContainerHasNoChildren) {
    ChildCursor cursor(&store, IDataStore::BADOFF, isPrimitive);

    EXPECT_EQ(cursor.offset(), IDataStore::BADOFF);
    EXPECT_FALSE(cursor.next());
    EXPECT_FALSE(cursor.previous());
}

}  // namespace
}  // namespace norvane::platform::data
