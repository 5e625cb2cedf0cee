// Records as text for people.
#include <gtest/gtest.h>

#include "records/Dump.h"
#include "support/RecordBytes.h"

namespace norvane::platform::test {
namespace {

using data::Record::dump;

std::string line(int position, int width, const std::string& text) {
    char head[32];
    std::snprintf(head, sizeof head, "%6d %6d  ", position, width);
    return head + text + "\n";
}

TEST(DumpTest, EachFieldHasALineAndThenEachSection) {
    RecordBytes record;
    record.u8(4).u32(7).u32(1).u32(0xFFFFFFFFu).u8(6).u32(300);
    record.u8(2).u32(6).u32(2).u32(0).text(u"ab").text(u"");

    EXPECT_EQ(dump(record.view()),
              line(0, 1, "kind = 4 (0x4)") + line(1, 4, "parent = 7 (0x7)") +
                  line(5, 4, "open count = 1 (0x1)") + line(9, 4, "locale = 4294967295 (0xFFFFFFFF)") +
                  line(13, 1, "flags = 6 (0x6)") + line(14, 4, "children = 300 (0x12C)") +
                  line(18, 1, "container kind = 2 (0x2)") + line(19, 4, "name size = 6 (0x6)") +
                  line(23, 4, "class text size = 2 (0x2)") + line(27, 4, "link target size = 0 (0x0)") +
                  line(31, 6, "name = \"ab\\u0000\"") + line(37, 2, "class text = \"\\u0000\"") +
                  line(39, 0, "link target = \"\""));
}

TEST(DumpTest, ValuesAreBytes) {
    RecordBytes record;
    record.u8(1).zeros(25).u32(0).u32(2).u32(0).u32(3).text(u"").raw("\x01\xFF\x20");

    const std::string text = dump(record.view());

    EXPECT_NE(text.find(line(44, 3, "value = 01 FF 20")), std::string::npos) << text;
}

TEST(DumpTest, ListsShowTheirValuesAndWhatIsLeftOver) {
    EXPECT_EQ(dump(listOf({5, 0x1000}).raw("a").view()),
              line(0, 1, "kind = 3 (0x3)") + line(1, 4, "value 0 = 5 (0x5)") +
                  line(5, 4, "value 1 = 4096 (0x1000)") + line(9, 1, "surplus = 61"));
}

TEST(DumpTest, LocalisedStringsShowTheirNuls) {
    EXPECT_EQ(dump(RecordBytes().u8(5).u32(8).text(u"de").units(u"\u00FC").view()),
              line(0, 1, "kind = 5 (0x5)") + line(1, 4, "payload size = 8 (0x8)") +
                  line(5, 8, "payload = \"de\\u0000\\u00FC\""));
}

TEST(DumpTest, MissingFieldsAndCutSectionsAreTold) {
    const std::string text = dump(RecordBytes().u8(0).zeros(17).u32(9).units(u"ab").raw("c").view());

    EXPECT_NE(text.find(line(22, 5, "name = \"ab\" and 63 cut short, 9 bytes told")), std::string::npos)
        << text;
    EXPECT_NE(dump(RecordBytes().u8(0).zeros(5).view()).find(line(5, 4, "open count = missing")),
              std::string::npos);
}

TEST(DumpTest, UnknownKindsAreBytes) {
    EXPECT_EQ(dump(RecordBytes().raw("\x09\x0A").view()), line(0, 2, "bytes = 09 0A"));
    EXPECT_EQ(dump({}), "");
}

}  // namespace
}  // namespace norvane::platform::test
