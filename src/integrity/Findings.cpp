#include "integrity/Findings.h"

#include <algorithm>
#include <cstdint>

namespace norvane::platform::data::integrity {

namespace {

std::uint64_t placeOf(const Finding& finding) {
    return finding.offset == IDataStore::BADOFF ? 0 : std::uint64_t{finding.offset} + 1;
}

// A record may be asked for more than once.
bool isRepeated(const Finding& a, const Finding& b) {
    return a.offset == b.offset && a.code == code::kUnreadable && b.code == code::kUnreadable;
}

}  // namespace

void Findings::sort() {
    std::stable_sort(all.begin(), all.end(),
                     [](const Finding& a, const Finding& b) { return placeOf(a) < placeOf(b); });
    all.erase(std::unique(all.begin(), all.end(), isRepeated), all.end());
}

bool Report::isSound() const {
    return std::none_of(findings.begin(), findings.end(),
                        [](const Finding& each) { return each.severity == Severity::error; });
}

}  // namespace norvane::platform::data::integrity
