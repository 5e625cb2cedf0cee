#include <algorithm>
#include <tuple>

#include "integrity/Findings.h"
#include "integrity/Paths.h"
#include "integrity/Survey.h"
#include "integrity/Tree.h"
#include "records/NameMap.h"
#include "records/OffsetSet.h"
#include "records/StoreGuard.h"

namespace norvane::platform::data::integrity {

namespace {

constexpr std::uint32_t kUnitsOfADimension = 0x1000;
constexpr std::uint32_t kHighestType = 24;

std::string number(std::uint64_t value) { return std::to_string(value); }

void checkRoot(const Survey& survey, Findings& findings) {
    const std::uint8_t kind = survey.kindOf(kRootOffset);
    if (survey.end() == 0) return;
    if (!survey.isEntity(kRootOffset))
        findings.error(code::kRootMissing, kRootOffset, "Record 0 is no root, nor any other entity.");
    else if (kind != 0)
        findings.warning(code::kRootKind, kRootOffset,
                         std::string("Record 0 is a ") + Record::formatOf(kind)->name +
                             ": a document was read that is no root.");
}

void checkVersion(IDataStore& store, const Survey& survey, Findings& findings) {
    if (survey.recordCount() == 0) return;
    tryReading(IDataStore::BADOFF, findings, [&] {
        if (store.version() == 0)
            findings.note(code::kVersion, IDataStore::BADOFF, "The store has no version number.");
    });
}

// Equal names have equal hashes, and with their list they stand side by side.
void checkSiblings(const Survey& survey, const Tree& tree, Findings& findings) {
    std::vector<std::tuple<std::uint32_t, std::uint64_t, std::uint32_t>> siblings;
    for (const auto& [set, child] : tree.edges())
        if (tree.isReachable(child)) siblings.push_back({set, survey.nameHashOf(child), child});
    std::sort(siblings.begin(), siblings.end());
    for (std::size_t i = 1; i < siblings.size(); ++i) {
        const auto& [set, hash, child] = siblings[i];
        const auto& [setBefore, hashBefore, before] = siblings[i - 1];
        if (set == setBefore && hash == hashBefore)
            findings.warning(code::kNameTwice, child,
                             "Record " + number(before) +
                                 " beside it has the same name: only one of them is found by it.");
    }
}

void checkDefaults(IDataStore& store, std::uint32_t table, std::uint32_t list, Findings& findings) {
    const std::vector<std::uint32_t> values = valuesOf(store, list, findings);
    const auto warn = [&](const std::string& text) { findings.warning(code::kDefaultsPair, table, text); };
    if (values.size() % 2 != 0) warn("Its defaults end in half a pair.");
    Record::OffsetSet keys;
    for (std::size_t i = 0; i + 1 < values.size(); i += 2) {
        const std::uint32_t unit = values[i], type = values[i + 1], key = unit & ~(kUnitsOfADimension - 1);
        if (key == 0) warn("Its defaults have unit " + number(unit) + ", which has no dimension.");
        if (key != 0 && !keys.insert(key))
            warn("Its defaults have unit " + number(unit) + " behind another of its dimension.");
        if (type == 0 || type > kHighestType)
            warn("Its defaults have type code " + number(type) + ", which is no type.");
    }
}

void checkAllDefaults(IDataStore& store, const Survey& survey, const Tree& tree, Findings& findings) {
    survey.forEachOffset([&](std::uint32_t table) {
        const std::uint32_t list = survey.defaultsOf(table);
        if (tree.isReachable(table) && survey.isList(list) && tree.ownerOf(list) == table)
            checkDefaults(store, table, list, findings);
    });
}

// Goes on to `act(survey, tree)`, under the same guard, where no error was found: what could not be read
// would pass for something that nothing leads to.
template <class Act>
Report checkAnd(IDataStore& store, Act act) {
    const StoreGuard guard(&store);
    Findings findings;
    const Survey survey(store, findings);
    checkRoot(survey, findings);
    checkVersion(store, survey, findings);
    const Tree tree(store, survey, {}, findings);
    checkSiblings(survey, tree, findings);
    checkAllDefaults(store, survey, tree, findings);
    findings.sort();
    fillPaths(store, tree, findings.all);
    Report report{std::move(findings.all), survey.recordCount()};
    if (report.isSound()) act(survey, tree);
    return report;
}

// Lists and display names go with the entity that they belong to.
bool isLedTo(const Survey& survey, const Tree& tree, std::uint32_t offset) {
    return tree.isReachable(survey.isEntity(offset) ? offset : tree.ownerOf(offset));
}

}  // namespace

Report check(IDataStore& store) {
    return checkAnd(store, [](const Survey&, const Tree&) {});
}

Removal removeUnreachable(IDataStore& store) {
    Removal removal;
    removal.report = checkAnd(store, [&](const Survey& survey, const Tree& tree) {
        survey.forEachOffset([&](std::uint32_t offset) {
            if (survey.kindOf(offset) == Record::kNoKind || isLedTo(survey, tree, offset)) return;
            store.remove(offset);
            ++removal.removedCount;
        });
    });
    return removal;
}

}  // namespace norvane::platform::data::integrity
