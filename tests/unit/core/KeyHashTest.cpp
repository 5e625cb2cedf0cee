#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <unordered_map>

#include "norvane/platform/core/Compare.h"
#include "norvane/platform/core/string/KeyHash.h"

namespace norvane::platform::core::string {
namespace {

std::uint64_t hashOf(std::string_view bytes) { return wideKeyHash(bytes.data(), bytes.size()); }

// As maps hash a key: its length in code units, taken for a number of bytes.
std::uint64_t keyHashOf(std::u16string_view key) { return wideKeyHash(key.data(), key.size()); }

// The numbers come from another program.
TEST(KeyHashTest, GivesTheKnownValues) {
    EXPECT_EQ(hashOf("a"), 0x59ec9e63d56e67beu);
    EXPECT_EQ(hashOf("ab"), 0xcda7a5a118e3bf53u);
    EXPECT_EQ(hashOf("abc"), 0x24c937a00be2b53bu);
    EXPECT_EQ(hashOf("abcd"), 0x8b136cfb86919b71u);
    EXPECT_EQ(hashOf("abcde"), 0x30ae322620ec1afeu);
    EXPECT_EQ(hashOf("abcdefgh"), 0x1308c636729dea06u);
}

TEST(KeyHashTest, TakesBytesAsUnsigned) {
    EXPECT_EQ(hashOf("\xff\xfe\xfd"), 0x7f9b182bd3990410u);
    EXPECT_EQ(hashOf(std::string_view("\x80\x00\xff", 3)), 0x7d636c012b39c0e4u);
}

TEST(KeyHashTest, MixesManyBlocks) {
    std::string bytes;
    for (int value = 0; value < 256; ++value) bytes += static_cast<char>(value);

    EXPECT_EQ(hashOf(bytes), 0x53cef2aea9fe1446u);
}

TEST(KeyHashTest, EmptyKeyHashesToZero) { EXPECT_EQ(wideKeyHash(nullptr, 0), 0u); }

TEST(KeyHashTest, DoesNotNeedAlignedBytes) {
    const std::string bytes = "-abcdefgh";

    EXPECT_EQ(wideKeyHash(bytes.data() + 1, 8), 0x1308c636729dea06u);
}

TEST(KeyHashTest, OnlyTheFirstHalfOfAWideKeyCounts) {
    EXPECT_EQ(keyHashOf(u"abcd"), 0xaab754bf2075864du);
    EXPECT_EQ(keyHashOf(u"abXY"), keyHashOf(u"abcd"));
    EXPECT_NE(keyHashOf(u"aXcd"), keyHashOf(u"abcd"));
    EXPECT_FALSE(tWCharCompareEqual()(u"abXY", u"abcd"));
}

struct KeyHash {
    std::size_t operator()(const tWChar* key) const { return keyHashOf(key); }
};

TEST(KeyHashTest, MapTellsKeysOfOneHashApart) {
    std::unordered_map<const tWChar*, int, KeyHash, tWCharCompareEqual> map;
    map[u"abcd"] = 1;
    map[u"abXY"] = 2;

    map.erase(u"abcd");

    EXPECT_EQ(map.count(std::u16string(u"abcd").c_str()), 0u);
    EXPECT_EQ(map[std::u16string(u"abXY").c_str()], 2);
    EXPECT_EQ(map.count(u"abZZ"), 0u);
}

TEST(KeyHashTest, WideKeysOfOddLengthEndInHalfACodeUnit) {
    EXPECT_EQ(keyHashOf(u"n"), 0x48069a9b0d28afa0u);
    EXPECT_EQ(keyHashOf(u"na"), 0xe53415fcabd86624u);
    EXPECT_EQ(keyHashOf(u"name"), 0x7c434e1f8275a821u);
    EXPECT_EQ(keyHashOf(u"gr\u00f6\u00dfe"), 0x5b5805bef8e6d2fau);
    EXPECT_EQ(keyHashOf(u"MaterialProperty_000001"), 0x2f6fd3e0d19af1a1u);
}

}  // namespace
}  // namespace norvane::platform::core::string
