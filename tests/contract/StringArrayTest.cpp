#include "contract/Model.h"

namespace norvane::platform::test {
namespace {

// Owns what the caller of `to` has to delete.
struct Array {
    explicit Array(std::u16string_view units)
        : strings(IStringArray::to(units.data(), static_cast<unsigned>(units.size()))) {}
    ~Array() { delete strings; }
    Array(const Array&) = delete;
    Array& operator=(const Array&) = delete;

    IStringArray* operator->() const { return strings; }
    std::vector<WideString> all() const {
        std::vector<WideString> all;
        for (std::uint32_t i = 0; i < strings->count(); ++i) all.push_back(strings->at(i));
        return all;
    }

    IStringArray* strings;
};

using Strings = std::vector<WideString>;
using namespace std::string_view_literals;

class StringArrayTest : public ModelTest {
  protected:
    ~StringArrayTest() noexcept override = default;

    std::u16string unitsOf(IPrimitive& primitive) {
        const auto units = valuesOf<char16_t>(primitive);
        return {units.begin(), units.end()};
    }

    SharedPtr<IPrimitive> text = top->makePrimitive(u"s", kString);
};

TEST_F(StringArrayTest, NothingGivesAnEmptyArray) {
    IStringArray* array = IStringArray::to(nullptr, 0);

    EXPECT_EQ(array->count(), 0u);
    delete array;
}

TEST_F(StringArrayTest, NoTextGivesAnEmptyArrayWhateverTheCount) {
    IStringArray* array = IStringArray::to(nullptr, 5);

    EXPECT_EQ(array->count(), 0u);
    delete array;
}

TEST_F(StringArrayTest, CutsAtEachNul) { EXPECT_EQ(Array(u"ab\0c\0"sv).all(), (Strings{u"ab", u"c"})); }

TEST_F(StringArrayTest, KeepsEmptyStrings) { EXPECT_EQ(Array(u"\0\0"sv).all(), (Strings{u"", u""})); }

TEST_F(StringArrayTest, DropsWhatStandsBehindTheLastNul) {
    EXPECT_EQ(Array(u"a\0b"sv).all(), Strings{u"a"});
    EXPECT_EQ(Array(u"ab"sv).all(), Strings{});
}

TEST_F(StringArrayTest, AtPastTheEndHasNoText) {
    const Array array(u"a\0"sv);

    EXPECT_EQ(array->at(1).value(), nullptr);
    EXPECT_EQ(array->at(0xFFFFFFFFu).value(), nullptr);
}

TEST_F(StringArrayTest, AppendsAlsoItsOwnElements) {
    const Array array(u"a\0"sv);

    for (int i = 0; i < 40; ++i) array->append(array->at(0));

    EXPECT_EQ(array.all(), Strings(41, u"a"));
}

TEST_F(StringArrayTest, StoresStringsWithTheirNuls) {
    EXPECT_TRUE(Array(u"ab\0c\0"sv)->storeTo(text.get()));

    EXPECT_EQ(text->count(), 5u);
    EXPECT_EQ(text->valueBytes(), 10u);
    EXPECT_EQ(unitsOf(*text), u"ab\0c\0"sv);
}

TEST_F(StringArrayTest, AppendedTextWithoutTextIsStoredAsAnEmptyString) {
    const Array array(u""sv);
    array->append(WideString());
    array->append(u"x");

    EXPECT_TRUE(array->storeTo(text.get()));

    EXPECT_EQ(unitsOf(*text), u"\0x\0"sv);
}

TEST_F(StringArrayTest, ShorterStringsLeaveTheOldTail) {
    Array(u"ab\0c\0"sv)->storeTo(text.get());

    EXPECT_TRUE(Array(u"x\0"sv)->storeTo(text.get()));

    EXPECT_EQ(unitsOf(*text), u"x\0\0c\0"sv);
    EXPECT_EQ(Array(unitsOf(*text)).all(), (Strings{u"x", u"", u"c"}));
}

TEST_F(StringArrayTest, EmptyArrayEmptiesThePrimitive) {
    Array(u"ab\0"sv)->storeTo(text.get());

    EXPECT_TRUE(Array(u""sv)->storeTo(text.get()));

    EXPECT_EQ(text->valueBytes(), 0u);
}

TEST_F(StringArrayTest, StoresIntoEveryTextTypeAndNoOther) {
    for (std::uint32_t type = 0; type < 27; ++type) {
        const auto p = top->makePrimitive(std::u16string(1, char16_t(u'A' + type)).c_str(), type);
        EXPECT_EQ(Array(u"ab\0"sv)->storeTo(p.get()), type >= 2 && type <= 6) << type;
        EXPECT_EQ(p->valueBytes(), type >= 2 && type <= 6 ? 6u : 0u) << type;
    }
}

TEST_F(StringArrayTest, OtherTypesKeepTheirValue) {
    const auto number = top->makePrimitive(u"n", kInt32);
    write<std::int32_t>(*number, {5});

    EXPECT_FALSE(Array(u"ab\0"sv)->storeTo(number.get()));
    EXPECT_FALSE(Array(u""sv)->storeTo(number.get()));

    EXPECT_EQ(valuesOf<std::int32_t>(*number), std::vector<std::int32_t>{5});
}

TEST_F(StringArrayTest, UriIsKeptAndYetTheAnswerIsTrue) {
    text->setUri(u"file:x");

    EXPECT_TRUE(Array(u"ab\0"sv)->storeTo(text.get()));
    EXPECT_TRUE(Array(u""sv)->storeTo(text.get()));

    EXPECT_EQ(text->uri(), u"file:x");
}

TEST_F(StringArrayTest, NoPrimitiveNothingStored) { EXPECT_FALSE(Array(u"ab\0"sv)->storeTo(nullptr)); }

}  // namespace
}  // namespace norvane::platform::test
