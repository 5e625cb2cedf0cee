// Display names, of containers and of properties alike.
#include "contract/Model.h"

namespace norvane::platform::test {
namespace {

// What both interfaces offer.
template <class Handle>
void setTwo(Handle& handle) {
    handle.setLocalised(u"en", u"wall");
    handle.setLocalised(u"de", u"Wand");
}

struct OfContainers {
    using Handle = IContainer;
    static SharedPtr<IContainer> make(IContainer& top) { return top.makeContainer(kGroup, u"x", nullptr); }
    static SharedPtr<IContainer> open(IContainer& top) { return top.find(u"x"); }
};

struct OfPrimitives {
    using Handle = IProperty;
    static SharedPtr<IProperty> make(IContainer& top) {
        top.makePrimitive(u"x", kDouble);
        return open(top);
    }
    static SharedPtr<IProperty> open(IContainer& top) { return top.findProperty(u"x"); }
};

struct OfTables {
    using Handle = IProperty;
    static SharedPtr<IProperty> make(IContainer& top) {
        top.makeTable(u"x", nullptr);
        return open(top);
    }
    static SharedPtr<IProperty> open(IContainer& top) { return top.findProperty(u"x"); }
};

template <class Kind>
class LocalisedTest : public ModelTest {
  protected:
    ~LocalisedTest() noexcept override = default;

    using Handle = typename Kind::Handle;

    SharedPtr<Handle> open() { return Kind::open(*top); }
    void reopen() {
        handle.reset();
        handle = open();
    }
    Offset localeRecord() { return record(store, u"top/x").locale(); }

