#include <gtest/gtest.h>

#include <fstream>
#include <iomanip>
#include <iterator>
#include <set>
#include <sstream>
#include <string>

#include "norvane/platform/data/format/xml/UnitTable.h"
#include "xml/UnitTable.h"

namespace norvane::platform::data {
namespace {

using format::xml::dimensionKeyOf;
using format::xml::kDimensionTable;
using format::xml::kUnitTable;
using format::xml::tUnit;

template <std::size_t N>
std::string listing(const char* what, const tUnit (&table)[N]) {
    std::ostringstream text;
    text << std::hex << std::uppercase << std::setfill('0');
    for (const tUnit* row = table; row->name; ++row)
        text << what << " 0x" << std::setw(5) << row->id << " \"" << row->name << "\"\n";
    return text.str();
}

TEST(UnitTable, NamesAndIdsAreThoseThatStoresAndDocumentsHold) {
    std::ifstream file(QVT_UNIT_TABLE_GOLDEN);
    const std::string golden{std::istreambuf_iterator<char>(file), {}};

    EXPECT_EQ(listing("dimension", kDimensionTable) + listing("unit", kUnitTable), golden);
}

TEST(UnitTable, HasOneRowPerNameAndAClosingOne) {
    std::set<std::string> names;
    for (const tUnit* row = kUnitTable; row->name; ++row) names.insert(row->name);

    EXPECT_EQ(names.size(), 780U);
    EXPECT_EQ(std::size(kUnitTable), 781U);
    EXPECT_EQ(kUnitTable[780].name, nullptr);
}

TEST(UnitTable, EveryNameHasItsId) {
    for (const tUnit* row = kUnitTable; row->name; ++row)
        EXPECT_EQ(unitIdOf(row->name), row->id) << row->name;
}

TEST(UnitTable, EveryIdHasTheNameThatStandsFirst) {
    std::set<std::uint32_t> ids;
    for (const tUnit* row = kUnitTable; row->name; ++row) {
        const bool isFirst = ids.insert(row->id).second;
        EXPECT_EQ(unitNameOf(row->id) == row->name, isFirst) << row->name;
    }

    EXPECT_EQ(ids.size(), 773U);
}

TEST(UnitTable, OnlyTheIdsOfRowsHaveNames) {
    std::set<std::uint32_t> ids;
    for (const tUnit* row = kUnitTable; row->name; ++row) ids.insert(row->id);

    for (std::uint32_t id = 0; id < 0x47000; ++id)
        ASSERT_EQ(unitNameOf(id) != nullptr, ids.count(id) == 1) << id;
    for (const std::uint32_t id : {0x7FFFFFFFU, 0x80002001U, 0xFFFFFFFFU, 0xFFFFF001U})
        EXPECT_EQ(unitNameOf(id), nullptr) << id;
}

TEST(UnitTable, SecondNamesOfAnIdAreReadAndNeverWritten) {
    struct {
        std::uint32_t id;
        const char* written;
        const char* read;
    } const pairs[] = {{0x400C, "Quart_US_fluid", "Quart"},       {0x400F, "Gallon_US_fluid", "Gallon"},
                       {0x4018, "CubicMeter", "Stere"},           {0x401E, "Pint_US_fluid", "Pint"},
                       {0x8008, "AngleMinute", "Arcminute"},      {0x8009, "AngleSecond", "Arcsecond"},
                       {0x37001, "CandelasPerSquareMeter", "Nit"}};

    for (const auto& pair : pairs) {
        EXPECT_EQ(unitIdOf(pair.read), pair.id);
        EXPECT_EQ(unitIdOf(pair.written), pair.id);
        EXPECT_STREQ(unitNameOf(pair.id), pair.written);
    }
}

TEST(UnitTable, NamesWithACommaAtTheirEndAreKnownInFullOnly) {
    const std::string comma = ",   ";
    struct {
        std::string name;
        std::string tail;
        std::uint32_t id;
    } const names[] = {{"OuncePerGallon", comma, 0x11007},
                       {"KilonewtonPerCubicMeter", comma, 0x12002},
                       {"LiterPerSecond", "," + std::string(14, ' '), 0x14002},
                       {"PoundForcePerFoot", comma, 0x18005},
                       {"KilowattPerSquareFoot", comma, 0x20003},
                       {"MeterPerKilonewton", comma, 0x22002},
                       {"SquareMeterPerKilonewton", comma, 0x23002},
                       {"KipFootPerDegreePerFoot", comma, 0x3C002},
                       {"CubicFootPerMinuteCubicFoot", comma, 0x3F002},
                       {"FootPerSecondSquared", comma, 0x30002},
                       {"InvCelsius", ",", 0x43002}};

    for (const auto& [name, tail, id] : names) {
        EXPECT_EQ(unitIdOf((name + tail).c_str()), id) << name;
        EXPECT_EQ(unitNameOf(id), name + tail);
        EXPECT_EQ(unitIdOf(name.c_str()), 0U) << name;
    }
}

TEST(UnitTable, ElevenNamesHoldAComma) {
    int commas = 0;
    for (const tUnit* row = kUnitTable; row->name; ++row)
        commas += std::string(row->name).find(',') != std::string::npos;

    EXPECT_EQ(commas, 11);
}

TEST(UnitTable, NamesAreComparedByteByByte) {
    EXPECT_EQ(unitIdOf("Meter"), 0x2001U);
    for (const char* name : {"meter", "Meter ", " Meter", "Mete", "Meterr", "METER", ""})
        EXPECT_EQ(unitIdOf(name), 0U) << name;
    EXPECT_EQ(unitIdOf(nullptr), 0U);
}

TEST(UnitTable, NoUnitHasNoName) { EXPECT_EQ(unitNameOf(0), nullptr); }

TEST(UnitTable, MisspeltNamesStay) {
    EXPECT_EQ(unitIdOf("Dram_Avoidupois"), 0x5020U);
    EXPECT_EQ(unitIdOf("Millenium_Gregorian"), 0x2C028U);
    EXPECT_EQ(unitIdOf("Dram_Avoirdupois"), 0U);
}

TEST(UnitTable, RowsStandByDimensionAndNotByKey) {
    EXPECT_STREQ(kUnitTable[0].name, "Unitless");
    EXPECT_EQ(kUnitTable[0].id, 0x1001U);
    EXPECT_STREQ(kUnitTable[779].name, "AmperePerMeter");
    EXPECT_EQ(kUnitTable[779].id, 0x44002U);
    EXPECT_EQ(unitIdOf("KiloMeter"), 0x2009U);
    EXPECT_EQ(unitIdOf("Oersted"), 0x44001U);
}

TEST(UnitTable, DimensionsStandInOrderOfTheirKeys) {
    ASSERT_EQ(std::size(kDimensionTable), 69U);
    for (std::uint32_t row = 0; row < 68; ++row) EXPECT_EQ(kDimensionTable[row].id, (row + 1) << 12);
    EXPECT_EQ(kDimensionTable[68].name, nullptr);
    EXPECT_STREQ(kDimensionTable[1].name, "Length");
    EXPECT_STREQ(kDimensionTable[67].name, "MagneticFieldIntensity");
}

TEST(UnitTable, DimensionKeyIsTheIdWithoutItsLowTwelveBits) {
    EXPECT_EQ(dimensionKeyOf(0x2009), 0x2000U);
    EXPECT_EQ(dimensionKeyOf(0xFFF), 0U);
    EXPECT_EQ(dimensionKeyOf(0xFFFFFFFF), 0xFFFFF000U);
}

}  // namespace
}  // namespace norvane::platform::data
