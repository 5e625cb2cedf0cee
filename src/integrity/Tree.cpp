#include "integrity/Tree.h"

#include <algorithm>

#include "integrity/Ancestry.h"
#include "records/OffsetSet.h"

namespace norvane::platform::data::integrity {

namespace {

std::string number(std::uint64_t value) { return std::to_string(value); }

std::string kindName(std::uint8_t kind) {
    const Record::Format* format = Record::formatOf(kind);
    return format ? format->name : "record that cannot be used";
}

}  // namespace

Tree::Tree(IDataStore& store, const Survey& survey, TreeOptions options, Findings& findings)
    : store_(store),
      survey_(survey),
      options_(options),
      findings_(findings),
      owners_(IDataStore::BADOFF),
      listClaims_(IDataStore::BADOFF) {
    assignLists();
    if (options_.adopts) findAdoptable();
    growFromRoot();
    growOrphans();
    noteUnclaimed();
}

std::vector<Tree::Edge> Tree::edges() const {
    std::vector<Edge> edges;
    survey_.forEachOffset([&](std::uint32_t offset) {
        if (survey_.isChild(offset) && ownerOf(offset) != IDataStore::BADOFF)
            edges.push_back({ownerOf(offset), offset});
    });
    std::sort(edges.begin(), edges.end());
    return edges;
}

// Reads each list once, from the list's side: two sets may name one list.
void Tree::assignLists() {
    survey_.forEachOffset([&](std::uint32_t table) {
        const std::uint32_t list = survey_.defaultsOf(table);
        if (survey_.isList(list)) isDefaults_.set(list, 1);
    });
    survey_.forEachOffset([&](std::uint32_t list) {
        if (!survey_.isList(list)) return;
        for (const std::uint32_t child : valuesOf(store_, list, findings_)) {
            if (!survey_.isChild(child)) continue;
            const std::uint32_t parent = survey_.parentOf(child);
            if (!survey_.isSet(parent) || survey_.childrenOf(parent) != list) continue;
            isClaimed_.set(child, 1);
            if (listClaims_.get(list) == IDataStore::BADOFF) listClaims_.set(list, parent);
        }
    });
}

bool Tree::isListLost(std::uint32_t set) const {
    const std::uint32_t list = survey_.childrenOf(set);
    if (set == kRootOffset && options_.isRootNew) return true;
    return list != IDataStore::BADOFF && !survey_.isList(list);
}

bool Tree::isListOfOther(std::uint32_t set) const {
    const std::uint32_t meantFor = listClaims_.get(survey_.childrenOf(set));
    return meantFor != set && meantFor != IDataStore::BADOFF;
}

void Tree::findAdoptable() {
    survey_.forEachOffset([&](std::uint32_t offset) {
        const std::uint32_t parent = survey_.parentOf(offset);
        if (survey_.isChild(offset) && survey_.isSet(parent) && (isListLost(parent) || isListOfOther(parent)))
            adoptable_.push_back({parent, offset});
    });
    std::sort(adoptable_.begin(), adoptable_.end());
}

void Tree::growFromRoot() {
    if (!survey_.isEntity(kRootOffset)) return;
    if (survey_.parentOf(kRootOffset) != IDataStore::BADOFF) {
        report(code::kParent, kRootOffset,
               "It is the root, and names " + number(survey_.parentOf(kRootOffset)) + " as its parent.");
        mark(kRootOffset, kParentWrong);
    }
    grow(kRootOffset);
    settleDeferred();
    finishPhase();
}

bool Tree::isOrphan(std::uint32_t offset) const {
    return survey_.isEntity(offset) && phases_.get(offset) == kUnseen && offset != kRootOffset;
}

OffsetMap<std::uint8_t> Tree::listedByOrphans() {
    Record::OffsetSet isRead;
    OffsetMap<std::uint8_t> isListed(0);
    survey_.forEachOffset([&](std::uint32_t set) {
        if (!isOrphan(set) || !survey_.isSet(set)) return;
        if (options_.takesOrphans && !survey_.isChild(set)) return;
        const std::uint32_t list = survey_.childrenOf(set);
        if (!survey_.isList(list) || !isRead.insert(list)) return;
        for (const std::uint32_t child : valuesOf(store_, list, findings_))
            if (child != set && survey_.isChild(child)) isListed.set(child, 1);
    });
    return isListed;
}

// Heads first, so that as much as possible stays together; what is left then stands below itself.
void Tree::growOrphans() {
    phase_ = kOrphan;
    const OffsetMap<std::uint8_t> isListed = listedByOrphans();
    survey_.forEachOffset([&](std::uint32_t offset) {
        if (isOrphan(offset) && !isListed.get(offset)) growHead(offset);
    });
    settleDeferred();
    survey_.forEachOffset([&](std::uint32_t offset) {
        if (isOrphan(offset)) growHead(offset);
        settleDeferred();
    });
    finishPhase();
    for (const Head& head : heads_)
        findings_.note(code::kUnreachable, head.offset,
                       "Nothing leads to this " + kindName(survey_.kindOf(head.offset)) + ", with " +
                           number(head.below) + " below it.");
}

// A root cannot be listed. Where orphans are to be, those below a second root stand for themselves.
void Tree::growHead(std::uint32_t offset) {
    const std::uint64_t before = seen_;
    if (options_.takesOrphans && !survey_.isChild(offset))
        see(offset);
    else
        grow(offset);
    heads_.push_back({offset, seen_ - before - 1});
}

void Tree::grow(std::uint32_t top) {
    see(top);
    enter(top);
    climb();
}

void Tree::settleDeferred() {
    while (!deferred_.empty()) {
        const auto [set, target] = deferred_.front();
        deferred_.pop_front();
        if (survey_.isList(target))
            enterList(set, target);
        else if (phases_.get(target) == kUnseen)
            take(set, target);
        else
            surplus_.push_back({set, target});
        climb();
    }
}

void Tree::climb() {
    while (!frames_.empty()) {
        Frame& frame = frames_.back();
        if (frame.next == frame.children.size())
            frames_.pop_back();
        else if (frame.isAdopting && phases_.get(frame.children[frame.next]) != kUnseen)
            ++frame.next;
        else
            visit(frame.set, frame.children[frame.next++]);
    }
}

void Tree::see(std::uint32_t offset) {
    phases_.set(offset, phase_);
    unclaimed_.push_back(offset);
    ++seen_;
}

void Tree::enter(std::uint32_t set) {
    if (!survey_.isSet(set)) return;
    const std::uint32_t list = survey_.childrenOf(set);
    if (isListLost(set)) {
        if (list != IDataStore::BADOFF)
            report(code::kChildren, set,
                   "Its children are to be listed in record " + number(list) + ", which is no list.");
        mark(set, kListLost);
        if (options_.adopts) adopt(set);
    } else if (list == IDataStore::BADOFF) {
        return;
    } else if (isListOfOther(set) && phases_.get(listClaims_.get(list)) == kUnseen) {
        deferred_.push_back({set, list});
    } else if (isDefaults_.get(list) && listClaims_.get(list) == IDataStore::BADOFF) {
        doubtful_.push_back({set, list});
    } else {
        enterList(set, list);
    }
}

void Tree::enterList(std::uint32_t set, std::uint32_t list) {
    if (ownerOf(list) != IDataStore::BADOFF) {
        report(code::kShared, set,
               "Its list of children, record " + number(list) + ", belongs to " + number(ownerOf(list)) +
                   " as well.");
        mark(set, kListLost);
        if (options_.adopts) adopt(set);
        return;
    }
    owners_.set(list, set);
    frames_.push_back({set, valuesOf(store_, list, findings_), 0, false});
}

// Those of equal names are left out: operations that were refused leave copies behind.
void Tree::adopt(std::uint32_t set) {
    std::vector<std::uint32_t> children;
    auto each = std::lower_bound(adoptable_.begin(), adoptable_.end(), Edge{set, 0});
    std::vector<std::pair<std::uint64_t, std::uint32_t>> byName;
    for (; each != adoptable_.end() && each->first == set; ++each)
        byName.push_back({survey_.nameHashOf(each->second), each->second});
    std::sort(byName.begin(), byName.end());
    const auto last = std::unique(byName.begin(), byName.end(),
                                  [](const auto& a, const auto& b) { return a.first == b.first; });
    for (auto kept = byName.begin(); kept != last; ++kept) children.push_back(kept->second);
    std::sort(children.begin(), children.end());
    frames_.push_back({set, std::move(children), 0, true});
}

void Tree::visit(std::uint32_t set, std::uint32_t child) {
    const bool isAdopting = frames_.back().isAdopting;
    if (survey_.kindOf(child) == Record::kNoKind) {
        report(code::kChildDangling, set, "It lists record " + number(child) + ", which is not there.");
        mark(set, kListChanged);
    } else if (!survey_.isChild(child)) {
        report(code::kChildKind, set,
               "It lists record " + number(child) + ", a " + kindName(survey_.kindOf(child)) + ".");
        mark(set, kListChanged);
    } else if (child == kRootOffset || phases_.get(child) != kUnseen) {
        surplus_.push_back({set, child});
    } else if (survey_.parentOf(child) != set && isClaimed_.get(child)) {
        deferred_.push_back({set, child});
    } else {
        if (isAdopting) adopted_.push_back({set, child});
        take(set, child);
    }
}

void Tree::take(std::uint32_t set, std::uint32_t child) {
    see(child);
    owners_.set(child, set);
    const std::uint32_t parent = survey_.parentOf(child);
    if (parent != set) {
        report(code::kParent, child,
               parent == IDataStore::BADOFF
                   ? "It names no parent, and " + number(set) + " lists it."
                   : "It names " + number(parent) + " as its parent, and " + number(set) + " lists it.");
        mark(child, kParentWrong);
    }
    enter(child);
}

void Tree::reportSurplus() {
    if (surplus_.empty()) return;
    const Ancestry ancestry(*this);
    for (const auto& [set, child] : surplus_) {
        mark(set, kListChanged);
        if (ancestry.isAbove(child, set))
            report(code::kCycle, child, "It is listed below itself, by " + number(set) + ".");
        else
            report(code::kListedTwice, child,
                   "It is listed by " + number(set) + " as well as by " + number(ownerOf(child)) + ".");
    }
    surplus_.clear();
}

// Lists that a table has for its defaults, and in which nobody finds the parent, are children's last of all.
void Tree::finishPhase() {
    claimSatellites();
    while (!doubtful_.empty()) {
        const auto [set, list] = doubtful_.front();
        doubtful_.pop_front();
        enterList(set, list);
        climb();
        settleDeferred();
        claimSatellites();
    }
    reportSurplus();
}

void Tree::claimSatellites() {
    for (; !unclaimed_.empty(); unclaimed_.pop_front()) {
        const std::uint32_t entity = unclaimed_.front();
        claim(entity, survey_.localeOf(entity), 5, code::kLocale, kLocaleLost);
        claim(entity, survey_.defaultsOf(entity), 3, code::kDefaults, kDefaultsLost);
    }
}

void Tree::claim(std::uint32_t entity, std::uint32_t target, std::uint8_t kind, const char* code,
                 std::uint8_t bit) {
    if (target == IDataStore::BADOFF) return;
    const std::string field = kind == 5 ? "Its display names" : "Its defaults";
    if (survey_.kindOf(target) != kind) {
        report(code, entity,
               field + " are to be in record " + number(target) + ", which is no " + kindName(kind) +
                   " record.");
        mark(entity, bit);
    } else if (ownerOf(target) != IDataStore::BADOFF) {
        report(code::kShared, entity,
               field + ", record " + number(target) + ", belong to " + number(ownerOf(target)) + " as well.");
        mark(entity, bit);
    } else {
        owners_.set(target, entity);
    }
}

void Tree::noteUnclaimed() {
    survey_.forEachOffset([&](std::uint32_t offset) {
        const std::uint8_t kind = survey_.kindOf(offset);
        if ((kind == 3 || kind == 5) && ownerOf(offset) == IDataStore::BADOFF)
            findings_.note(code::kUnreachable, offset,
                           "Nothing leads to this " + kindName(kind) + " record.");
    });
}

void Tree::mark(std::uint32_t offset, std::uint8_t bit) {
    marks_.set(offset, static_cast<std::uint8_t>(marks_.get(offset) | bit));
}

void Tree::report(const char* code, std::uint32_t offset, std::string text) {
    const bool isError = phase_ == kReachable || options_.takesOrphans;
    findings_.add(isError ? Severity::error : Severity::note, code, offset, std::move(text));
}

}  // namespace norvane::platform::data::integrity
