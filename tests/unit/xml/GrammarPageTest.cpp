// The page about documents says what the tables of keywords and types say.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "support/PageTables.h"
#include "xml/DefaultTypeNames.h"
#include "xml/Keywords.h"

namespace norvane::platform::test {
namespace {

using data::kKeywords;
using testing::ElementsAreArray;

std::string quoted(const char* word) { return word ? std::string("`") + word + "`" : "none"; }

class GrammarPage : public testing::Test, protected PageTables {
  public:
    GrammarPage() : PageTables(QVT_DOCS "/documents.md") {}
    ~GrammarPage() noexcept override = default;
};

TEST_F(GrammarPage, ListsEveryTypeWithItsElementAndItsWord) {
    Table expected;
    for (const data::tKeyword& keyword : kKeywords)
        if (keyword.kind == data::Record::Kind::primitive)
            expected.push_back({std::to_string(keyword.detail), quoted(keyword.name),
                                quoted(data::defaultTypeNameOf(keyword.detail))});

    EXPECT_THAT(table("Values/Code", 3), ElementsAreArray(expected));
}

TEST_F(GrammarPage, ListsEveryElementThatIsNoPlainValue) {
    std::string listed;
    for (const Row& row : table("Keyword elements/Element", 1)) listed += row.front() + " ";

    for (const data::tKeyword& keyword : kKeywords) {
        const bool isPlainValue =
            keyword.kind == data::Record::Kind::primitive && keyword.detail != data::metadata::kStruct;
        EXPECT_EQ(listed.find(quoted(keyword.name)) == listed.npos, isPlainValue) << keyword.name;
    }
}

}  // namespace
}  // namespace norvane::platform::test
