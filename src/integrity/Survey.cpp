#include "integrity/Survey.h"

#include <algorithm>
#include <new>

#include "integrity/RecordCheck.h"
#include "records/NameMap.h"
#include "records/Records.h"

namespace norvane::platform::data::integrity {

using namespace Record;

namespace {

constexpr std::uint64_t kMostOffsets = std::uint64_t{1} << 32;

}  // namespace

Survey::Survey(IDataStore& store, Findings& findings)
    : end_(std::min(store.size(), kMostOffsets)),
      kinds_(kNoKind),
      parents_(IDataStore::BADOFF),
      locales_(IDataStore::BADOFF),
      lists_(IDataStore::BADOFF),
      defaults_(IDataStore::BADOFF) {
    forEachOffset([&](std::uint32_t offset) {
        if (offset == IDataStore::BADOFF) return;
        if (tryReading(offset, findings, [&] { look(store, offset, findings); })) return;
        ++recordCount_;
        kinds_.set(offset, kUnsoundKind);
        unsound_.push_back(offset);
    });
}

void Survey::look(IDataStore& store, std::uint32_t offset, Findings& findings) {
    const Snapshot record(&store, offset);
    if (record->size() == 0) return;
    const std::size_t before = findings.all.size();
    checkRecord(offset, *record, findings);
    const auto isError = [](const Finding& each) { return each.severity == Severity::error; };
    if (std::any_of(findings.all.begin() + static_cast<std::ptrdiff_t>(before), findings.all.end(), isError))
        unsound_.push_back(offset);
    ++recordCount_;
    if (isWholeRecord(*record))
        note(offset, *record);
    else
        kinds_.set(offset, kUnsoundKind);
}

void Survey::note(std::uint32_t offset, const View& record) {
    const std::uint8_t kind = record.kind();
    kinds_.set(offset, kind);
    if (!Record::isEntity(kind)) return;
    nameHashes_.set(offset, nameHash(record.name()));
    const auto keep = [&](OffsetMap<std::uint32_t>& map, U32 field) {
        if (record.load(field) != IDataStore::BADOFF) map.set(offset, record.load(field));
    };
    keep(parents_, field::parent);
    keep(locales_, field::locale);
    if (kind != 1) keep(lists_, field::children);
    if (kind == 2) keep(defaults_, field::defaults);
}

std::vector<std::uint32_t> valuesOf(IDataStore& store, std::uint32_t list, Findings& findings) {
    std::vector<std::uint32_t> values;
    tryReading(list, findings, [&] {
        const Snapshot record(&store, list);
        if (!record->isWhole(Kind::offsets)) return;
        values.resize(record->valueCount());
        for (std::uint32_t i = 0; i < record->valueCount(); ++i) values[i] = record->value(i);
    });
    return values;
}

}  // namespace norvane::platform::data::integrity
