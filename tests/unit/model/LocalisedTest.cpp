// Localised strings: held by the object, stored when it closes.
#include <limits>

#include "support/CpuTime.h"
#include "unit/model/ModelFixture.h"

namespace norvane::platform::test {
namespace {

constexpr std::uint64_t kNothingToRemove = std::numeric_limits<std::uint64_t>::max();

RecordBytes localeRecord(const RecordBytes& payload) {
    return RecordBytes().u8(5).u32(payload.size()).raw(payload.bytes());
}

class LocalisedTest : public ModelTest {
  protected:
    std::u16string stored(const char16_t* locale) { return Container(&store_, group_).localised(locale); }
    Offset localeRecordOf(Offset entity) { return localeOf(store_, entity); }
    // Gives the group a record of display names with this payload.
    void putPayload(const RecordBytes& payload) {
        const Offset locale = appendTo(store_, localeRecord(payload));
        Record::storeField(&store_, group_, Record::field::locale, locale);
    }

    const Offset group_ = build_.container(root_, u"g");
};

TEST_F(LocalisedTest, EntityWithoutARecordHasNoStrings) {
    Container group(&store_, group_);

    EXPECT_EQ(group.localisedCount(), 0u);
    EXPECT_EQ(group.localised(u"de"), u"");
    EXPECT_EQ(group.localisedIndex(u"de"), -1);
}

TEST_F(LocalisedTest, StringIsNotSeenWhileThereIsNoRecord) {
    Container group(&store_, group_);

    EXPECT_EQ(group.setLocalised(u"Gruppe", u"de"), 0u);

    EXPECT_EQ(group.localisedIndex(u"de"), -1);
    EXPECT_EQ(group.localisedCount(), 0u);
    EXPECT_EQ(group.localised(u"de"), u"");
    EXPECT_EQ(group.localeAt(0), u"");
}

TEST_F(LocalisedTest, ClosingMakesTheRecordBehindTheCount) {
    {
        Container group(&store_, group_);
        group.setLocalised(u"Gruppe", u"de");
        group.setLocalised(u"", u"");
        forgetCalls();
    }

    const Offset locale = localeRecordOf(group_);
    const std::string own = std::to_string(group_);
    EXPECT_THAT(changes(),
                ElementsAre("count " + own, "append 5", "write " + std::to_string(locale) + " size 29",
                            "write " + own + " size 35"));
    EXPECT_EQ(record(locale), localeRecord(RecordBytes().text(u"de").text(u"Gruppe").text(u"").text(u"")));
    EXPECT_EQ(stored(u"de"), u"Gruppe");
}

TEST_F(LocalisedTest, StringsStandInTheOrderInWhichTheyWereAdded) {
    {
        Container group(&store_, group_);
        EXPECT_EQ(group.setLocalised(u"1", u"z"), 0u);
        EXPECT_EQ(group.setLocalised(u"2", u"a"), 1u);
        EXPECT_EQ(group.setLocalised(u"3", u"z"), 0u);
    }
    Container group(&store_, group_);

    EXPECT_EQ(group.localisedCount(), 2u);
    EXPECT_EQ(group.localeAt(0), u"z");
    EXPECT_EQ(group.textAt(0), u"3");
    EXPECT_EQ(group.localeAt(1), u"a");
    EXPECT_EQ(group.localisedIndex(u"a"), 1);
    EXPECT_EQ(group.localeAt(2), u"");
    EXPECT_EQ(group.textAt(2), u"");
}

TEST_F(LocalisedTest, SecondTextOfALocaleReplacesTheFirst) {
    build_.localise(group_, u"de", u"alt");
    Container group(&store_, group_);

    EXPECT_EQ(group.setLocalised(u"neu", u"de"), 0u);

    EXPECT_EQ(group.localised(u"de"), u"neu");
    EXPECT_EQ(group.localisedCount(), 1u);
}

TEST_F(LocalisedTest, ChangedStringsReplaceThePayloadOfTheirRecord) {
    build_.localise(group_, u"de", u"alt");
    const Offset locale = localeRecordOf(group_);
    {
        Container group(&store_, group_);
        group.setLocalised(u"a longer text", u"en");
        forgetCalls();
    }

    EXPECT_EQ(localeRecordOf(group_), locale);
    EXPECT_EQ(record(locale),
              localeRecord(RecordBytes().text(u"de").text(u"alt").text(u"en").text(u"a longer text")));
    EXPECT_THAT(changes(), ElementsAre("count " + std::to_string(group_),
                                       "write " + std::to_string(locale) + " size 53"));
}

TEST_F(LocalisedTest, SameTextAgainIsStoredAgain) {
    build_.localise(group_, u"de", u"Gruppe");
    {
        Container group(&store_, group_);
        group.setLocalised(u"Gruppe", u"de");
        forgetCalls();
    }

    EXPECT_EQ(changes().size(), 2u);
}

TEST_F(LocalisedTest, LookingWritesNothing) {
    build_.localise(group_, u"de", u"Gruppe");
    forgetCalls();
    {
        Container group(&store_, group_);
        group.localised(u"de");
        group.localisedIndex(u"en");
        group.localisedCount();
    }

    const std::string counted = "count " + std::to_string(group_);
    EXPECT_THAT(changes(), ElementsAre(counted, counted));
}

TEST_F(LocalisedTest, RemovedStringIsGoneAfterClosing) {
    build_.localise(group_, u"de", u"eins");
    build_.localise(group_, u"en", u"one");
    {
        Container group(&store_, group_);
        EXPECT_EQ(group.setLocalised(nullptr, u"de"), 0u);
        EXPECT_EQ(group.localised(u"de"), u"");
    }

    EXPECT_EQ(record(localeRecordOf(group_)), localeRecord(RecordBytes().text(u"en").text(u"one")));
}

TEST_F(LocalisedTest, RemovingTheLastStringNeverReachesTheStore) {
    build_.localise(group_, u"de", u"eins");
    const RecordBytes before = record(localeRecordOf(group_));
    {
        Container group(&store_, group_);
        group.setLocalised(nullptr, u"de");
        forgetCalls();
    }

    EXPECT_THAT(changes(), ElementsAre("count " + std::to_string(group_)));
    EXPECT_EQ(record(localeRecordOf(group_)), before);
    EXPECT_EQ(stored(u"de"), u"eins");
}

TEST_F(LocalisedTest, LastStringThatWasRemovedIsBackAtTheNextLook) {
    build_.localise(group_, u"de", u"eins");
    Container group(&store_, group_);
    group.setLocalised(nullptr, u"de");

    EXPECT_EQ(group.localised(u"de"), u"eins");
}

TEST_F(LocalisedTest, RemovingWhatIsNotThereIsNoChange) {
    build_.localise(group_, u"de", u"eins");
    {
        Container group(&store_, group_);
        EXPECT_EQ(group.setLocalised(nullptr, u"fr"), kNothingToRemove);
        forgetCalls();
    }

    EXPECT_THAT(changes(), ElementsAre("count " + std::to_string(group_)));
}

TEST_F(LocalisedTest, NumbersBehindARemovedStringStayAndLeadToTheRightTexts) {
    for (const char16_t* locale : {u"a", u"b", u"c"}) build_.localise(group_, locale, locale);
    Container group(&store_, group_);

    group.setLocalised(nullptr, u"a");

    EXPECT_EQ(group.localisedIndex(u"b"), 1);
    EXPECT_EQ(group.localisedIndex(u"c"), 2);
    EXPECT_EQ(group.localised(u"c"), u"c");
    EXPECT_EQ(group.localisedCount(), 2u);
    EXPECT_EQ(group.localeAt(0), u"b");
    EXPECT_EQ(group.setLocalised(u"new", u"c"), 2u);
    EXPECT_EQ(group.localised(u"c"), u"new");
    EXPECT_EQ(group.setLocalised(u"4", u"d"), 2u);
    EXPECT_EQ(group.localised(u"d"), u"4");
}

TEST_F(LocalisedTest, NullLocaleIsTheEmptyOne) {
    {
        Container group(&store_, group_);
        group.setLocalised(u"text", nullptr);
        group.setLocalised(u"other", u"");
    }

    EXPECT_EQ(stored(u""), u"other");
    EXPECT_EQ(Container(&store_, group_).localisedCount(), 1u);
}

TEST_F(LocalisedTest, RecordWithoutPayloadHasNoStrings) {
    for (const RecordBytes& payload : {RecordBytes(), RecordBytes().raw("x")}) {
        putPayload(payload);

        EXPECT_EQ(Container(&store_, group_).localisedCount(), 0u);
    }
}

TEST_F(LocalisedTest, LocaleWithoutATextIsDropped) {
    putPayload(RecordBytes().text(u"de").text(u"eins").text(u"en"));

    EXPECT_EQ(Container(&store_, group_).localisedCount(), 1u);
    putPayload(RecordBytes().text(u"de").text(u"eins").text(u"en").units(u"one"));
    EXPECT_EQ(Container(&store_, group_).localisedCount(), 1u);
}

TEST_F(LocalisedTest, FirstOfTwoStringsOfOneLocaleIsFoundAndBothAreKept) {
    putPayload(RecordBytes().text(u"de").text(u"eins").text(u"de").text(u"zwei").text(u"en").text(u"one"));
    {
        Container group(&store_, group_);
        EXPECT_EQ(group.localisedCount(), 3u);
        EXPECT_EQ(group.localised(u"de"), u"eins");
        EXPECT_EQ(group.textAt(1), u"zwei");
        EXPECT_EQ(group.localisedIndex(u"en"), 2);
        group.setLocalised(u"drei", u"de");
    }

    EXPECT_EQ(record(localeRecordOf(group_)),
              localeRecord(RecordBytes().text(u"de").text(u"drei").text(u"de").text(u"zwei").text(u"en").text(
                  u"one")));
}

TEST_F(LocalisedTest, ReservedLocaleIsHeldButNotFound) {
    const char16_t* const reserved = u"$$$$$_____empty_key";
    {
        Container group(&store_, group_);
        EXPECT_EQ(group.setLocalised(u"1", reserved), 0u);
        EXPECT_EQ(group.setLocalised(u"2", reserved), 1u);
        EXPECT_EQ(group.setLocalised(nullptr, reserved), kNothingToRemove);
    }
    Container group(&store_, group_);

    EXPECT_EQ(group.localisedCount(), 2u);
    EXPECT_EQ(group.localeAt(1), reserved);
    EXPECT_EQ(group.localised(reserved), u"");
}

TEST_F(LocalisedTest, LastOfTwoObjectsToCloseOverwritesTheOther) {
    build_.localise(group_, u"de", u"alt");
    {
        Container first(&store_, group_);
        Container second(&store_, group_);
        second.setLocalised(u"second", u"en");
        first.setLocalised(u"first", u"fr");
    }

    EXPECT_EQ(stored(u"en"), u"");
    EXPECT_EQ(stored(u"fr"), u"first");
    EXPECT_EQ(stored(u"de"), u"alt");
}

TEST_F(LocalisedTest, TwoObjectsThatFoundNoRecordMakeOneOnly) {
    const std::uint64_t before = store_.behind().recordCount();
    {
        Container first(&store_, group_);
        Container second(&store_, group_);
        second.setLocalised(u"second", u"en");
        first.setLocalised(u"first", u"fr");
    }

    EXPECT_EQ(store_.behind().recordCount(), before + 1);
    EXPECT_EQ(stored(u"en"), u"");
    EXPECT_EQ(stored(u"fr"), u"first");
}

TEST_F(LocalisedTest, ErasingForgetsStringsAndRecord) {
    build_.localise(group_, u"de", u"eins");
    const Offset locale = localeRecordOf(group_);
    {
        Container group(&store_, group_);
        group.setLocalised(u"one", u"en");
        group.eraseLocale();
        EXPECT_EQ(group.localisedCount(), 0u);
    }

    EXPECT_EQ(store_.recordSize(locale), 0u);
}

TEST_F(LocalisedTest, ErasingWithoutARecordKeepsUnsavedStrings) {
    {
        Container group(&store_, group_);
        group.setLocalised(u"one", u"en");
        group.eraseLocale();
    }

    EXPECT_EQ(stored(u"en"), u"one");
}

TEST_F(LocalisedTest, ErasingRemovesNothingButAStringRecord) {
    const Offset other = build_.container(root_, u"other");
    Record::storeField(&store_, group_, Record::field::locale, other);

    Container(&store_, group_).eraseLocale();

    EXPECT_NE(store_.recordSize(other), 0u);
}

TEST_F(LocalisedTest, StringsOfARecordThatIsNoneAreStoredInANewOne) {
    const Offset other = build_.container(root_, u"other");
    Record::storeField(&store_, group_, Record::field::locale, other);
    const RecordBytes before = record(other);

    build_.localise(group_, u"de", u"eins");

    EXPECT_EQ(record(other), before);
    EXPECT_EQ(stored(u"de"), u"eins");
}

TEST_F(LocalisedTest, StringsOfAnEntityThatIsGoneAreDropped) {
    {
        Container group(&store_, group_);
        group.setLocalised(u"one", u"en");
        store_.remove(group_);
        forgetCalls();
    }

    EXPECT_THAT(changes(), IsEmpty());
}

TEST_F(LocalisedTest, CopyHasARecordOfItsOwnWithTheSameBytes) {
    putPayload(RecordBytes().text(u"de").text(u"eins").text(u"half"));

    const Offset copy = Container(&store_, group_).clone(&store_);

    EXPECT_NE(localeRecordOf(copy), localeRecordOf(group_));
    EXPECT_EQ(record(localeRecordOf(copy)), record(localeRecordOf(group_)));
}

TEST_F(LocalisedTest, AnyEntityHasThem) {
    const Offset table = build_.table(root_, u"t");
    const Offset primitive = build_.primitive(root_, u"p");
    for (const Offset each : {table, primitive}) build_.localise(each, u"de", u"eins");
    { Root(&store_, root_).setLocalised(u"alles", u"de"); }

    EXPECT_EQ(Design::Table(&store_, table).localised(u"de"), u"eins");
    EXPECT_EQ(Design::Primitive(&store_, primitive).localised(u"de"), u"eins");
    EXPECT_EQ(Root(&store_, root_).localised(u"de"), u"alles");
}

// Five times the strings may take about five times the work, not 25 times.
TEST_F(LocalisedTest, StringsAreLoadedInLinearTime) {
    const auto secondsFor = [this](char16_t count) {
        RecordBytes payload;
        for (char16_t i = 1; i <= count; ++i) payload.units(u"a long locale ").text({&i, 1}).text(u"x");
        putPayload(payload);
        return shortestRun([&] { EXPECT_EQ(Container(&store_, group_).localisedCount(), count); });
    };

    const double few = secondsFor(12000);

    EXPECT_LT(secondsFor(60000), 12 * few + 0.05);
}

}  // namespace
}  // namespace norvane::platform::test
