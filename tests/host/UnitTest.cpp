#include <gtest/gtest.h>

#include <string>

#include "qvt/qvt.hpp"

namespace {

TEST(HostUnit, LiteralIsLookedUpByTheCompiler) {
    constexpr qvt::Unit unit = "Kilowatt";
    static_assert(unit.id() == 0x1D007);
    EXPECT_EQ(unit.name(), "Kilowatt");
    EXPECT_EQ(unit.dimension(), "Power");
}

TEST(HostUnit, NameOfRunTimeMayBeUnknown) {
    EXPECT_EQ(qvt::Unit::named(std::string("Meter")), qvt::Unit("Meter"));
    EXPECT_FALSE(qvt::Unit::named("meter"));
    EXPECT_FALSE(qvt::Unit::named(""));
}

TEST(HostUnit, IdWithoutANameIsStillAUnit) {
    const auto unit = qvt::Unit::ofId(0x1DFFF);
    EXPECT_TRUE(unit);
    EXPECT_EQ(unit.name(), "");
    EXPECT_EQ(unit.dimension(), "Power");
    EXPECT_FALSE(qvt::Unit());
    EXPECT_EQ(qvt::Unit().name(), "");
}

TEST(HostText, GoesThroughUtf8AndBack) {
    EXPECT_EQ(qvt::Text("Pumpe \xC3\xA4\xF0\x9F\x98\x80").wide().view(), u"Pumpe \u00E4\U0001F600");
    EXPECT_EQ(qvt::utf8(qvt::Text(u"\u00E4").wide()), "\xC3\xA4");
}

TEST(HostText, IsNeverTheStringWithoutText) {
    const char* none = nullptr;
    EXPECT_NE(qvt::Text(none).wide().value(), nullptr);
    EXPECT_NE(qvt::Text(std::string_view()).wide().value(), nullptr);
    EXPECT_NE(qvt::Text(std::u16string_view()).wide().value(), nullptr);
    EXPECT_NE(qvt::Text(qvt::core::string::WideString()).wide().value(), nullptr);
}

}  // namespace
