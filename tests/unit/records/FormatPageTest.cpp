// The page about the record formats says what the tables of positions say.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <numeric>
#include <sstream>
#include <string>
#include <vector>

#include "norvane/platform/core/storage/datastore/MemoryDataStore.h"
#include "norvane/platform/data/metadata/tDataType.h"
#include "records/Fields.h"
#include "support/PageTables.h"

namespace norvane::platform::test {
namespace {

namespace Record = data::Record;
using testing::ElementsAreArray;

class FormatPage : public testing::Test, protected PageTables {
  public:
    FormatPage() : PageTables(QVT_DOCS "/records.md") {}
    ~FormatPage() noexcept override = default;
};

TEST_F(FormatPage, ListsEveryKind) {
    Table expected;
    for (const Record::Format& format : Record::kFormats) {
        const auto kind = static_cast<std::uint8_t>(format.kind);
        expected.push_back({std::to_string(kind), format.name, std::to_string(format.fixedSize),
                            Record::isEntity(kind) ? "yes" : "no"});
    }

    EXPECT_THAT(table("Kinds/Kind", 4), ElementsAreArray(expected));
}

TEST_F(FormatPage, ListsEveryFieldOfEveryRecord) {
    for (const Record::Format& format : Record::kFormats) {
        Table told = Record::isEntity(static_cast<std::uint8_t>(format.kind)) ? table("Entity header/Byte", 3)
                                                                              : Table();
        for (const Row& row : table(std::string(format.name) + "/Byte", 3)) told.push_back(row);
        Table expected;
        for (const Record::FieldRow& row : format.fields)
            expected.push_back({std::to_string(row.position), std::to_string(row.width), row.name});

        EXPECT_THAT(told, ElementsAreArray(expected)) << format.name;
    }
}

TEST_F(FormatPage, ListsEverySectionInItsOrder) {
    for (const Record::Format& format : Record::kFormats) {
        Table expected;
        for (const Record::SectionRow& row : format.sections)
            expected.push_back({row.name, std::to_string(row.sizePosition)});

        EXPECT_THAT(table(std::string(format.name) + "/Section", 2), ElementsAreArray(expected))
            << format.name;
    }
}

TEST_F(FormatPage, ListsTheFlags) {
    const Table expected = {{std::to_string(Record::kOptional), "optional"},
                            {std::to_string(Record::kFixed), "fixed"},
                            {std::to_string(Record::kInherited), "inherited"},
                            {std::to_string(Record::kHasUri), "uri"}};

    EXPECT_THAT(table("Entity header/Flag", 2), ElementsAreArray(expected));
}

// The codes of "2 to 6" and of "10, 11".
std::vector<std::uint32_t> codesOf(const std::string& cell) {
    std::istringstream words(cell);
    std::vector<std::uint32_t> codes;
    bool isRange = false;
    for (std::string word; words >> word;) {
        if (word == "to") {
            isRange = true;
            continue;
        }
        const auto code = static_cast<std::uint32_t>(std::stoul(word));
        for (std::uint32_t between = isRange ? codes.back() + 1 : code; between < code; ++between)
            codes.push_back(between);
        codes.push_back(code);
    }
    return codes;
}

TEST_F(FormatPage, TellsTheBytesOfAnElementOfEveryType) {
    std::vector<std::uint32_t> told;
    for (const Row& row : table("primitive/Type codes", 2))
        for (const std::uint32_t code : codesOf(row[0])) {
            told.push_back(code);
            EXPECT_EQ(row[1], std::to_string(data::metadata::elementSize(code))) << code;
        }

    std::vector<std::uint32_t> all(data::metadata::kStruct);
    std::iota(all.begin(), all.end(), 1u);
    EXPECT_EQ(told, all);
}

TEST_F(FormatPage, TellsTheLimits) {
    const Table limits = table("Limits/What", 2);

    ASSERT_EQ(limits.size(), 4u);
    EXPECT_EQ(limits[0][1], std::to_string(0xFFFFFFFFu));
    EXPECT_EQ(limits[1][1], std::to_string(core::storage::datastore::MemoryDataStore::Options().recordLimit));
    EXPECT_EQ(limits[2][1], std::to_string(core::storage::datastore::IDataStore::BADOFF));
    EXPECT_EQ(limits[3][1], std::to_string((0xFFFFFFFFu - Record::kOffsetsHeader) / 4));
}

}  // namespace
}  // namespace norvane::platform::test
