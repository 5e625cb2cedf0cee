#include <gtest/gtest.h>

#include <set>
#include <string>

#include "norvane/platform/core/string/StringAlgorithm.h"
#include "xml/Keywords.h"

namespace norvane::platform::data {
namespace {

struct tRow {
    const char* name;
    Record::Kind kind;
    std::uint32_t detail;
};

constexpr tRow kRows[] = {
    {"root", Record::Kind::root, 0},
    {"node", Record::Kind::container, 0},
    {"group", Record::Kind::container, 1},
    {"link", Record::Kind::container, 2},
    {"table", Record::Kind::table, 0},
    {"binary", Record::Kind::primitive, 1},
    {"uuid", Record::Kind::primitive, 2},
    {"string", Record::Kind::primitive, 3},
    {"time", Record::Kind::primitive, 4},
    {"uri", Record::Kind::primitive, 5},
    {"version", Record::Kind::primitive, 6},
    {"bool", Record::Kind::primitive, 7},
    {"int8", Record::Kind::primitive, 8},
    {"uint8", Record::Kind::primitive, 9},
    {"int16", Record::Kind::primitive, 10},
    {"uint16", Record::Kind::primitive, 11},
    {"int32", Record::Kind::primitive, 12},
    {"uint32", Record::Kind::primitive, 13},
    {"int64", Record::Kind::primitive, 14},
    {"uint64", Record::Kind::primitive, 15},
    {"scalar", Record::Kind::primitive, 16},
    {"double", Record::Kind::primitive, 17},
    {"vector2", Record::Kind::primitive, 18},
    {"vector3", Record::Kind::primitive, 19},
    {"vector4", Record::Kind::primitive, 20},
    {"matrix2x2", Record::Kind::primitive, 21},
    {"matrix3x3", Record::Kind::primitive, 22},
    {"matrix4x4", Record::Kind::primitive, 23},
    {"struct", Record::Kind::primitive, 24},
};

TEST(Keywords, EveryNameStandsForItsRecord) {
    for (const tRow& row : kRows) {
        const tKeyword* keyword = keywordOf(row.name);
        ASSERT_NE(keyword, nullptr) << row.name;
        EXPECT_STREQ(keyword->name, row.name);
        EXPECT_EQ(keyword->kind, row.kind) << row.name;
        EXPECT_EQ(keyword->detail, row.detail) << row.name;
    }
}

TEST(Keywords, EveryRecordIsWrittenUnderItsName) {
    for (const tRow& row : kRows) {
        const tKeyword* keyword = keywordOf(row.kind, row.detail);
        ASSERT_NE(keyword, nullptr) << row.name;
        EXPECT_STREQ(keyword->name, row.name);
    }
}

TEST(Keywords, ThereAreNoOthers) {
    std::set<std::string> names;
    for (const tKeyword& keyword : kKeywords) names.insert(keyword.name);
    EXPECT_EQ(names.size(), std::size(kRows));
}

TEST(Keywords, SubElementsShortTypeWordsAndStrangersAreNone) {
    for (const char* name :
         {"", "name", "val", "default", "vec2", "vec3", "vec4", "mtx2x2", "mtx3x3", "mtx4x4", "Group",
          "GROUP", "groups", "grou", "id", "$$$$$_____empty_key", "$$$$$_____deleted_key", "gr\xC3\xB6up"})
        EXPECT_EQ(keywordOf(name), nullptr) << name;
    EXPECT_EQ(keywordOf(std::string(1000, 'g')), nullptr);
}

TEST(Keywords, RecordsOfUnknownKindsAndTypesHaveNone) {
    for (const std::uint32_t kind : {3U, 255U, 0xFFFFFFFFU})
        EXPECT_EQ(keywordOf(Record::Kind::container, kind), nullptr);
    for (const std::uint32_t type : {0U, 25U, 0xFFFFFFFFU})
        EXPECT_EQ(keywordOf(Record::Kind::primitive, type), nullptr);
    EXPECT_EQ(keywordOf(Record::Kind::offsets, 0), nullptr);
    EXPECT_EQ(keywordOf(Record::Kind::locale, 0), nullptr);
}

}  // namespace
}  // namespace norvane::platform::data
