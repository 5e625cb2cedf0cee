#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "qvt/qvt.hpp"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct Point {
    double x = 0;
    double y = 0;
    friend bool operator==(const Point&, const Point&) = default;
};

struct Part {
    std::int32_t count = 0;
    bool loose = false;
    std::array<float, 3> color{};
    qvt::vec<3> place{};
};

class HostClasses : public testing::Test {
  protected:
    HostClasses() {
        const auto read = qvt::importText(library, R"(<root name="library"><table name="Types">
            <table name="Point"><double name="x">0</double><double name="y">0</double></table>
            <table name="Part"><int32 name="count">0</int32><bool name="loose">0</bool>
              <scalar name="color">0 0 0</scalar><vector3 name="place">0 0 0</vector3></table>
            <table name="Pump"><double name="power" units="Kilowatt">1.5</double></table>
            </table></root>)");
        EXPECT_TRUE(read);
    }
    ~HostClasses() noexcept override {}

    qvt::MemoryStore library;
    qvt::Classes classes{library};
    qvt::MemoryStore store;
    qvt::Container group = qvt::top(store, "group");
};

TEST_F(HostClasses, NodeOfAClassHasItsMembers) {
    const qvt::Container pump = group.makeNode("pump", classes.find("Types.Pump"));
    EXPECT_EQ(pump.className(), "Types.Pump");
    EXPECT_EQ(pump["power"].value<double>(), 1.5);
    EXPECT_EQ(pump["power"].unit().name(), "Kilowatt");
    EXPECT_TRUE(pump["power"].isInherited());
    EXPECT_TRUE(pump["power"].isFixed());
    EXPECT_FALSE(pump.remove("power"));
    EXPECT_TRUE(pump.conforms(classes.find("Types.Pump")));
}

TEST_F(HostClasses, EveryAssignmentCountsAsAChange) {
    const qvt::Container pump = group.makeNode("pump", classes.find("Types.Pump"));
    EXPECT_TRUE(pump["power"].assign(std::vector<double>{}));
    EXPECT_FALSE(pump["power"].isInherited()) << "also when there is nothing left";
    EXPECT_THAT(pump["power"].values<double>(), IsEmpty());
    const qvt::Container other = group.makeNode("other", classes.find("Types.Pump"));
    EXPECT_TRUE(other["power"].assign(2));
    EXPECT_FALSE(other["power"].isInherited());
}

TEST_F(HostClasses, ClassThatThereIsNotMakesNothing) {
    const qvt::Class none = classes.find("Types.Pipe");
    EXPECT_FALSE(none);
    EXPECT_EQ(none.name(), "");
    EXPECT_FALSE(group.makeNode("pipe", none));
    EXPECT_FALSE(group.makeTable("pipe", none));
    EXPECT_FALSE(group.makeStruct("pipe", none));
    EXPECT_FALSE(group.contains("pipe"));
}

TEST_F(HostClasses, ClassKeepsItsFinderAlive) {
    qvt::Class found;
    {
        const qvt::Classes finder(library);
        found = finder.find("Types.Pump");
    }
    EXPECT_EQ(group.makeNode("pump", found).className(), "Types.Pump");
}

TEST_F(HostClasses, StructsAreReadAndWrittenAsMembers) {
    const qvt::Class type = classes.find("Types.Point");
    const qvt::StructMap<Point> points(type, {qvt::field("x", &Point::x), qvt::field("y", &Point::y)});
    ASSERT_TRUE(points) << points.error();
    const qvt::Property corners = group.makeStruct("corners", type);
    EXPECT_TRUE(points.write(corners, std::vector<Point>{{0, 1}, {4, 2}}));
    EXPECT_EQ(corners.count(), 32u);
    EXPECT_THAT(points.read(group["corners"]), ElementsAre(Point{0, 1}, Point{4, 2}));
    const double literal[] = {0, 1, 4, 2};
    EXPECT_EQ(corners.bytes().size(), sizeof literal);
    EXPECT_EQ(std::memcmp(corners.bytes().data(), literal, sizeof literal), 0);
}

TEST_F(HostClasses, StructsOfEveryKindOfMember) {
    const qvt::Class type = classes.find("Types.Part");
    const qvt::StructMap<Part> parts(type,
                                     {qvt::field("count", &Part::count), qvt::field("loose", &Part::loose),
                                      qvt::field("color", &Part::color), qvt::field("place", &Part::place)});
    ASSERT_TRUE(parts) << parts.error();
    const qvt::Property property = group.makeStruct("part", type);
    EXPECT_TRUE(parts.write(property, Part{7, true, {1, 2, 3}, {4, 5, 6}}));
    EXPECT_EQ(property.count(), 41u);
    const auto read = parts.read(property);
    ASSERT_EQ(read.size(), 1u);
    EXPECT_EQ(read[0].count, 7);
    EXPECT_TRUE(read[0].loose);
    EXPECT_THAT(read[0].color, ElementsAre(1, 2, 3));
    EXPECT_EQ(read[0].place, (qvt::vec<3>{4, 5, 6}));
}

TEST_F(HostClasses, FieldsWithoutAMemberStayAsTheyAre) {
    const qvt::Class type = classes.find("Types.Point");
    const qvt::StructMap<Point> whole(type, {qvt::field("x", &Point::x), qvt::field("y", &Point::y)});
    const qvt::StructMap<Point> half(type, {qvt::field("y", &Point::y)});
    const qvt::Property corners = group.makeStruct("corners", type);
    whole.write(corners, Point{1, 2});
    EXPECT_TRUE(half.write(corners, std::vector<Point>{{8, 9}, {8, 9}}));
    EXPECT_THAT(whole.read(corners), ElementsAre(Point{1, 9}, Point{0, 9}));
}

TEST_F(HostClasses, MapThatDoesNotFitSaysWhyAndDoesNothing) {
    struct Wrong {
        float x = 0;
    };
    const qvt::Class type = classes.find("Types.Point");
    const qvt::StructMap<Wrong> narrow(type, {qvt::field("x", &Wrong::x)});
    const qvt::StructMap<Point> named(type, {qvt::field("z", &Point::x)});
    const qvt::StructMap<Point> none(classes.find("Types.Pipe"), {qvt::field("x", &Point::x)});
    EXPECT_EQ(narrow.error(), "Types.Point has a field x of another type or length");
    EXPECT_EQ(named.error(), "Types.Point has no field z");
    EXPECT_EQ(none.error(), "there is no such class");
    EXPECT_FALSE(narrow);
    const qvt::Property corners = group.makeStruct("corners", type);
    EXPECT_FALSE(named.write(corners, Point{1, 2}));
    EXPECT_THAT(named.read(corners), IsEmpty());
}

TEST_F(HostClasses, MapLeavesOtherPropertiesAlone) {
    const qvt::Class type = classes.find("Types.Point");
    const qvt::StructMap<Point> points(type, {qvt::field("x", &Point::x)});
    const qvt::Property number = group.make("number", 1.5);
    const qvt::Property part = group.makeStruct("part", classes.find("Types.Part"));
    EXPECT_FALSE(points.write(number, Point{}));
    EXPECT_FALSE(points.write(part, Point{}));
    EXPECT_FALSE(points.write(qvt::Property(), Point{}));
    EXPECT_EQ(number.value<double>(), 1.5);
}

}  // namespace
