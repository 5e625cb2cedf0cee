#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

#include "qvt/qvt.hpp"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
namespace type = qvt::data::metadata;

class HostProperty : public testing::Test {
  protected:
    ~HostProperty() noexcept override {}

    qvt::MemoryStore store;
    qvt::Container group = qvt::top(store, "group");
};

TEST_F(HostProperty, KeepsTheTypeOfWhatItWasMadeOf) {
    EXPECT_EQ(group.make("bool", true).type(), type::kBool);
    EXPECT_EQ(group.make("int8", std::int8_t{1}).type(), type::kInt8);
    EXPECT_EQ(group.make("uint16", std::uint16_t{1}).type(), type::kUint16);
    EXPECT_EQ(group.make("int", 1).type(), type::kInt32);
    EXPECT_EQ(group.make("longlong", 1LL).type(), type::kInt64);
    EXPECT_EQ(group.make("size", std::size_t{1}).type(), type::kUint64);
    EXPECT_EQ(group.make("float", 1.f).type(), type::kScalar);
    EXPECT_EQ(group.make("double", 1.).type(), type::kDouble);
    EXPECT_EQ(group.make("vec2", qvt::vec<2>{1, 2}).type(), type::kVector2);
    EXPECT_EQ(group.make("mat4", qvt::mat<4>{}).type(), type::kMatrix4x4);
    EXPECT_EQ(group.make("text", "word").type(), type::kString);
    EXPECT_EQ(group.make("bytes", std::vector<std::byte>(3)).type(), type::kBinary);
}

TEST_F(HostProperty, GivesBackWhatItWasMadeOf) {
    EXPECT_EQ(group.make("double", 7.5).value<double>(), 7.5);
    EXPECT_EQ(group.make("text", "na\xC3\xAFve").value<std::string>(), "na\xC3\xAFve");
    EXPECT_EQ(group.make("bool", true).value<bool>(), true);
    EXPECT_EQ(group.make("vec", qvt::vec<3>{1, 2, 3}).value<qvt::vec<3>>(), (qvt::vec<3>{1, 2, 3}));
    EXPECT_THAT(group.make("ints", std::vector{4, 5, 6}).values<int>(), ElementsAre(4, 5, 6));
    EXPECT_THAT(group.make("array", std::array{1.5, 2.5}).values<double>(), ElementsAre(1.5, 2.5));
    EXPECT_THAT(group.make("bools", std::vector<bool>{true, false}).values<bool>(), ElementsAre(true, false));
    EXPECT_THAT(group.make("texts", std::vector<std::string>{"a", "", "b"}).values<std::string>(),
                ElementsAre("a", "", "b"));
    EXPECT_THAT(group.make("bytes", std::vector{std::byte{7}}).values<std::byte>(),
                ElementsAre(std::byte{7}));
}

TEST_F(HostProperty, GivesTheVectorItselfAndNotAnOptionalOne) {
    static_assert(std::is_same_v<decltype(group["x"].values<double>()), std::vector<double>>);
    double sum = 0;
    group.make("x", std::vector{1., 2.});
    for (const double x : group["x"].values<double>()) sum += x;
    EXPECT_EQ(sum, 3);
}

TEST_F(HostProperty, NumbersConvertWhenNothingIsLost) {
    EXPECT_EQ(group.make("int", 7).value<double>(), 7.);
    EXPECT_EQ(group.make("double", 7.).value<int>(), 7);
    EXPECT_EQ(group.make("float", 0.5f).value<double>(), 0.5);
    EXPECT_EQ(group.make("half", 7.5).value<int>(), std::nullopt);
    EXPECT_EQ(group.make("large", 300).value<std::uint8_t>(), std::nullopt);
    EXPECT_EQ(group.make("negative", -1).value<unsigned>(), std::nullopt);
    EXPECT_EQ(group.make("fine", (std::int64_t{1} << 53) + 1).value<double>(), std::nullopt);
    EXPECT_EQ(group.make("wide", 1e300).value<float>(), std::nullopt);
    EXPECT_EQ(group.make("nan", std::numeric_limits<double>::quiet_NaN()).value<int>(), std::nullopt);
    EXPECT_EQ(group.make("edge", 9223372036854775808.).value<std::int64_t>(), std::nullopt);
}

TEST_F(HostProperty, OtherTypesAreToldBySayingNothing) {
    const qvt::Property number = group.make("number", 7.5);
    const qvt::Property text = group.make("text", "7.5");
    EXPECT_EQ(number.value<std::string>(), std::nullopt);
    EXPECT_EQ(number.value<bool>(), std::nullopt);
    EXPECT_EQ(text.value<double>(), std::nullopt);
    EXPECT_THAT(text.values<double>(), IsEmpty());
}

TEST_F(HostProperty, AssignRefusesWhatTheTypeDoesNotTake) {
    const qvt::Property number = group.make("number", 7);
    EXPECT_FALSE(number.assign(7.5));
    EXPECT_FALSE(number.assign("7"));
    EXPECT_FALSE(number.assign(true));
    EXPECT_FALSE(number.assign(std::int64_t{1} << 40));
    EXPECT_FALSE(group.make("flag", true).assign(2));
    EXPECT_EQ(number.value<int>(), 7);
}

