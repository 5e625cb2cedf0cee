// The page about the record formats says what the tables of positions say.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <string>
#include <vector>

#include "norvane/platform/core/storage/datastore/MemoryDataStore.h"
#include "records/Fields.h"

namespace norvane::platform::test {
namespace {

namespace Record = data::Record;
using testing::ElementsAreArray;
using Row = std::vector<std::string>;
using Table = std::vector<Row>;

std::string trimmed(const std::string& text) {
    const std::size_t begin = text.find_first_not_of(' ');
    return begin == text.npos ? std::string() : text.substr(begin, text.find_last_not_of(' ') + 1 - begin);
}

Row cellsOf(const std::string& line) {
    Row cells;
    for (std::size_t begin = 1, end = 0; (end = line.find('|', begin)) != line.npos; begin = end + 1)
        cells.push_back(trimmed(line.substr(begin, end - begin)));
    return cells;
}

// The tables of the page, without their heads, by the heading above them and the first word of the head.
class FormatPage : public testing::Test {
  public:
    FormatPage() {
        std::ifstream file(QVT_DOCS "/records.md");
        std::string heading, previous;
        Table* table = nullptr;
        for (std::string line; std::getline(file, line); previous = line) {
            if (line.rfind("## ", 0) == 0) heading = line.substr(3);
            if (line.rfind("|---", 0) == 0)
                table = &tables_[heading + "/" + cellsOf(previous)[0]];
            else if (line.rfind("|", 0) == 0 && table)
                table->push_back(cellsOf(line));
            else
                table = nullptr;
        }
    }
    ~FormatPage() noexcept override = default;

  protected:
    // The first `columns` cells of each row.
    Table table(const std::string& name, std::size_t columns) const {
        const auto found = tables_.find(name);
        Table table = found == tables_.end() ? Table() : found->second;
        for (Row& row : table) row.resize(columns);
        return table;
    }

    std::map<std::string, Table> tables_;
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
