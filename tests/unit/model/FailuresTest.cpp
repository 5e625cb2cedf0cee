// A store that fails at each of its calls, under everything that the model does. The failure must reach the
// caller, memory must be given back (LeakSanitizer sees that), and what can be counted out is counted out.
#include <functional>

#include "model/Subtree.h"
#include "support/ThrowingStore.h"
#include "unit/model/ModelFixture.h"

namespace norvane::platform::test {
namespace {

using Design::Primitive;
using Design::Table;

// Root 0, a group "g" in it with a display name, a table "t" in that with defaults and a primitive "p".
struct Sample {
    explicit Sample(IDataStore& store) {
        ModelBuilder build(store);
        root = build.root();
        group = build.container(root, u"g");
        build.localise(group, u"de", u"eins");
        table = build.table(group, u"t");
        build.defaults(table, 0x2001, 17);
        primitive = build.values<std::int32_t>(table, u"p", 12, {1, 2, 3});
        structure = build.primitive(table, u"s", 24);
        loose = build.container(kUnlisted, u"loose");
    }

    Offset root, group, table, primitive, structure, loose;
};

// A sample in a store that fails from the n-th call on after `arm`, until `disarm`.
class FailingSample {
  public:
    FailingSample(Extensions extensions, std::uint64_t n, bool isLasting)
        : store(memory, extensions), n_(n), isLasting_(isLasting) {}

    void arm() { isLasting_ ? store.throwFrom(n_) : store.throwAt(n_); }
    void disarm() {
        hasThrown_ = hasThrown_ || store.thrown();
        store.calm();
    }
    bool hasThrown() const { return hasThrown_; }

    MemoryDataStore memory;
    const Sample sample{memory};
    ThrowingStore store;

