// Random damage to small models: nothing of it is passed over, and what is not concerned by it stays.
#include "integrity/Mend.h"
#include "unit/integrity/Random.h"

namespace norvane::platform::test {
namespace {

using ::testing::IsEmpty;

// A random model and the same one with some damage.
struct Spoilt {
    Spoilt(std::uint32_t seed, int count) : random(seed) {
        fillAtRandom(before, random);
        copyRecords(before, store);
        store.setVersion(1);
        for (int i = 0; i < count; ++i) records.push_back(spoil(store, random));
    }

    // The entity, what it leads to, and what stands above it, are as they were.
    bool isUntouched(Offset entity) {
        for (; entity != none(); entity = parentOf(before, entity))
            for (const Offset spoilt : records)
                if (spoilt == entity || spoilt == localeOf(before, entity) || spoilt == listOf(entity) ||
                    spoilt == defaultsOf(entity))
                    return false;
        return true;
    }

    std::uint8_t kindOf(Offset offset) { return recordAt(before, offset).u8At(0); }
    Offset listOf(Offset entity) { return kindOf(entity) == 1 ? none() : listRecordOf(before, entity); }
    Offset defaultsOf(Offset entity) {
        return kindOf(entity) == 2 ? recordAt(before, entity).u32At(22) : none();
    }

    // Nobody can tell whose display names or defaults they are if two entities name them.
    bool hasUnsharedSatellites(Offset entity) {
        int users = 0;
        for (const Offset each : recordsOf(store)) {
            const RecordBytes record = recordAt(store, each);
            if (!data::Record::isEntity(record.u8At(0))) continue;
            users += localeOf(before, entity) != none() && record.u32At(9) == localeOf(before, entity);
            users += defaultsOf(entity) != none() && record.u32At(22) == defaultsOf(entity);
        }
        return users == (localeOf(before, entity) != none()) + (defaultsOf(entity) != none());
    }

    std::vector<Finding> mend(const std::u16string& recovered) {
        return data::integrity::mend(store, {false, recovered});
    }

    Random random;
    MemoryDataStore before, store;
    std::vector<Offset> records;
};

bool isListed(IDataStore& store, Offset set, Offset child) {
    const std::vector<Offset> children = childrenOf(store, set);
    return std::count(children.begin(), children.end(), child) == 1;
}

// Whole entities that no root is above.
std::vector<std::string> leftOut(IDataStore& store) {
    std::vector<std::string> words;
    for (const Finding& each : data::integrity::check(store).findings)
        if (each.code == "unreachable" && recordAt(store, each.offset).view().isWholeChild())
            words.push_back(std::to_string(each.offset));
    return words;
}

class RandomTamper : public ::testing::TestWithParam<std::uint32_t> {
  protected:
    static constexpr std::uint32_t kRuns = 120;

    template <class Run>
    void forEachSeed(Run run) {
        for (std::uint32_t i = 0; i < kRuns && !HasFatalFailure(); ++i) {
            const std::uint32_t seed = GetParam() * kRuns + i;
            SCOPED_TRACE("seed " + std::to_string(seed));
            run(seed);
        }
    }
};

TEST_P(RandomTamper, FindsNothingWhereNothingIsWrong) {
    forEachSeed([](std::uint32_t seed) {
        Spoilt model(seed, 0);
        ASSERT_THAT(checked(model.store), IsEmpty());
    });
}

TEST_P(RandomTamper, FindsEveryChangeOfMeaning) {
    forEachSeed([](std::uint32_t seed) {
        Spoilt model(seed, 1);
        if (!checked(model.store).empty()) return;
        ASSERT_EQ(Meaning(model.store).text(), Meaning(model.before).text())
            << "record " << model.records[0] << "\n"
            << testing::PrintToString(recordAt(model.before, model.records[0])) << "became\n"
            << testing::PrintToString(recordAt(model.store, model.records[0]));
    });
}

TEST_P(RandomTamper, MendingKeepsWhatIsUntouched) {
    forEachSeed([](std::uint32_t seed) {
        Spoilt model(seed, 1 + static_cast<int>(seed % 4));
        std::vector<Offset> untouched, unchanged;
        for (const Offset entity : recordsOf(model.before)) {
            if (!data::Record::isChildKind(model.kindOf(entity)) || !model.isUntouched(entity)) continue;
            untouched.push_back(entity);
            if (model.hasUnsharedSatellites(entity)) unchanged.push_back(entity);
        }
        model.mend({});
        ASSERT_THAT(errorsOf(model.store), IsEmpty());
        for (const Offset entity : unchanged)
            ASSERT_EQ(recordAt(model.store, entity), recordAt(model.before, entity)) << "entity " << entity;
        for (const Offset entity : untouched)
            ASSERT_TRUE(isListed(model.store, parentOf(model.before, entity), entity)) << "entity " << entity;
    });
}

TEST_P(RandomTamper, MendingBringsBackWhateverCanBeListed) {
    forEachSeed([](std::uint32_t seed) {
        Spoilt model(seed, 1 + static_cast<int>(seed % 6));
        model.mend(u"recovered");
        ASSERT_THAT(errorsOf(model.store), IsEmpty());
        const bool canHaveChildren = recordAt(model.store, 0).u8At(0) != 1;
        if (!canHaveChildren) return;
        ASSERT_THAT(leftOut(model.store), IsEmpty());
    });
}

TEST_P(RandomTamper, MendingTwiceIsMendingOnce) {
    forEachSeed([](std::uint32_t seed) {
        Spoilt model(seed, 3);
        model.mend(u"recovered");
        const std::uint64_t stamp = model.store.changeStamp();
        ASSERT_THAT(wordsOf(model.mend(u"recovered")), IsEmpty());
        ASSERT_EQ(model.store.changeStamp(), stamp);
    });
}

INSTANTIATE_TEST_SUITE_P(EachRange, RandomTamper, ::testing::Range(0u, 10u));

}  // namespace
}  // namespace norvane::platform::test
