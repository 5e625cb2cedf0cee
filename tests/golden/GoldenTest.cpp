// Each document of this folder gives the reports and the output that stand beside it: see README.md.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "unit/xml/Documents.h"

namespace norvane::platform::data::test {
namespace {

namespace fs = std::filesystem;

std::string bytesOf(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file.is_open()) << path;
    return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> caseNames() {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(QVT_GOLDEN_DIR)) {
        const fs::path name = entry.path().filename();
        if (name.extension() == ".xml" && !name.stem().has_extension()) names.push_back(name.stem().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

fs::path fileOf(const std::string& name, const std::string& ending) {
    return fs::path(QVT_GOLDEN_DIR) / (name + ending);
}

// Reads a document, with the types that stand beside it, and writes the store.
std::string exported(const std::string& name, std::string_view document, std::string& reports) {
    MemoryDataStore types;
    MemoryDataStore store;
    const fs::path library = fileOf(name, ".types.xml");
    if (fs::exists(library)) read(types, bytesOf(library));
    const SharedPtr<ISchemaLocator> locator = ISchemaLocator::make(&types);
    reports = placedReports(store, document, locator.get());
    return kHeader + written(store, locator.get());
}

class Golden : public testing::TestWithParam<std::string> {};

TEST_P(Golden, IsReportedAndWrittenAsExpected) {
    std::string reports;
    const std::string text = exported(GetParam(), bytesOf(fileOf(GetParam(), ".xml")), reports);
    EXPECT_EQ(reports, bytesOf(fileOf(GetParam(), ".reports")));
    EXPECT_EQ(text, bytesOf(fileOf(GetParam(), ".out.xml")));
}

TEST_P(Golden, IsWrittenTheSameWayOnceMore) {
    std::string reports;
    const std::string text = bytesOf(fileOf(GetParam(), ".out.xml"));
    EXPECT_EQ(exported(GetParam(), text, reports), text);
}

INSTANTIATE_TEST_SUITE_P(Documents, Golden, testing::ValuesIn(caseNames()), [](const auto& each) {
    std::string name = each.param;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
});

TEST(GoldenFolder, HasNoFileThatBelongsToNoCase) {
    const std::vector<std::string> names = caseNames();
    EXPECT_GE(names.size(), 35U);
    for (const auto& entry : fs::directory_iterator(QVT_GOLDEN_DIR)) {
        const std::string file = entry.path().filename().string();
        const bool isDocument = file.ends_with(".xml") || file.ends_with(".reports");
        const bool isKnown = std::any_of(names.begin(), names.end(), [&](const std::string& name) {
            const std::string ending = file.starts_with(name) ? file.substr(name.size()) : "";
            return ending == ".xml" || ending == ".reports" || ending == ".out.xml" || ending == ".types.xml";
        });
        EXPECT_TRUE(isKnown || !isDocument) << file;
    }
}

}  // namespace
}  // namespace norvane::platform::data::test