TEST_F(HostProperty, AssignConvertsAndReplacesAllThereIs) {
    const qvt::Property property = group.make("x", std::vector{1., 2., 3.});
    EXPECT_TRUE(property.assign({4, 5}));
    EXPECT_THAT(property.values<double>(), ElementsAre(4, 5));
    EXPECT_TRUE(property.assign(std::vector<double>{}));
    EXPECT_THAT(property.values<double>(), IsEmpty());
    EXPECT_TRUE(property.assign(6));
    EXPECT_THAT(property.values<double>(), ElementsAre(6));
}

TEST_F(HostProperty, ShorterTextLeavesNoTail) {
    const qvt::Property text = group.make("text", std::vector<std::string>{"ab", "c"});
    EXPECT_TRUE(text.assign("x"));
    EXPECT_THAT(text.values<std::string>(), ElementsAre("x"));
}

TEST_F(HostProperty, AssignIsNotMisledByAnotherHandle) {
    group.make("x", std::vector{1., 2.});
    const qvt::Property old = group["x"];
    group["x"].assign({1, 2, 3, 4});
    EXPECT_TRUE(old.assign({8, 9}));
    EXPECT_THAT(group["x"].values<double>(), ElementsAre(8, 9));
}

TEST_F(HostProperty, VectorsTakeWholeVectorsOnly) {
    const qvt::Property vector = group.make("v", qvt::vec<3>{1, 2, 3});
    EXPECT_FALSE(vector.assign({1., 2.}));
    EXPECT_TRUE(vector.assign({1, 2, 3, 4, 5, 6}));
    EXPECT_THAT(vector.values<qvt::vec<3>>(), ElementsAre(qvt::vec<3>{1, 2, 3}, qvt::vec<3>{4, 5, 6}));
    EXPECT_THAT(vector.values<double>(), ElementsAre(1, 2, 3, 4, 5, 6));
    EXPECT_EQ(vector.value<double>(), std::nullopt);
    EXPECT_EQ(vector.value<qvt::vec<2>>(), std::nullopt);
}

TEST_F(HostProperty, AssignBringsTheValueBackFromElsewhere) {
    const qvt::Property property = group.make("x", 1.5);
    EXPECT_TRUE(property.setUri("mesh.bin"));
    EXPECT_EQ(property.uri(), "mesh.bin");
    EXPECT_EQ(property.value<double>(), std::nullopt);
    EXPECT_TRUE(property.assign(2.5));
    EXPECT_EQ(property.uri(), "");
    EXPECT_EQ(property.value<double>(), 2.5);
}

TEST(HostPropertyLimits, WhatDoesNotFitLeavesAllAsItWas) {
    qvt::MemoryStore::Options options;
    options.recordLimit = 200;
    qvt::MemoryStore store(options);
    const qvt::Property number = qvt::top(store, "group").make("x", 1.5);
    const qvt::Property elsewhere = qvt::top(store, "group").make("y", 1.5);
    elsewhere.setUri("mesh.bin");
    EXPECT_FALSE(number.assign(std::vector<double>(100)));
    EXPECT_EQ(number.value<double>(), 1.5);
    EXPECT_FALSE(elsewhere.assign(std::vector<double>(100)));
    EXPECT_EQ(elsewhere.uri(), "mesh.bin");
}

TEST_F(HostProperty, HasItsUnitInContainersAndInTables) {
    EXPECT_EQ(group.make("power", 7.5, "Kilowatt").unit().name(), "Kilowatt");
    EXPECT_EQ(group["power"].value<double>(), 7.5);
    EXPECT_EQ(group.makeTable("sizes").make("width", 2, "Meter").unit(), qvt::Unit("Meter"));
    EXPECT_EQ(group.make("count", 7).unit(), qvt::Unit());
}

TEST_F(HostProperty, NameThatIsTakenMakesNothing) {
    group.make("x", 1);
    EXPECT_FALSE(group.make("x", 2));
    EXPECT_FALSE(group.make("x", 2, "Meter"));
    EXPECT_FALSE(group.make("a.b", 2, "Meter"));
    EXPECT_EQ(group["x"].value<int>(), 1);
}

TEST_F(HostProperty, EmptyHandleRefusesEverything) {
    const qvt::Property none = group.find("no").find("such")["property"];
    EXPECT_FALSE(none);
    EXPECT_EQ(none.name(), "");
    EXPECT_EQ(none.value<double>(), std::nullopt);
    EXPECT_FALSE(none.assign(1));
    EXPECT_FALSE(none.assign("text"));
    EXPECT_FALSE(none.rename("x"));
    EXPECT_FALSE(none.table().find("x"));
    EXPECT_FALSE(none.isFixed());
    EXPECT_EQ(none.unit(), qvt::Unit());
    none.setDisplayName("en", "x");
}

}  // namespace