  private:
    std::uint64_t n_;
    bool isLasting_;
    bool hasThrown_ = false;
};

std::vector<Offset> countsOf(IDataStore& store) {
    std::vector<Offset> counts;
    for (Offset offset = 0; offset < store.size(); ++offset) {
        const RecordBytes record = recordAt(store, offset);
        counts.push_back(record.view().isWholeEntity() ? record.u32At(5) : 0);
    }
    return counts;
}

// Everything that is stored must still be walkable, whatever was left half done.
void walk(IDataStore& store) {
    for (Offset offset = 0; offset < store.size(); ++offset) {
        if (const Owned<Set> set = Metadata::openSet(&store, offset)) {
            set->countedChildren();
            set->localisedCount();
        }
        Metadata::isSubtreeClosed(&store, offset);
    }
}

// Runs `operation(failing)` with a failure at the first call, then at the second, and so on until none is
// left. The operation opens what it needs, arms, acts and disarms; so whatever it opened can be counted out
// again, unless the failure lasts.
void failAt(const std::function<void(FailingSample&)>& operation, bool isClosing = false) {
    for (const Extensions extensions : {Extensions::off, Extensions::on})
        for (const bool isLasting : {false, true}) {
            std::uint64_t failures = 0;
            for (std::uint64_t n = 1;; ++n) {
                FailingSample failing(extensions, n, isLasting);
                bool hasReachedCaller = false;
                try {
                    operation(failing);
                } catch (const StoreFailure&) {
                    hasReachedCaller = true;
                }
                failing.disarm();
                if (!failing.hasThrown()) break;
                ++failures;
                ASSERT_TRUE(hasReachedCaller) << "call " << n;
                walk(failing.memory);
                if (isLasting || isClosing) continue;
                for (const Offset count : countsOf(failing.memory)) ASSERT_EQ(count, 0u) << "call " << n;
            }
            EXPECT_GT(failures, 0u);
        }
}

template <class Act>
void failInContainer(Act act) {
    failAt([&](FailingSample& failing) {
        Container open(&failing.store, failing.sample.group);
        failing.arm();
        act(open, failing.sample);
        failing.disarm();
    });
}

template <class Act>
void failInTable(Act act) {
    failAt([&](FailingSample& failing) {
        Table open(&failing.store, failing.sample.table);
        failing.arm();
        act(open);
        failing.disarm();
    });
}

template <class Act>
void failInPrimitive(Act act, Offset Sample::*which = &Sample::primitive) {
    failAt([&](FailingSample& failing) {
        Primitive open(&failing.store, failing.sample.*which);
        failing.arm();
        act(open);
        failing.disarm();
    });
}

TEST(FailuresTest, OpeningCountsOutWhatItCountedIn) {
    failAt([](FailingSample& failing) {
        failing.arm();
        const Root root(&failing.store, failing.sample.root);
        failing.disarm();
    });
    failAt([](FailingSample& failing) {
        failing.arm();
        const Container container(&failing.store, failing.sample.group);
        failing.disarm();
    });
    failAt([](FailingSample& failing) {
        failing.arm();
        const Table table(&failing.store, failing.sample.table);
        failing.disarm();
    });
    failAt([](FailingSample& failing) {
        failing.arm();
        const Primitive primitive(&failing.store, failing.sample.primitive);
        failing.disarm();
    });
    failAt([](FailingSample& failing) {
        failing.arm();
        const Owned<Item> item = Metadata::openItem(&failing.store, failing.sample.table);
        const Owned<Set> set = Metadata::openSet(&failing.store, failing.sample.group);
        failing.disarm();
    });
    failAt([](FailingSample& failing) {
        failing.arm();
        Container container(&failing.store, failing.sample.group, Opening::transient);
        container.childCount();
        failing.disarm();
    });
}

TEST(FailuresTest, NewEntitiesAreCountedOut) {
    failAt([](FailingSample& failing) {
        failing.arm();
        const Container container(&failing.store, 2, u"new");
        failing.disarm();
    });
    failAt([](FailingSample& failing) {
        failing.arm();
        const Table table(&failing.store, u"new");
        failing.disarm();
    });
    failAt([](FailingSample& failing) {
        failing.arm();
        const Primitive primitive(&failing.store, 12, u"new");
        failing.disarm();
    });
    failAt([](FailingSample& failing) {
        failing.arm();
        const Root root(&failing.store, u"new");
        failing.disarm();
    });
}

TEST(FailuresTest, ClosingSaysThatItFailed) {
    failAt(
        [](FailingSample& failing) {
            Container container(&failing.store, failing.sample.group);
            container.setLocalised(u"zwei", u"fr");
            failing.arm();
        },
        true);
    failAt(
        [](FailingSample& failing) {
            Owned<Item> item = Metadata::openItem(&failing.store, failing.sample.table);
            item->setLocalised(u"zwei", u"fr");
            failing.arm();
            item.reset();
        },
        true);
}

TEST(FailuresTest, OperationsOfItems) {
    failInContainer([](Container& open, const Sample&) { open.path(); });
    failInContainer([](Container& open, const Sample&) { open.setFlags(open.flags() | 1); });
    failInContainer([](Container& open, const Sample&) { open.clearFlags(1); });
    failInContainer(
        [](Container& open, const Sample&) { open.setLocalised(u"a", u"b"), open.localised(u"de"); });
    failInContainer([](Container& open, const Sample&) { open.localisedIndex(u"de"); });
    failInContainer([](Container& open, const Sample&) { open.eraseLocale(); });
    failAt([](FailingSample& failing) {
        Primitive open(&failing.store, failing.sample.primitive);
        ModelBuilder(failing.memory).flag(failing.sample.table, Record::kInherited);
        failing.arm();
        open.touch();
        failing.disarm();
    });
}

TEST(FailuresTest, OperationsOfSets) {
    failInContainer([](Container& open, const Sample& sample) { open.addChild(sample.loose); });
    failInContainer([](Container& open, const Sample&) { open.removeChild(u"t"); });
    failInContainer([](Container& open, const Sample&) { open.renameChild(u"t", u"u"); });
    failInContainer(
        [](Container& open, const Sample& sample) { open.importChild(open.store(), sample.loose); });
    failInContainer([](Container& open, const Sample&) { open.reloadChildren(); });
    failInContainer([](Container& open, const Sample&) { open.resolve(u"t.p"); });
    failInContainer([](Container& open, const Sample&) { open.childAt(0), open.children(); });
    failInContainer([](Container& open, const Sample&) { open.isRemovable(); });
    failInContainer([](Container& open, const Sample&) { open.clone(open.store()); });
    failInContainer([](Container& open, const Sample&) { open.erase(); });
    failInContainer([](Container& open, const Sample&) { open.setLinkTarget(u"x"); });
    failAt([](FailingSample& failing) {
        Container empty(&failing.store, failing.sample.loose);
        failing.arm();
        empty.addChild(failing.sample.structure);
        failing.disarm();
    });
}

TEST(FailuresTest, OperationsOfTables) {
    failInTable([](Table& open) { open.addDefault(0x5019, 16); });
    failInTable([](Table& open) { open.defaultType(0x2000), open.defaultUnit(0x2000); });
    failInTable([](Table& open) { open.clone(open.store()); });
    failInTable([](Table& open) { open.erase(); });
    failAt([](FailingSample& failing) {
        Table open(&failing.store, u"new");
        failing.arm();
        open.addDefault(0x2001, 17);
        failing.disarm();
    });
}

TEST(FailuresTest, OperationsOfPrimitives) {
    static const std::int32_t source[] = {7, 8, 9, 10};
    failInPrimitive([](Primitive& open) { open.writeValues(source, 0, 2); });
    failInPrimitive([](Primitive& open) { open.writeValues(source, 3, 1); });
    failInPrimitive([](Primitive& open) { open.writeValues(source, 5, 1); });
    failInPrimitive([](Primitive& open) {
        open.overlayValues(reinterpret_cast<const std::byte*>(source), {1, 0, 0, 1});
    });
    failInPrimitive([](Primitive& open) {
        std::int32_t target[3];
        open.readValues(target, 0, 3);
    });
    failInPrimitive([](Primitive& open) { open.resize(4); });
    failInPrimitive([](Primitive& open) { open.setUri(u"u"); });
    failInPrimitive([](Primitive& open) { open.setUnits(open.units() + 1); });
    failInPrimitive([](Primitive& open) { open.setLocale(u"de"); });
    failInPrimitive([](Primitive& open) { open.setLocale(nullptr); });
    failInPrimitive([](Primitive& open) { open.isRemovable(); });
    failInPrimitive([](Primitive& open) { open.clone(open.store()); });
    failInPrimitive([](Primitive& open) { open.erase(); });
    failInPrimitive([](Primitive& open) { open.setStructType(u"S"); }, &Sample::structure);
}

TEST(FailuresTest, WalksOverSubtrees) {
    failAt([](FailingSample& failing) {
        MemoryDataStore target;
        failing.arm();
        Metadata::cloneSubtree(&failing.store, failing.sample.group, &target);
        failing.disarm();
    });
    failAt([](FailingSample& failing) {
        failing.arm();
        Metadata::eraseSubtree(&failing.store, failing.sample.group);
        failing.disarm();
    });
    failAt([](FailingSample& failing) {
        failing.arm();
        Metadata::isSubtreeClosed(&failing.store, failing.sample.group);
        failing.disarm();
    });
    failAt([](FailingSample& failing) {
        failing.arm();
        Metadata::resolvePath(&failing.store, 0, u"g.t.p");
        failing.disarm();
    });
}

// Fails at the writes of open counts, as long as it is told to.
class UncountingStore : public ForwardingStore {
  public:
    explicit UncountingStore(IDataStore& store) : ForwardingStore(store, Extensions::off) {}
    void write(std::uint32_t offset, const void* buffer, std::uint32_t size, bool flag) override {
        if (!flag && fails) throw StoreFailure();
        ForwardingStore::write(offset, buffer, size, flag);
    }
    bool fails = false;
};

TEST(ClosingTest, StringsAreStoredEvenWhenTheObjectCannotBeCountedOut) {
    MemoryDataStore memory;
    UncountingStore store(memory);
    const Offset group = ModelBuilder(store).container(kUnlisted, u"g");
    Owned<Container> open = data::makeOwned<Container>(&store, group);
    open->setLocalised(u"eins", u"de");
    store.fails = true;

    EXPECT_THROW(open.reset(), StoreFailure);

    EXPECT_EQ(Container(&memory, group).localised(u"de"), u"eins");
}

TEST(ClosingTest, FailureDuringAnotherExceptionIsDropped) {
    MemoryDataStore memory;
    UncountingStore store(memory);
    const Offset group = ModelBuilder(store).container(kUnlisted, u"g");
    const auto closeWhileThrowing = [&] {
        const Container open(&store, group);
        store.fails = true;
        throw std::logic_error("something else");
    };

    EXPECT_THROW(closeWhileThrowing(), std::logic_error);
}

TEST(ClosingTest, ObjectMadeDuringAnotherExceptionStillSaysThatItFailed) {
    MemoryDataStore memory;
    UncountingStore store(memory);
    const Offset group = ModelBuilder(store).container(kUnlisted, u"g");
    bool hasFailed = false;
    struct ActsWhileUnwinding {
        std::function<void()> act;
        ~ActsWhileUnwinding() { act(); }
    };
    const auto closeInADestructor = [&] {
        const ActsWhileUnwinding acting{[&] {
            store.fails = false;
            try {
                const Container open(&store, group);
                store.fails = true;
            } catch (const StoreFailure&) {
                hasFailed = true;
            }
        }};
        throw std::logic_error("something else");
    };

    EXPECT_THROW(closeInADestructor(), std::logic_error);

    EXPECT_TRUE(hasFailed);
}

TEST(ClosingTest, IndexThatFailedHalfWayIsNotUsed) {
    MemoryDataStore memory;
    ThrowingStore store(memory);
    const Sample sample(memory);
    Container open(&store, sample.group);
    ModelBuilder(memory).primitive(sample.group, u"later");
    store.throwAt(5);

    EXPECT_THROW(open.reloadChildren(), StoreFailure);
    store.calm();

    EXPECT_NE(open.find(u"later"), noRecord());
    EXPECT_FALSE(open.addChild(ModelBuilder(memory).primitive(kUnlisted, u"t")));
    EXPECT_EQ(open.childCount(), 2u);
}

}  // namespace
}  // namespace norvane::platform::test
