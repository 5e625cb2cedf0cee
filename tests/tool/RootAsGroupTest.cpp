// The root shown as a group: what a handle on it does is done to the root record, and to nothing else.
#include <gmock/gmock.h>

#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string_view>
#include <vector>

#include "RootAsGroup.h"
#include "norvane/platform/core/io/MemoryReader.h"
#include "norvane/platform/core/storage/datastore/MemoryDataStore.h"
#include "norvane/platform/data/format/xml/IXMLFrontEnd.h"

namespace qvt {
namespace {

using core::storage::datastore::kWholeRecord;
using core::storage::datastore::MemoryDataStore;
using testing::ElementsAreArray;

using Bytes = std::vector<std::uint8_t>;

// Kind 0, no parent, open count 0, no locale, flags 0, no children, a name of 4 bytes: "r".
const Bytes kRoot{0, 0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF,
                  0, 0xFF, 0xFF, 0xFF, 0xFF, 4, 0, 0, 0, 'r',  0,    0,    0};
// Kind 4, the same, container kind 1, the name's size, no class, no target, the name.
const Bytes kGroup{4, 0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 0,   0xFF, 0xFF, 0xFF, 0xFF,
                   1, 4,    0,    0,    0,    0, 0, 0, 0, 0,    0,    0,    0,    'r', 0,    0,    0};

Bytes contents(IDataStore& store, std::uint32_t offset) {
    Bytes bytes(store.recordSize(offset));
    if (!bytes.empty()) store.read(offset, bytes.data(), kWholeRecord);
    return bytes;
}

void parse(IDataStore& store, std::string_view document) {
    core::io::MemoryReader reader(document);
    data::format::xml::IXMLFrontEnd::parse(&store, &reader, nullptr, nullptr, nullptr);
}

struct RootAsGroupTest : testing::Test {
    RootAsGroupTest() { store.append(kRoot.data(), static_cast<std::uint32_t>(kRoot.size())); }

    MemoryDataStore store;
};

TEST_F(RootAsGroupTest, ShowsTheRecordOfAGroup) {
    RootAsGroup view(store);
    EXPECT_TRUE(view.hasRoot());
    EXPECT_THAT(contents(view, 0), ElementsAreArray(kGroup));
    std::uint32_t size = 0;
    const auto* bytes = static_cast<const std::uint8_t*>(view.view(0, size));
    EXPECT_THAT(Bytes(bytes, bytes + size), ElementsAreArray(kGroup));
    std::uint8_t kind = 0;
    view.read(0, &kind, 1);
    EXPECT_EQ(kind, 4);
}

TEST_F(RootAsGroupTest, WritesTheGroupBackAsARoot) {
    RootAsGroup view(store);
    Bytes group = kGroup;
    group[14] = 7;  // its children
    group[group.size() - 4] = 's';
    view.write(0, group.data(), static_cast<std::uint32_t>(group.size()), true);
    Bytes root = kRoot;
    root[14] = 7;
    root[root.size() - 4] = 's';
    EXPECT_THAT(contents(store, 0), ElementsAreArray(root));
}

TEST_F(RootAsGroupTest, TakesNoClassAndNoTargetForARoot) {
    RootAsGroup view(store);
    for (const std::size_t sizeField : {23u, 27u}) {
        Bytes group = kGroup;
        group[sizeField] = 2;
        group.insert(group.end(), 2, 0);
        EXPECT_THROW(view.write(0, group.data(), static_cast<std::uint32_t>(group.size()), true),
                     std::logic_error);
    }
    EXPECT_THAT(contents(store, 0), ElementsAreArray(kRoot));
}

TEST_F(RootAsGroupTest, PatchesFieldsOfAllEntitiesInPlaceAndOthersInTheGroup) {
    RootAsGroup view(store);
    const std::uint32_t children = 9;
    EXPECT_TRUE(view.patch(0, 14, &children, 4, true));
    const std::uint8_t letter = 's';
    EXPECT_TRUE(view.patch(0, 31, &letter, 1, true));
    Bytes root = kRoot;
    root[14] = 9;
    root[15] = root[16] = root[17] = 0;
    root[22] = 's';
    EXPECT_THAT(contents(store, 0), ElementsAreArray(root));
    EXPECT_THROW(view.patch(0, 34, &children, 4, true), std::out_of_range);
}

TEST_F(RootAsGroupTest, PassesEverythingElseThrough) {
    RootAsGroup view(store);
    const Bytes list{3, 1, 0, 0, 0};
    ASSERT_EQ(view.append(list.data(), 5), 1u);
    view.extend(1, list.data(), 1);
    view.patch(1, 1, &list[0], 1, true);
    EXPECT_THAT(contents(store, 1), testing::ElementsAre(3, 3, 0, 0, 0, 3));
    EXPECT_EQ(view.size(), 2u);
    EXPECT_EQ(view.changeStamp(), store.changeStamp());
    view.remove(1);
    EXPECT_EQ(store.recordSize(1), 0u);
}

TEST_F(RootAsGroupTest, AHandleAddsToTheRoot) {
    {
        RootAsGroup view(store);
        const SharedPtr<IContainer> top = view.open();
        EXPECT_EQ(utf8(top->name()), "r");
        EXPECT_TRUE(top->isEmpty());
        top->makeTable(u"t", nullptr);
        top->setLocalised(u"de", u"Wurzel");
    }
    MemoryDataStore parsed;
    parse(parsed, "<root name=\"r\"/>");
    EXPECT_EQ(contents(store, 0).size(), contents(parsed, 0).size());
    EXPECT_EQ(contents(store, 0)[0], 0);
    EXPECT_THAT(contents(store, 2), testing::ElementsAre(3, 1, 0, 0, 0));  // the root's list: the table alone
    RootAsGroup again(store);
    EXPECT_EQ(utf8(again.open()->localised(u"de")), "Wurzel");
}

TEST_F(RootAsGroupTest, LeavesTheRootClosedAndEveryRecordAsItWas) {
    {
        RootAsGroup view(store);
        const SharedPtr<IContainer> top = view.open();
        EXPECT_EQ(contents(store, 0)[5], 1);
    }
    EXPECT_THAT(contents(store, 0), ElementsAreArray(kRoot));
    EXPECT_EQ(store.size(), 1u);
}

TEST(RootAsGroupOnOtherStores, PutsAnOutermostObjectThatIsNoRootBelowAGroup) {
    MemoryDataStore store;
    parse(store, "<group name=\"g\"><node name=\"n\"/></group>");
    const Bytes before = contents(store, 0);
    {
        RootAsGroup view(store);
        EXPECT_FALSE(view.hasRoot());
        const SharedPtr<IContainer> top = view.open();
        EXPECT_EQ(utf8(top->find(u"g.n")->path()), "g.n");
        EXPECT_FALSE(top->find(u"n"));
    }
    EXPECT_THAT(contents(store, 0), ElementsAreArray(before));
}

TEST(RootAsGroupOnOtherStores, OfNothingIsAnEmptyGroup) {
    MemoryDataStore store;
    RootAsGroup view(store);
    const SharedPtr<IContainer> top = view.open();
    ASSERT_TRUE(top);
    EXPECT_FALSE(top->find(u"g"));
    EXPECT_EQ(store.size(), 0u);
}

}  // namespace
}  // namespace qvt
