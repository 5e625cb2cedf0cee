// The index of a wide set that all who look share: nothing that is answered or stored may tell of it.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "model/ChildCache.h"
#include "norvane/platform/core/storage/datastore/MemoryDataStore.h"
#include "support/ForwardingStore.h"
#include "support/ModelBuilder.h"
#include "support/Torture.h"

namespace norvane::platform::test {
namespace {

namespace Metadata = data::Metadata;
using core::storage::datastore::MemoryDataStore;
using data::Owned;
using data::Structural::Container;
using Metadata::ChildCache;
using Metadata::Opening;

std::u16string numbered(unsigned number) {
    std::u16string name = u"Property_";
    for (; number != 0; number /= 10) name.push_back(static_cast<char16_t>(u'0' + number % 10));
    return name;
}

// A store with two wide groups and some open objects on them. With extensions off the store keeps no
// companion, so that all answers are the plain ones.
struct World {
    static constexpr unsigned kWidth = 45;

    explicit World(Extensions extensions) : forwarding(memory, Extensions::off) {
        store = extensions == Extensions::on ? static_cast<IDataStore*>(&memory) : &forwarding;
        ModelBuilder build(*store);
        const Offset root = build.root();
        for (Offset& group : groups) {
            group = build.container(root, u"g" + numbered(group));
            Container filled(store, group);
            for (unsigned i = 0; i < kWidth; ++i) filled.addChild(make(numbered(i)));
        }
    }
    World(const World&) = delete;
    World& operator=(const World&) = delete;
    ~World() noexcept(false) {
        for (Container* each : open) delete each;
    }

    Offset make(const std::u16string& name) const {
        return data::Design::Primitive(store, data::metadata::kInt32, name).offset();
    }
    Offset find(unsigned group, const std::u16string& name) const {
        return Metadata::findChild(store, groups[group], name);
    }
    Offset list(unsigned group) const { return listRecordOf(*store, groups[group]); }

    MemoryDataStore memory;
    ForwardingStore forwarding;
    IDataStore* store;
    Offset groups[2] = {0, 1};
    std::vector<Container*> open;
};

// One random step, the same in every world that it is done in.
struct Step {
    explicit Step(std::mt19937& random)
        : kind(static_cast<unsigned>(random() % 15)),
          group(static_cast<unsigned>(random() % 2)),
          place(static_cast<unsigned>(random() % 64)),
          name(numbered(static_cast<unsigned>(random() % 60))),
          other(numbered(static_cast<unsigned>(random() % 60))) {}

    unsigned kind;
    unsigned group;
    unsigned place;
    std::u16string name;
    std::u16string other;

    bool run(World& world) const {
        switch (kind) {
            case 0:
            case 1:
                if (world.open.size() < 4)
                    world.open.push_back(new Container(world.store, world.groups[group]));
                return true;
            case 2:
                return close(world);
            case 3:
            case 4:
                return withSet(world, [&](Metadata::Set& set) { return set.addChild(world.make(name)); });
            case 5:
            case 6:
                return withSet(world, [&](Metadata::Set& set) { return set.removeChild(name); });
            case 7:
            case 8:
                return withSet(world, [&](Metadata::Set& set) { return set.renameChild(name, other); });
            case 9:
                return withSet(world, [&](Metadata::Set& set) { return (set.reloadChildren(), true); });
            case 10:
                return changeValue(world);
            default:
                return place < 16 && damage(world);
        }
    }

  private:
    bool close(World& world) const {
        if (world.open.empty()) return false;
        const std::size_t index = place % world.open.size();
        delete world.open[index];
        world.open.erase(world.open.begin() + static_cast<std::ptrdiff_t>(index));
        return true;
    }

    // An open object, or one for this step alone.
    template <class Use>
    bool withSet(World& world, Use use) const {
        if (place % 3 != 0 && !world.open.empty()) return use(*world.open[place % world.open.size()]);
        Container set(world.store, world.groups[group], Opening::transient);
        return use(set);
    }

    bool changeValue(World& world) const {
        const Offset child = world.find(group, name);
        const std::int32_t value = 7;
        return child != noRecord() &&
               data::Design::Primitive(world.store, child, Opening::transient).writeValues(&value, 0, 1);
    }