    SharedPtr<Handle> handle = Kind::make(*top);
};

using Kinds = ::testing::Types<OfContainers, OfPrimitives, OfTables>;
TYPED_TEST_SUITE(LocalisedTest, Kinds);

TYPED_TEST(LocalisedTest, NothingIsToldWithoutALocaleRecord) {
    EXPECT_EQ(this->handle->localisedCount(), 0u);
    EXPECT_TRUE(this->handle->localeAt(0).isEmpty());
    EXPECT_TRUE(this->handle->localised(u"en").isEmpty());
}

TYPED_TEST(LocalisedTest, WhatIsSetFirstIsOutOfSightUntilTheHandleIsReopened) {
    this->handle->setLocalised(u"en", u"wall");

    EXPECT_EQ(this->handle->localisedCount(), 0u);
    EXPECT_TRUE(this->handle->localised(u"en").isEmpty());
    EXPECT_EQ(this->localeRecord(), noRecord());

    this->reopen();
    EXPECT_EQ(this->handle->localisedCount(), 1u);
    EXPECT_EQ(this->handle->localised(u"en"), u"wall");
}

TYPED_TEST(LocalisedTest, LocaleComesFirstTextSecond) {
    this->handle->setLocalised(u"en", u"wall");
    this->reopen();

    EXPECT_EQ(this->handle->localeAt(0), u"en");
}

TYPED_TEST(LocalisedTest, LocaleRecordHoldsPairsInTheOrderTheyWereSet) {
    setTwo(*this->handle);
    this->handle.reset();

    const RawRecord stored(this->store, this->localeRecord());
    EXPECT_EQ(stored.bytes(),
              (std::vector<unsigned char>{5,   32,  0,   0,   0,   'e', 0, 'n', 0,   0, 0,   'w', 0,
                                          'a', 0,   'l', 0,   'l', 0,   0, 0,   'd', 0, 'e', 0,   0,
                                          0,   'W', 0,   'a', 0,   'n', 0, 'd', 0,   0, 0}));
}

TYPED_TEST(LocalisedTest, SameLocaleReplacesTheText) {
    setTwo(*this->handle);
    this->handle->setLocalised(u"en", u"door");
    this->reopen();

    EXPECT_EQ(this->handle->localisedCount(), 2u);
    EXPECT_EQ(this->handle->localised(u"en"), u"door");
    EXPECT_EQ(this->handle->localeAt(0), u"en");
}

TYPED_TEST(LocalisedTest, ChangesOfALoadedHandleAreSeenAtOnce) {
    setTwo(*this->handle);
    this->reopen();

    this->handle->setLocalised(u"fr", u"mur");

    EXPECT_EQ(this->handle->localisedCount(), 3u);
    EXPECT_EQ(this->handle->localised(u"fr"), u"mur");
}

TYPED_TEST(LocalisedTest, TextThatWasNeverGivenRemovesTheEntry) {
    setTwo(*this->handle);
    this->reopen();

    this->handle->setLocalised(u"en", WideString());

    EXPECT_EQ(this->handle->localisedCount(), 1u);
    EXPECT_EQ(this->handle->localeAt(0), u"de");
    this->reopen();
    EXPECT_EQ(this->handle->localisedCount(), 1u);
    EXPECT_TRUE(this->handle->localised(u"en").isEmpty());
}

TYPED_TEST(LocalisedTest, EntriesBehindARemovedOneKeepTheirTexts) {
    setTwo(*this->handle);
    this->handle->setLocalised(u"fr", u"mur");
    this->reopen();

    this->handle->setLocalised(u"en", WideString());

    EXPECT_EQ(this->handle->localised(u"de"), u"Wand");
    EXPECT_EQ(this->handle->localised(u"fr"), u"mur");
    this->handle->setLocalised(u"fr", u"paroi");
    this->reopen();
    EXPECT_EQ(this->handle->localised(u"fr"), u"paroi");
    EXPECT_EQ(this->handle->localised(u"de"), u"Wand");
}

TYPED_TEST(LocalisedTest, EmptyTextIsATextAndRemovesNothing) {
    this->handle->setLocalised(u"en", u"");
    this->reopen();

    EXPECT_EQ(this->handle->localisedCount(), 1u);
    EXPECT_EQ(this->handle->localeAt(0), u"en");
}

TYPED_TEST(LocalisedTest, EmptyTextsAreToldFromNone) {
    this->handle->setLocalised(u"", u"");
    this->reopen();

    EXPECT_NE(this->handle->localeAt(0).value(), nullptr);
    EXPECT_NE(this->handle->localised(u"").value(), nullptr);
    EXPECT_EQ(this->handle->localeAt(1).value(), nullptr);
    EXPECT_EQ(this->handle->localised(u"en").value(), nullptr);
}

TYPED_TEST(LocalisedTest, RemovingTheLastOneNeverReachesTheStore) {
    this->handle->setLocalised(u"en", u"wall");
    this->reopen();

    this->handle->setLocalised(u"en", WideString());
    this->reopen();

    EXPECT_EQ(this->handle->localised(u"en"), u"wall");
}

TYPED_TEST(LocalisedTest, RemovingAnUnknownLocaleChangesNothing) {
    this->handle->setLocalised(u"en", WideString());
    this->handle.reset();

    EXPECT_EQ(this->localeRecord(), noRecord());
}

TYPED_TEST(LocalisedTest, LocaleThatWasNeverGivenIsTheEmptyOne) {
    this->handle->setLocalised(WideString(), u"wall");
    this->reopen();

    EXPECT_EQ(this->handle->localisedCount(), 1u);
    EXPECT_EQ(this->handle->localised(u""), u"wall");
    EXPECT_EQ(this->handle->localised(WideString()), u"wall");
}

TYPED_TEST(LocalisedTest, LocaleAtPastTheEndIsEmpty) {
    setTwo(*this->handle);
    this->reopen();

    EXPECT_TRUE(this->handle->localeAt(2).isEmpty());
    EXPECT_TRUE(this->handle->localeAt(0xFFFFFFFFu).isEmpty());
}

TYPED_TEST(LocalisedTest, LastHandleToGoOverwritesTheOther) {
    this->handle->setLocalised(u"en", u"wall");
    this->reopen();
    auto other = this->open();
    this->handle->setLocalised(u"en", u"first");
    other->setLocalised(u"en", u"second");

    other.reset();
    this->reopen();

    EXPECT_EQ(this->handle->localised(u"en"), u"first");
}

TYPED_TEST(LocalisedTest, TwoHandlesWithoutARecordLeaveOneRecord) {
    auto other = this->open();
    this->handle->setLocalised(u"en", u"wall");
    other->setLocalised(u"de", u"Wand");
    const std::uint64_t before = this->store.recordCount();

    this->handle.reset();
    other.reset();

    EXPECT_EQ(this->store.recordCount(), before + 1);
    EXPECT_EQ(RawRecord(this->store, this->localeRecord()).textAt(5, 6), u"de");
}

TYPED_TEST(LocalisedTest, RemovalOfTheEntityTakesTheTextsAlong) {
    const std::uint64_t before = this->store.recordCount();
    setTwo(*this->handle);
    this->handle.reset();

    EXPECT_TRUE(this->top->remove(u"x"));

    EXPECT_EQ(this->store.recordCount(), before - 1);
}

}  // namespace
}  // namespace norvane::platform::test
