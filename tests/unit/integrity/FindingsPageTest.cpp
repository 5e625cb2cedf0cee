// The page on findings says of each code what the code does.
#include <gmock/gmock.h>

#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>

#include "integrity/Codes.h"

namespace norvane::platform::test {
namespace {

std::string contentOf(const std::string& path) {
    std::ifstream file(path);
    std::ostringstream content;
    content << file.rdbuf();
    return content.str();
}

std::set<std::string> codesInSource() {
    const std::string source = contentOf(QVT_CODES);
    const std::regex word("\\[\\] = \"([a-z-]+)\"");
    std::set<std::string> codes;
    for (std::sregex_iterator each(source.begin(), source.end(), word), end; each != end; ++each)
        codes.insert((*each)[1]);
    return codes;
}

// Severity by code, of all tables but that of the file.
std::map<std::string, std::string> codesOnPage() {
    std::string page = contentOf(QVT_DOCS "/integrity.md");
    page = page.substr(page.find("## One record"));
    const std::regex row("\n\\| `([a-z-]+)` \\| ([a-z]+) \\|");
    std::map<std::string, std::string> codes;
    for (std::sregex_iterator each(page.begin(), page.end(), row), end; each != end; ++each)
        codes[(*each)[1]] = (*each)[2];
    return codes;
}

TEST(FindingsPage, HasEachCode) {
    std::set<std::string> onPage;
    for (const auto& [code, severity] : codesOnPage()) onPage.insert(code);
    EXPECT_GT(onPage.size(), 30u);
    EXPECT_EQ(onPage, codesInSource());
}

TEST(FindingsPage, HasAsErrorsWhatRepairMends) {
    for (const auto& [code, severity] : codesOnPage())
        EXPECT_EQ(severity == "error", !data::integrity::remedyOf(code).empty()) << code;
}

}  // namespace
}  // namespace norvane::platform::test
