#include <gtest/gtest.h>

#include "xml/DefaultTypeNames.h"

namespace norvane::platform::data {
namespace {

struct tWord {
    const char* name;
    std::uint32_t type;
};

constexpr tWord kWords[] = {{"binary", 1},  {"uuid", 2},    {"string", 3},  {"time", 4},   {"uri", 5},
                            {"version", 6}, {"bool", 7},    {"int8", 8},    {"uint8", 9},  {"int16", 10},
                            {"uint16", 11}, {"int32", 12},  {"uint32", 13}, {"int64", 14}, {"uint64", 15},
                            {"scalar", 16}, {"double", 17}, {"vec2", 18},   {"vec3", 19},  {"vec4", 20},
                            {"mtx2x2", 21}, {"mtx3x3", 22}, {"mtx4x4", 23}};

TEST(DefaultTypeNames, EveryWordStandsForItsType) {
    for (const tWord& word : kWords) EXPECT_EQ(defaultTypeOf(word.name), word.type) << word.name;
}

TEST(DefaultTypeNames, EveryTypeButStructHasItsWord) {
    for (const tWord& word : kWords) EXPECT_STREQ(defaultTypeNameOf(word.type), word.name);
    EXPECT_EQ(defaultTypeNameOf(24), nullptr);
}

TEST(DefaultTypeNames, FirstOfTwoRowsIsTaken) {
    EXPECT_EQ(kDefaultTypeNames[5].type, 3U);
    EXPECT_EQ(defaultTypeNameOf(3), kDefaultTypeNames[0].name);
}

TEST(DefaultTypeNames, TableHasTwentyFourRowsAndAClosingOne) {
    for (int row = 0; row < 24; ++row) EXPECT_NE(kDefaultTypeNames[row].name, nullptr);
    EXPECT_EQ(kDefaultTypeNames[24].name, nullptr);
    EXPECT_EQ(kDefaultTypeNames[24].type, 0U);
}

TEST(DefaultTypeNames, NamesOfElementsAndOtherTextsAreUnknown) {
    for (const char* name : {"struct", "vector3", "matrix4x4", "Double", "double ", ""})
        EXPECT_EQ(defaultTypeOf(name), 0U) << name;
    EXPECT_EQ(defaultTypeOf(nullptr), 0U);
}

TEST(DefaultTypeNames, WhatIsNoTypeHasNoWord) {
    EXPECT_EQ(defaultTypeNameOf(0), nullptr);
    EXPECT_EQ(defaultTypeNameOf(0xFFFFFFFF), nullptr);
}

}  // namespace
}  // namespace norvane::platform::data
