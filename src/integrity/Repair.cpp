#include <utility>

#include "integrity/FileFindings.h"
#include "integrity/Mend.h"
#include "integrity/OffsetMap.h"
#include "integrity/Survey.h"
#include "integrity/WorkFile.h"
#include "norvane/platform/core/storage/datastore/FileDataStore.h"
#include "norvane/platform/core/string/StringAlgorithm.h"

namespace norvane::platform::data::integrity {

using core::storage::datastore::FileDataStore;
using core::storage::datastore::StoreError;
using core::storage::datastore::StoreFile;
using core::storage::datastore::StoreFileWriter;

namespace {

// What was taken over from a file.
struct Saved {
    OffsetMap<std::uint8_t> isThere{0};
    std::uint64_t count = 0;
    bool isRootNew = false;
};

void addSentence(std::string& text, const char* sentence) {
    if (!text.empty() && text.back() != '.') text += '.';
    text += sentence;
}

[[noreturn]] void failToSave(const std::string& path) {
    throw StoreError(StoreError::Code::damaged, path + ": no record can be saved", IDataStore::BADOFF);
}

// Writes all sound records of a file to a new one, at their offsets.
Saved save(const std::string& from, const std::string& to, StoreFile::Search search) {
    Saved saved;
    StoreFileWriter writer(to);
    const StoreFile::Summary summary =
        StoreFile::visit(from, search, [&](std::uint32_t offset, const void* bytes, std::uint32_t size) {
            writer.put(offset, bytes, size);
            saved.isThere.set(offset, 1);
            ++saved.count;
        });
    if (saved.count == 0 && summary.recordCount != 0) failToSave(from);
    saved.isRootNew = summary.end != 0 && !saved.isThere.get(0);
    if (saved.isRootNew) {
        const std::string root = newRoot();
        writer.put(0, root.data(), static_cast<std::uint32_t>(root.size()));
    }
    const bool hasLostVersion = saved.isRootNew && summary.version == 0;
    writer.finish(hasLostVersion ? 1 : summary.version, summary.end);
    return saved;
}

std::u16string wide(const std::string& text) {
    return std::u16string(core::string::StringAlgorithm::UTF8Decode(text.c_str()).view());
}

// What the file was found to have lost.
void tellOfFile(const std::string& path, const Saved& saved, std::vector<Finding>& findings) {
    if (saved.isRootNew)
        findings.push_back({Severity::error,
                            code::kRootMissing,
                            0,
                            {},
                            "Record 0 cannot be read. " + remedyOf(code::kRootMissing)});
    for (Finding& each : fileFindings(path)) {
        const bool isRecord = each.offset != IDataStore::BADOFF;
        if (isRecord && !saved.isThere.get(each.offset)) addSentence(each.text, " The record was left out.");
        if (isRecord && saved.isThere.get(each.offset))
            addSentence(each.text, " A copy of it was found, which may be an older one.");
        if (!isRecord) addSentence(each.text, " The file was written anew.");
        findings.push_back(std::move(each));
    }
}

// Makes the file's model sound, and counts its records.
std::uint64_t mendFile(const std::string& path, const MendOptions& options, bool compacts,
                       std::vector<Finding>& findings) {
    FileDataStore::Options access;
    access.creation = FileDataStore::Creation::never;
    FileDataStore store(path, access);
    for (Finding& each : mend(store, options)) findings.push_back(std::move(each));
    store.commit();
    const Report result = check(store);
    for (const Finding& each : result.findings)
        if (each.severity == Severity::error)
            throw StoreError(
                StoreError::Code::damaged,
                path + ": cannot be made sound: record " + std::to_string(each.offset) + ": " + each.text,
                each.offset);
    if (compacts) store.compact();
    store.close();
    return result.recordCount;
}

Report repairBy(const std::string& work, const std::string& in, const std::string& out,
                const RepairOptions& options) {
    const Saved saved =
        save(in, work, options.salvage ? StoreFile::Search::byPage : StoreFile::Search::byOrder);
    WorkFile file(work);
    Findings findings;
    tellOfFile(in, saved, findings.all);
    if (saved.count == 0 && !findings.all.empty()) failToSave(in);
    // Pages come in any order, which leaves room between their records.
    const std::uint64_t recordCount =
        mendFile(work, {saved.isRootNew, wide(options.recovered)}, options.salvage, findings.all);
    file.publish(out);
    findings.sort();
    return {std::move(findings.all), recordCount};
}

}  // namespace

Report repair(const std::string& in, const std::string& out, const RepairOptions& options) {
    refuseExisting(out);
    const std::string work = WorkFile::pathFor(out);
    try {
        return repairBy(work, in, out, options);
    } catch (const StoreError& error) {
        // Nobody else knows of the file that is written first.
        std::string words = error.what();
        const std::string ending = work.substr(out.size());
        const std::size_t at = words.find(ending);
        if (at == std::string::npos) throw;
        throw StoreError(error.code(), words.erase(at, ending.size()), error.offset());
    }
}

}  // namespace norvane::platform::data::integrity
