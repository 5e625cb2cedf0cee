// A hundred thousand levels on a small stack, a hundred thousand siblings in linear time.
#include "model/Subtree.h"
#include "support/CpuTime.h"
#include "support/ForwardingStore.h"
#include "support/SmallStack.h"
#include "unit/model/ModelFixture.h"

namespace norvane::platform::test {
namespace {

using Design::Table;

constexpr Offset kLevels = 100000;

// Containers and below them tables, each with one child "n", put together record by record: at offsets 2i + 1
// the i-th level, at 2i + 2 its list. The last level has none.
void fillDeep(IDataStore& store, Offset levels) {
    ModelBuilder(store).root();
    for (Offset i = 0; i < levels; ++i) {
        const Offset own = 2 * i + 1, parent = i == 0 ? 0 : own - 2;
        RecordBytes entity;
        const bool isContainer = i < levels / 2;
        const Offset list = i + 1 < levels ? own + 1 : noRecord();
        entity.u8(isContainer ? 4 : 2).u32(parent).u32(0).noRecord().u8(4).u32(list);
        if (isContainer)
            entity.u8(1).u32(4).u32(0).u32(0);
        else
            entity.u32(0).noRecord().u32(4).u32(0);
        appendTo(store, entity.text(u"n"));
        if (i + 1 < levels) appendTo(store, listOf({own + 2}));
    }
}

class DeepTest : public testing::Test {
  public:
    ~DeepTest() noexcept override = default;

  protected:
    // Each level must be there, with these flags.
    static void expectLevels(IDataStore& store, Offset top, std::uint8_t flags) {
        Offset levels = 0;
        for (Offset current = top; current != noRecord(); ++levels) {
            ASSERT_EQ(flagsOf(store, current), flags);
            const std::vector<Offset> children = childrenOf(store, current);
            current = children.empty() ? noRecord() : children.at(0);
        }
        EXPECT_EQ(levels, kLevels);
    }

    MemoryDataStore store_;
};

TEST_F(DeepTest, SubtreeIsCopied) {
    fillDeep(store_, kLevels);
    MemoryDataStore target;
    Offset copy = noRecord();

    onSmallStack([&] { copy = Container(&store_, 1).clone(&target); });

    expectLevels(target, copy, 4);
}

TEST_F(DeepTest, SubtreeIsImportedAndMarked) {
    fillDeep(store_, kLevels);
    MemoryDataStore target;
    const Offset set = ModelBuilder(target).container(kUnlisted, u"set");

    onSmallStack([&] { Container(&target, set).importChild(&store_, 1); });

    expectLevels(target, childrenOf(target, set).at(0), 6);
}

TEST_F(DeepTest, SubtreeIsAskedAndRemoved) {
    fillDeep(store_, kLevels);
    Record::storeField(&store_, 0, Record::field::children, appendTo(store_, listOf({1})));
    const Offset deepest = 2 * kLevels - 1;
    bool isRemoved = true;
    onSmallStack([&] {
        const Table open(&store_, deepest);
        isRemoved = Root(&store_, 0).removeChild(u"n");
    });
    EXPECT_FALSE(isRemoved);

    onSmallStack([&] { isRemoved = Root(&store_, 0).removeChild(u"n"); });

    EXPECT_TRUE(isRemoved);
    EXPECT_EQ(store_.recordCount(), 2u);  // the root and its list
}

TEST_F(DeepTest, DeepestIsFoundNamedAndTouched) {
    fillDeep(store_, kLevels);
    const Offset deepest = 2 * kLevels - 1;
    std::u16string path = u"n";
    for (Offset i = 1; i < kLevels; ++i) path += u".n";
    Record::storeField(&store_, 0, Record::field::children, appendTo(store_, listOf({1})));

    onSmallStack([&] {
        EXPECT_EQ(Metadata::resolvePath(&store_, 0, path), deepest);
        Table open(&store_, deepest);
        EXPECT_TRUE(open.path() == path);
        open.touch();
    });

    expectLevels(store_, 1, 0);
}

TEST_F(DeepTest, LevelsAreMadeOneBelowTheOther) {
    onSmallStack([&] {
        ModelBuilder build(store_);
        Offset current = build.root();
        for (Offset i = 0; i < 20000; ++i) current = build.container(current, u"n");
    });

    EXPECT_EQ(store_.recordCount(), 40001u);
}

std::u16string siblingName(std::uint32_t number) {
    std::u16string name = u"MaterialProperty_of_many_";
    for (int digit = 0; digit < 6; ++digit, number /= 10)
        name.push_back(static_cast<char16_t>(u'0' + number % 10));
    return name;
}

// Five times as many siblings may take about five times the work, not 25 times.
class WideTest : public testing::TestWithParam<Extensions> {
  public:
    ~WideTest() noexcept override = default;

  protected:
    static constexpr std::uint32_t kFew = 20000;
    static constexpr std::uint32_t kMany = 5 * kFew;

    struct Wide {
        Wide(std::uint32_t count, Extensions extensions) : store(memory, extensions) {
            Root root(&store, u"all");
            for (std::uint32_t i = 0; i < count; ++i)
                root.addChild(Design::Primitive(&store, 12, siblingName(i)).offset());
        }
        MemoryDataStore memory;
        ForwardingStore store;
    };

    template <class Work>
    void expectLinear(Work work) {
        const double few = shortestRun([&] { work(kFew); }, 2);
        EXPECT_LT(shortestRun([&] { work(kMany); }, 1), 12 * few + 0.05);
    }
};

INSTANTIATE_TEST_SUITE_P(Stores, WideTest, testing::Values(Extensions::off, Extensions::on),
                         [](const auto& each) {
                             return each.param == Extensions::on ? "WithViews" : "WithoutViews";
                         });

TEST_P(WideTest, SiblingsAreAddedInLinearTime) {
    expectLinear([](std::uint32_t count) { EXPECT_EQ(Wide(count, GetParam()).store.size(), 2 + count); });
}

TEST_P(WideTest, SiblingsAreOpenedAndFoundInLinearTime) {
    Wide few(kFew, GetParam()), many(kMany, GetParam());
    expectLinear([&](std::uint32_t count) {
        Root root(count == kFew ? &few.store : &many.store, 0);
        EXPECT_EQ(root.childCount(), count);
        for (std::uint32_t i = 0; i < count; ++i) EXPECT_NE(root.find(siblingName(i)), noRecord());
    });
}

TEST_P(WideTest, SiblingsAreCopiedAndErasedInLinearTime) {
    Wide few(kFew, GetParam()), many(kMany, GetParam());
    expectLinear([&](std::uint32_t count) {
        Wide& wide = count == kFew ? few : many;
        MemoryDataStore memory;
        ForwardingStore target(memory, GetParam());
        const Offset set = ModelBuilder(target).container(kUnlisted, u"set");
        Container open(&target, set);
        for (const Offset child : Root(&wide.store, 0).children()) open.importChild(&wide.store, child);
        const Offset copy = open.clone(&target);
        EXPECT_EQ(childrenOf(target, copy).size(), count);
        Metadata::eraseSubtree(&target, copy);
        EXPECT_EQ(target.size(), 2 * (count + 2u));
    });
}

}  // namespace
}  // namespace norvane::platform::test