    // What a host does that writes records by itself.
    bool damage(World& world) const {
        const std::vector<Offset> children = childrenOf(*world.store, world.groups[group]);
        if (children.size() < 2) return false;
        const Offset child = children[place % children.size()];
        const Offset next = children[(place + 1) % children.size()];
        RecordBytes list = recordAt(*world.store, world.list(group));
        std::string bytes = list.bytes();
        switch (kind) {
            case 11:
                world.store->remove(child);
                return true;
            case 12:
                bytes = recordAt(*world.store, next).bytes();
                if (world.store->recordSize(child) == 0) return false;
                world.store->write(child, bytes.data(), static_cast<Offset>(bytes.size()), true);
                return true;
            case 13:
                std::swap_ranges(bytes.begin() + 1, bytes.begin() + 5, bytes.begin() + 5 + 4 * (place % 4));
                break;
            default:
                bytes.resize(bytes.size() - 4);
        }
        world.store->write(world.list(group), bytes.data(), static_cast<Offset>(bytes.size()), true);
        return true;
    }
};

void expectSameAnswers(World& shared, World& plain, std::mt19937& random) {
    for (int i = 0; i < 3; ++i) {
        const std::u16string name = numbered(static_cast<unsigned>(random() % 60));
        const auto group = static_cast<unsigned>(random() % 2);
        ASSERT_EQ(shared.find(group, name), plain.find(group, name));
        for (std::size_t open = 0; open < plain.open.size(); ++open)
            ASSERT_EQ(shared.open[open]->find(name), plain.open[open]->find(name));
    }
    for (std::size_t open = 0; open < plain.open.size(); ++open)
        ASSERT_EQ(shared.open[open]->childCount(), plain.open[open]->childCount());
}

void runProgram(unsigned seed) {
    std::mt19937 random(seed);
    World shared(Extensions::on);
    World plain(Extensions::off);
    for (int step = 0; step < 200; ++step) {
        const Step next(random);
        ASSERT_EQ(next.run(shared), next.run(plain)) << "step " << step << " kind " << next.kind;
        expectSameAnswers(shared, plain, random);
        if (testing::Test::HasFatalFailure()) FAIL() << "seed " << seed << " step " << step;
    }
    ASSERT_EQ(differenceOf(shared.memory, plain.memory), "");
}

TEST(ChildCacheTest, RandomProgramsAnswerAndStoreAsWithoutIt) {
    for (unsigned seed = 0; seed < rounds(600); ++seed) {
        runProgram(seed);
        if (HasFatalFailure()) return;
    }
}

TEST(ChildCacheTest, StoreWithoutACompanionHasNone) {
    const World plain(Extensions::off);

    EXPECT_EQ(ChildCache::of(plain.store, 1000), nullptr);
}

TEST(ChildCacheTest, NarrowListsAreNotIndexed) {
    World world(Extensions::on);

    EXPECT_EQ(ChildCache::of(world.store, ChildCache::kWide - 1), nullptr);
    EXPECT_NE(ChildCache::of(world.store, ChildCache::kWide), nullptr);
}

TEST(ChildCacheTest, FirstQuestionIsLeftToTheAsker) {
    World world(Extensions::on);
    MemoryDataStore fresh;
    copyRecords(world.memory, fresh);
    ChildCache* cache = ChildCache::of(&fresh, 100);

    EXPECT_FALSE(cache->find(&fresh, world.list(0), u"Property_1"));
    EXPECT_EQ(cache->find(&fresh, world.list(0), u"Property_1"), world.find(0, u"Property_1"));
    EXPECT_EQ(cache->find(&fresh, world.list(0), u"x"), noRecord());
}

TEST(ChildCacheTest, IndexThatSomebodyHoldsStaysAsItIs) {
    World world(Extensions::on);
    ChildCache* cache = ChildCache::of(world.store, 100);
    cache->snapshot(world.store, world.list(0));
    const auto held = cache->snapshot(world.store, world.list(0));

    Container(world.store, world.groups[0], Opening::transient).renameChild(u"Property_1", u"new");

    EXPECT_EQ(cache->find(world.store, world.list(0), u"Property_1"), noRecord());
    EXPECT_NE(held->find(u"Property_1"), nullptr);
    EXPECT_EQ(held->find(u"new"), nullptr);
}

TEST(ChildCacheTest, IndexIsSharedWhileNothingChanges) {
    World world(Extensions::on);
    ChildCache* cache = ChildCache::of(world.store, 100);
    cache->snapshot(world.store, world.list(0));

    const auto first = cache->snapshot(world.store, world.list(0));
    const std::int32_t value = 3;
    data::Design::Primitive(world.store, world.find(0, u"Property_1")).writeValues(&value, 0, 1);

    EXPECT_EQ(cache->snapshot(world.store, world.list(0)), first);
}

TEST(ChildCacheTest, MoreChangesThanAreKeptAreSeen) {
    World world(Extensions::on);
    const Offset child = world.find(0, u"Property_1");
    world.find(0, u"Property_1");
    Container(world.store, world.groups[0], Opening::transient).renameChild(u"Property_2", u"new");

    for (std::int32_t i = 0; i < 40000; ++i)
        data::Design::Primitive(world.store, child, Opening::transient).writeValues(&i, 0, 1);

    EXPECT_EQ(world.find(0, u"Property_2"), noRecord());
    EXPECT_NE(world.find(0, u"new"), noRecord());
}

TEST(ChildCacheTest, IndicesOfDeletedSetsDoNotPileUp) {
    World world(Extensions::on);
    ModelBuilder build(*world.store);
    std::vector<std::weak_ptr<const Metadata::ChildIndex>> indices;
    for (unsigned round = 0; round < 200; ++round) {
        const Offset group = build.container(world.groups[1], u"passing");
        for (unsigned i = 0; i < 40; ++i) build.primitive(group, numbered(i));
        ChildCache* cache = ChildCache::of(world.store, 100);
        cache->snapshot(world.store, listRecordOf(*world.store, group));
        indices.push_back(cache->snapshot(world.store, listRecordOf(*world.store, group)));
        Container(world.store, world.groups[1]).removeChild(u"passing");
    }

    const auto left =
        std::count_if(indices.begin(), indices.end(), [](const auto& each) { return !each.expired(); });

    EXPECT_LE(left, 70);
}

TEST(ChildCacheTest, StoreMayTellThatAnythingChanged) {
    World world(Extensions::on);
    ChildCache* cache = ChildCache::of(world.store, 100);
    cache->snapshot(world.store, world.list(0));
    const auto first = cache->snapshot(world.store, world.list(0));

    cache->changedAll();

    EXPECT_NE(cache->snapshot(world.store, world.list(0)), first);
}

}  // namespace
}  // namespace norvane::platform::test
