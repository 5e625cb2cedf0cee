#include "Findings.h"

#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>

#include "Describe.h"
#include "Text.h"

namespace qvt {

namespace {

using data::integrity::Finding;
using data::integrity::Severity;

std::string severityOf(const Finding& finding) {
    static constexpr const char* kWords[] = {"note", "warning", "error"};
    return kWords[static_cast<std::size_t>(finding.severity)];
}

bool hasRecord(const Finding& finding) { return finding.offset != IDataStore::BADOFF; }

std::string line(const Finding& finding, const std::string& file) {
    std::string text = file + ": " + severityOf(finding) + ": ";
    if (hasRecord(finding)) text += "record " + std::to_string(finding.offset) + ": ";
    if (!finding.path.empty()) text += finding.path + ": ";
    return printable(text + finding.text + " [" + finding.code + "]") + "\n";
}

// Those are many in every store: documents that override members of classes leave records behind.
std::string notes(const Report& report, const std::string& file) {
    std::map<std::string, std::size_t> counts;
    for (const Finding& each : report.findings)
        if (each.severity == Severity::note) ++counts[each.code];
    std::string text;
    for (const auto& [code, count] : counts)
        text +=
            printable(file) + ": note: " + counted(count, "finding") + " [" + code + "], listed by -f json\n";
    return text;
}

}  // namespace

std::string counted(std::uint64_t count, const std::string& what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

std::string findingsAsText(const Report& report, const std::string& file) {
    std::string text;
    for (const Finding& each : report.findings)
        if (each.severity != Severity::note) text += line(each, file);
    return text + notes(report, file);
}

std::uint64_t errorsIn(const Report& report) {
    const auto isError = [](const Finding& each) { return each.severity == Severity::error; };
    return static_cast<std::uint64_t>(std::count_if(report.findings.begin(), report.findings.end(), isError));
}

std::string findingsAsJson(const Report& report, const std::string& file, const std::string& made) {
    Json findings = Json::array();
    for (const Finding& each : report.findings)
        findings.push_back({{"severity", severityOf(each)},
                            {"code", each.code},
                            {"offset", hasRecord(each) ? Json(each.offset) : Json()},
                            {"path", orNull(each.path)},
                            {"text", each.text}});
    Json answer{{"store", file}};
    if (!made.empty()) answer["out"] = made;
    answer["sound"] = report.isSound();
    answer["records"] = report.recordCount;
    answer["findings"] = std::move(findings);
    return dumped(answer, 2) + "\n";
}

}  // namespace qvt
