#include <utility>

#include "integrity/Findings.h"
#include "integrity/Survey.h"
#include "integrity/Tree.h"
#include "records/StoreGuard.h"

namespace norvane::platform::data::integrity {

namespace {

// Lists and display names go with the entity that they belong to.
bool isLedTo(const Survey& survey, const Tree& tree, std::uint32_t offset) {
    return tree.isReachable(survey.isEntity(offset) ? offset : tree.ownerOf(offset));
}

}  // namespace

Removal removeUnreachable(IDataStore& store) {
    const StoreGuard guard(&store);
    Removal removal{check(store)};
    if (!removal.report.isSound()) return removal;
    Findings told;
    const Survey survey(store, told);
    const Tree tree(store, survey, {}, told);
    // What could not be read this time would pass for something that nothing leads to.
    const Report again{std::move(told.all), 0};
    if (!again.isSound()) {
        removal.report.findings = again.findings;
        return removal;
    }
    survey.forEachOffset([&](std::uint32_t offset) {
        if (survey.kindOf(offset) == Record::kNoKind || isLedTo(survey, tree, offset)) return;
        store.remove(offset);
        ++removal.removedCount;
    });
    return removal;
}

}  // namespace norvane::platform::data::integrity
