// What the model does when memory runs out at any moment. In a program of its own, since it takes the place
// of the global allocator.
#include <cstdlib>
#include <new>

#include "model/Subtree.h"
#include "unit/model/ModelFixture.h"

namespace {

// The allocation that fails, counted from now; 0 for none.
long failing = 0;

void* allocate(std::size_t size) {
    if (failing != 0 && --failing == 0) throw std::bad_alloc();
    void* block = std::malloc(size == 0 ? 1 : size);
    if (!block) throw std::bad_alloc();
    return block;
}

}  // namespace

void* operator new(std::size_t size) { return allocate(size); }
void* operator new[](std::size_t size) { return allocate(size); }
void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t) noexcept { std::free(block); }

namespace norvane::platform::test {
namespace {

using Design::Primitive;
using Design::Table;

struct Sample {
    Sample() {
        ModelBuilder build(store);
        build.root();
        group = build.container(0, u"a group with a name that needs memory");
        build.localise(group, u"de-with-a-long-name", u"eins und noch viel mehr");
        table = build.table(group, u"a table with a name that needs memory");
        build.defaults(table, 0x2001, 17);
        primitive = build.values<std::int32_t>(table, u"a primitive with a long name", 12, {1, 2, 3});
        loose = build.primitive(kUnlisted, u"another primitive with a long name");
    }

    MemoryDataStore store;
    Offset group = 0, table = 0, primitive = 0, loose = 0;
};

// Runs `act` with a failure at its first allocation, then at its second, and so on until it gets through.
// After each failure nothing may be open any more, and all that is stored can be opened.
template <class Act>
void failAtEveryAllocation(Act act) {
    long failures = 0;
    for (bool hasFailed = true; hasFailed; failures += hasFailed ? 1 : 0) {
        Sample sample;
        hasFailed = false;
        failing = failures + 1;
        try {
            act(sample);
        } catch (const std::bad_alloc&) {
            hasFailed = true;
        }
        failing = 0;
        for (Offset offset = 0; offset < sample.store.size(); ++offset) {
            if (recordAt(sample.store, offset).view().isWholeEntity()) {
                ASSERT_EQ(openCountOf(sample.store, offset), 0u) << "allocation " << failures + 1;
            }
            Metadata::openSet(&sample.store, offset);
        }
    }
    EXPECT_GT(failures, 0);
}

TEST(MemoryRunsOutTest, WhileObjectsAreOpened) {
    failAtEveryAllocation([](Sample& sample) {
        const Root root(&sample.store, 0);
        const Container container(&sample.store, sample.group);
        const Table table(&sample.store, sample.table);
        const Primitive primitive(&sample.store, sample.primitive);
        const Owned<Item> item = Metadata::openItem(&sample.store, sample.primitive);
    });
}

TEST(MemoryRunsOutTest, WhileEntitiesAreMade) {
    failAtEveryAllocation([](Sample& sample) {
        const Container container(&sample.store, 1, u"a container with a long name");
        Table table(&sample.store, u"a table with a long name");
        table.addDefault(0x2001, 17);
        table.addChild(Primitive(&sample.store, 12, u"a primitive with a long name").offset());
    });
}

TEST(MemoryRunsOutTest, WhileChildrenChange) {
    failAtEveryAllocation([](Sample& sample) {
        Container open(&sample.store, sample.group);
        open.addChild(sample.loose);
        open.renameChild(u"another primitive with a long name", u"one more primitive with a long name");
        open.reloadChildren();
        open.importChild(&sample.store, sample.primitive);
        open.removeChild(u"a table with a name that needs memory");
    });
}

TEST(MemoryRunsOutTest, WhileValuesChange) {
    static const std::int32_t source[100] = {7};
    failAtEveryAllocation([](Sample& sample) {
        Primitive open(&sample.store, sample.primitive);
        open.writeValues(source, 3, 90);
        open.overlayValues(reinterpret_cast<const std::byte*>(source), std::vector<unsigned char>(100, 1));
        open.resize(50);
        open.setLocale(u"a locale tag with a long name");
        open.setUri(u"a URI that is long enough to need memory");
    });
}

TEST(MemoryRunsOutTest, WhileDisplayNamesChangeAndAreStored) {
    failAtEveryAllocation([](Sample& sample) {
        Container open(&sample.store, sample.group);
        open.setLocalised(u"zwei und noch viel mehr", u"fr-with-a-long-name");
        open.localised(u"de-with-a-long-name");
    });
}

TEST(MemoryRunsOutTest, WhileSubtreesAreWalked) {
    failAtEveryAllocation([](Sample& sample) {
        MemoryDataStore target;
        Metadata::cloneSubtree(&sample.store, sample.group, &target);
        Metadata::isSubtreeClosed(&sample.store, sample.group);
        Metadata::resolvePath(&sample.store, 0, u"a group with a name that needs memory.x.y");
        Metadata::eraseSubtree(&sample.store, sample.group);
    });
}

// Some of the strings must not pass for all of them.
TEST(MemoryRunsOutTest, WhileDisplayNamesAreLoadedLosesNoneOfThem) {
    for (long n = 1; n < 40; ++n) {
        Sample sample;
        for (const char16_t* locale : {u"a", u"b", u"c"})
            ModelBuilder(sample.store)
                .localise(sample.group, locale, u"a text that is long enough for memory");
        {
            Container open(&sample.store, sample.group);
            failing = n;
            try {
                open.localisedCount();
            } catch (const std::bad_alloc&) {
            }
            failing = 0;
            open.setLocalised(u"new", u"d");
        }

        ASSERT_EQ(Container(&sample.store, sample.group).localisedCount(), 5u) << "allocation " << n;
    }
}

}  // namespace
}  // namespace norvane::platform::test
