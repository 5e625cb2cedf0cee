#include <gtest/gtest.h>

#include <type_traits>
#include <utility>

#include "norvane/platform/core/string/WideString.h"
#include "support/WideText.h"

namespace norvane::platform::core::string {
namespace {

// Some other kind of string.
class FixedString : public IString {
  public:
    explicit FixedString(const tWChar* text) { text_ = text; }
    void set(const IString&) override {}
    std::size_t bytes() const override { return length() * sizeof(tWChar); }
    std::size_t length() const override { return text_ ? 3 : 0; }
    bool isEmpty() const override { return length() == 0; }
    void detach() override {}
};

TEST(WideStringTest, NeverGivenTextIsNull) {
    const WideString text;

    EXPECT_EQ(text.value(), nullptr);
    EXPECT_EQ(text.string(), nullptr);
    EXPECT_EQ(static_cast<const tWChar*>(text), nullptr);
    EXPECT_EQ(text.length(), 0u);
    EXPECT_EQ(text.bytes(), 0u);
    EXPECT_TRUE(text.isEmpty());
}

TEST(WideStringTest, MadeFromNullIsNull) {
    EXPECT_EQ(WideString(static_cast<const tWChar*>(nullptr)).value(), nullptr);
    EXPECT_EQ(WideString(nullptr, 5).value(), nullptr);
}

TEST(WideStringTest, MadeFromTheEmptyTextIsNotNull) {
    const WideString text(u"");

    ASSERT_NE(text.value(), nullptr);
    EXPECT_EQ(*text.value(), u'\0');
    EXPECT_EQ(text.length(), 0u);
    EXPECT_TRUE(text.isEmpty());
}

TEST(WideStringTest, CopiesTheTextItIsMadeFrom) {
    tWChar source[] = u"name";

    const WideString text(source);
    source[0] = u'X';

    EXPECT_EQ(text, u"name");
    EXPECT_EQ(text.length(), 4u);
    EXPECT_EQ(text.bytes(), 8u);
    EXPECT_EQ(text.value()[4], u'\0');
    EXPECT_FALSE(text.isEmpty());
}

TEST(WideStringTest, TextOfGivenLengthEndsThereAndMayHoldNul) {
    const WideString cut(u"name", 2);
    const WideString holed(u"a\0b", 3);

    EXPECT_EQ(cut, u"na");
    EXPECT_EQ(holed.length(), 3u);
    EXPECT_EQ(holed.view(), std::u16string_view(u"a\0b", 3));
}

TEST(WideStringTest, IsMadeImplicitlyFromText) {
    EXPECT_TRUE((std::is_convertible_v<const tWChar*, WideString>));
    const WideString text = u"name";
    EXPECT_EQ(text, u"name");
}

TEST(WideStringTest, CopiesShareOneTextUntilDetached) {
    const WideString first(u"name");
    WideString second(first);
    EXPECT_EQ(second.value(), first.value());

    second.detach();

    EXPECT_NE(second.value(), first.value());
    EXPECT_EQ(second, first);
}

TEST(WideStringTest, DetachAloneMovesNothing) {
    WideString text(u"name");
    const tWChar* before = text.value();
    WideString null;

    text.detach();
    null.detach();

    EXPECT_EQ(text.value(), before);
    EXPECT_EQ(null.value(), nullptr);
}

TEST(WideStringTest, CopyOutlivesItsSource) {
    WideString copy;
    {
        const WideString source(u"name");
        copy = source;
    }
    EXPECT_EQ(copy, u"name");
}

TEST(WideStringTest, AssignmentKeepsNullAndEmptyApart) {
    WideString text(u"name");
    text = WideString();
    EXPECT_EQ(text.value(), nullptr);

    text = WideString(u"");
    EXPECT_NE(text.value(), nullptr);
}

TEST(WideStringTest, AssignmentToItselfKeepsTheText) {
    WideString text(u"name");
    const WideString& same = text;

    text = same;

    EXPECT_EQ(text, u"name");
}

TEST(WideStringTest, MoveLeavesNull) {
    WideString from(u"name");

    const WideString to(std::move(from));

    EXPECT_EQ(to, u"name");
    EXPECT_EQ(from.value(), nullptr);  // NOLINT(bugprone-use-after-move)
}

TEST(WideStringTest, SetTakesOverAnyKindOfString) {
    WideString text;

    text.set(WideString(u"name"));
    EXPECT_EQ(text, u"name");
    text.set(FixedString(u"abc"));
    EXPECT_EQ(text, u"abc");
    text.set(FixedString(nullptr));
    EXPECT_EQ(text.value(), nullptr);
}

TEST(WideStringTest, SubstrGivesThePartFromStart) {
    const WideString text(u"abcdef");

    EXPECT_EQ(text.substr(2, 3), u"cde");
    EXPECT_EQ(text.substr(2, -1), u"cdef");
    EXPECT_EQ(text.substr(0, -1), u"abcdef");
    EXPECT_EQ(text.substr(4, 100), u"ef");
    EXPECT_EQ(text.substr(4, -7), u"ef");
    EXPECT_EQ(text.substr(1, 0), u"");
}

TEST(WideStringTest, SubstrOfNothingIsEmptyAndNotNull) {
    EXPECT_NE(WideString(u"abc").substr(3, -1).value(), nullptr);
    EXPECT_EQ(WideString(u"abc").substr(4, 1), u"");
    EXPECT_EQ(WideString(u"abc").substr(static_cast<std::size_t>(-1), 1), u"");
    EXPECT_NE(WideString().substr(0, -1).value(), nullptr);
}

TEST(WideStringTest, RfindGivesTheLastOccurrence) {
    const WideString path(u"a.b.c");

    EXPECT_EQ(path.rfind(u'.'), 3);
    EXPECT_EQ(path.rfind(u'a'), 0);
    EXPECT_EQ(path.rfind(u'x'), -1);
    EXPECT_EQ(WideString().rfind(u'.'), -1);
    EXPECT_EQ(WideString(u"").rfind(u'.'), -1);
}

TEST(WideStringTest, EqualityComparesTextAndKnowsNullFromEmpty) {
    const WideString text(u"abc");

    EXPECT_TRUE(text == WideString(u"abc"));
    EXPECT_TRUE(u"abc" == text);
    EXPECT_TRUE(text != u"abd");
    EXPECT_TRUE(text != u"abcd");
    EXPECT_TRUE(WideString() == nullptr);
    EXPECT_TRUE(WideString() == WideString());
    EXPECT_FALSE(WideString() == u"");
    EXPECT_FALSE(WideString() == WideString(u""));
    EXPECT_FALSE(WideString(u"") == nullptr);
}

}  // namespace
}  // namespace norvane::platform::core::string
