#include <set>

#include "integrity/FileFindings.h"
#include "norvane/platform/core/storage/datastore/FileDataStore.h"

namespace norvane::platform::data::integrity {

using core::storage::datastore::FileDataStore;
using core::storage::datastore::StoreError;
using core::storage::datastore::StoreFile;

namespace {

FileDataStore::Options forReading() {
    FileDataStore::Options options;
    options.access = FileDataStore::Access::readOnly;
    options.creation = FileDataStore::Creation::never;
    return options;
}

bool isOutOfReach(const StoreError& failure) {
    return failure.code() == StoreError::Code::notFound || failure.code() == StoreError::Code::notReadable;
}

// What the store says of a record, where the file has said so already.
void dropRepeated(std::vector<Finding>& findings, const std::vector<Finding>& ofFile) {
    std::set<std::uint32_t> told;
    for (const Finding& each : ofFile) told.insert(each.offset);
    std::erase_if(findings, [&](const Finding& each) {
        return each.code == code::kUnreadable && told.count(each.offset) != 0;
    });
}

}  // namespace

std::vector<Finding> fileFindings(const std::string& path) {
    std::vector<Finding> findings;
    for (StoreFile::Problem& each : StoreFile::check(path))
        findings.push_back({Severity::error, std::move(each.code), each.offset, {}, std::move(each.text)});
    return findings;
}

Report checkFile(const std::string& path) {
    Findings findings;
    findings.all = fileFindings(path);
    Report report;
    try {
        FileDataStore store(path, forReading());
        report = check(store);
        dropRepeated(report.findings, findings.all);
    } catch (const StoreError& failure) {
        if (isOutOfReach(failure)) throw;
        if (findings.all.empty()) findings.error(code::kUnreadable, failure.offset(), failure.what());
    }
    for (Finding& each : report.findings) findings.all.push_back(std::move(each));
    findings.sort();
    report.findings = std::move(findings.all);
    return report;
}

}  // namespace norvane::platform::data::integrity
