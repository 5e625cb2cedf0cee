#include "model/Subtree.h"

#include <cstring>
#include <deque>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "model/ChildOrder.h"
#include "model/Open.h"
#include "records/OffsetSet.h"

namespace norvane::platform::data::Metadata {

namespace field = Record::field;

namespace {

constexpr std::uint8_t kPrimitive = static_cast<std::uint8_t>(Record::Kind::primitive);
constexpr std::uint8_t kTable = static_cast<std::uint8_t>(Record::Kind::table);

// Where a walk stands among the children of one entity.
struct Level {
    std::uint32_t offset;
    std::vector<std::uint32_t> children;
    std::size_t next = 0;

    bool isDone() const { return next == children.size(); }
    std::uint32_t takeNext() { return children[next++]; }
};

Satellites satellitesOf(const Record::View& entity) {
    Satellites known;
    known.locale = entity.load(field::locale);
    if (entity.kind() != kPrimitive) known.list = entity.load(field::children);
    if (entity.kind() == kTable) known.defaults = entity.load(field::defaults);
    return known;
}

// An object opened to ask would count itself in. A primitive may then be open exactly once, so a count that
// wrapped refuses; a set may be open at most once.
bool isClosed(const Record::View& entity) {
    const std::uint32_t counted = entity.load(field::openCount) + 1;
    return entity.kind() == kPrimitive ? counted == 1 : counted <= 1;
}

}  // namespace

bool isSubtreeClosed(IDataStore* store, std::uint32_t offset) {
    Record::OffsetSet met;
    std::vector<std::uint32_t> left{offset};
    while (!left.empty()) {
        const std::uint32_t current = left.back();
        left.pop_back();
        const Record::Snapshot entity(store, current);
        if (!entity->isWholeChild() || !met.insert(current)) continue;
        if (!isClosed(*entity)) return false;
        for (std::uint32_t child : listedChildren(store, satellitesOf(*entity).list)) left.push_back(child);
    }
    return true;
}

namespace {

// The children that can be deleted, in the order in which that is done.
std::vector<std::uint32_t> childrenToErase(IDataStore* store, std::uint32_t listOffset) {
    std::vector<std::uint32_t> offsets;
    std::vector<std::u16string> names;
    for (std::uint32_t child : listedChildren(store, listOffset)) {
        const Record::Snapshot entity(store, child);
        if (!Record::isChildKind(entity->kind())) continue;
        offsets.push_back(child);
        names.push_back(entity->name());
    }
    const std::vector<std::u16string_view> views(names.begin(), names.end());
    std::vector<std::uint32_t> ordered;
    ordered.reserve(offsets.size());
    for (std::uint32_t index : deletionOrder(views)) ordered.push_back(offsets[index]);
    return ordered;
}

// One entity whose satellites are being removed; `list` and `defaults` follow its children.
struct ErasedLevel {
    Level at;
    std::uint32_t list;
    std::uint32_t defaults;
};

class Eraser {
  public:
    explicit Eraser(IDataStore* store) : store_(store) {}

    void eraseBelow(std::uint32_t offset) {
        enter(offset);
        run();
    }

    void eraseList(std::uint32_t owner, std::uint32_t listOffset) {
        descend(owner, listOffset, IDataStore::BADOFF);
        run();
    }

  private:
    void removeIf(std::uint32_t offset, Record::Kind kind) {
        if (Record::Snapshot(store_, offset)->isWhole(kind)) store_->remove(offset);
    }

    // False for what has nothing below it: a record that is not there, or is cut short.
    bool enter(std::uint32_t offset) {
        Satellites known;
        {
            const Record::Snapshot entity(store_, offset);
            if (!entity->isWholeChild()) return false;
            known = satellitesOf(*entity);
        }
        removeIf(known.locale, Record::Kind::locale);
        descend(offset, known.list, known.defaults);
        return true;
    }

    void descend(std::uint32_t offset, std::uint32_t list, std::uint32_t defaults) {
        met_.insert(offset);
        levels_.push_back({{offset, childrenToErase(store_, list)}, list, defaults});
    }

    // The record at the top stays.
    void leave() {
        const ErasedLevel& level = levels_.back();
        removeIf(level.list, Record::Kind::offsets);
        removeIf(level.defaults, Record::Kind::offsets);
        const std::uint32_t offset = level.at.offset;
        levels_.pop_back();
        if (!levels_.empty()) store_->remove(offset);
    }

    // One that stands above itself, or in two lists, was met before.
    void visit(std::uint32_t child) {
        if (met_.insert(child) && !enter(child)) store_->remove(child);
    }

    void run() {
        while (!levels_.empty()) {
            Level& at = levels_.back().at;
            if (at.isDone())
                leave();
            else
                visit(at.takeNext());
        }
    }

    IDataStore* store_;
    Record::OffsetSet met_;
    std::vector<ErasedLevel> levels_;
};

}  // namespace

void eraseSubtree(IDataStore* store, std::uint32_t offset) { Eraser(store).eraseBelow(offset); }

void eraseListedChildren(IDataStore* store, std::uint32_t owner, std::uint32_t listOffset) {
    Eraser(store).eraseList(owner, listOffset);
}

namespace {

// Appends the bytes of an entity as one that nobody has open and that leads nowhere yet.
void appendCopy(Record::Base& copy, std::uint8_t addedFlags, const std::uint32_t* parent) {
    const std::uint8_t kind = copy.view().kind();
    const auto flags = static_cast<std::uint8_t>(copy.view().load(field::flags) | addedFlags);
    copy.set(field::openCount, std::uint32_t{0});
    copy.set(field::flags, flags);
    copy.set(field::locale, std::uint32_t{IDataStore::BADOFF});
    if (parent) copy.set(field::parent, *parent);
    if (kind != kPrimitive) copy.set(field::children, std::uint32_t{IDataStore::BADOFF});
    if (kind == kTable) copy.set(field::defaults, std::uint32_t{IDataStore::BADOFF});
    copy.commit();
}

// Copies a primitive that refers to nothing, as most members of classes are. False, with nothing copied, for
// any other entity.
bool clonePlain(IDataStore* source, std::uint32_t offset, Record::Base& copy, const CloneChanges& changes) {
    {
        const Record::Snapshot entity(source, offset);
        const bool isPlain = entity->load(field::locale) == IDataStore::BADOFF;
        if (!isPlain || !entity->isWhole(Record::Kind::primitive)) return false;
        copy.allocate(entity->size());
        std::memcpy(copy.bytes(), entity->bytes(), entity->size());
    }
    appendCopy(copy, changes.addedFlags, changes.setsParent ? &changes.parent : nullptr);
    return true;
}

// One entity being copied: its bytes with all that is known of the copy so far. What the source refers to is
// BADOFF in it until that is copied too, so that a copy left unfinished leads nowhere.
struct CopiedLevel {
    explicit CopiedLevel(IDataStore* target) : copy(target) {}

    Level at{IDataStore::BADOFF, {}};
    Record::Base copy;
    std::optional<Record::Offsets> list;
    std::vector<std::uint32_t> copies;
    std::uint32_t defaults = IDataStore::BADOFF;
    bool isChanged = false;
};

class Cloner {
  public:
    Cloner(IDataStore* source, IDataStore* target, const CloneChanges& changes)
        : source_(source), target_(target), changes_(changes) {}

    // `known` is null where the record says what it refers to.
    std::uint32_t clone(std::uint32_t offset, const Satellites* known = nullptr) {
        if (!enter(offset, changes_.setsParent ? &changes_.parent : nullptr, known))
            return IDataStore::BADOFF;
        const std::uint32_t copy = levels_.back().copy.offset();
        while (!levels_.empty()) {
            if (levels_.back().at.isDone())
                leave();
            else
                step(levels_.back());
        }
        return copy;
    }

  private:
    // A value that leads to no child is kept as it is; one that leads to where the walk was before is left
    // out.
    void step(CopiedLevel& level) {
        const std::uint32_t child = level.at.takeNext();
        const std::uint32_t parent = level.copy.offset();
        if (!Record::isChildKind(Record::kindOf(source_, child)))
            level.copies.push_back(child);
        else if (enter(child, &parent, nullptr))
            level.copies.push_back(levels_.back().copy.offset());
    }

    bool enter(std::uint32_t offset, const std::uint32_t* parent, const Satellites* known) {
        Satellites satellites;
        CopiedLevel& level = levels_.emplace_back(target_);
        level.at.offset = offset;
        {
            const Record::Snapshot entity(source_, offset);
            if (!entity->isWholeChild() || !met_.insert(offset)) {
                levels_.pop_back();
                return false;
            }
            satellites = known ? *known : satellitesOf(*entity);
            level.copy.allocate(entity->size());
            std::memcpy(level.copy.bytes(), entity->bytes(), entity->size());
        }
        level.defaults = satellites.defaults;
        appendCopy(level.copy, changes_.addedFlags, parent);
        refer(level, field::locale, cloneSatellite(satellites.locale, Record::Kind::locale));
        startList(level, satellites.list);
        return true;
    }

    // The record's bytes, if it is of that kind, as a new record of the target; BADOFF if not.
    std::uint32_t cloneSatellite(std::uint32_t offset, Record::Kind kind) {
        const Record::Base record(source_, offset);
        if (!record.view().isWhole(kind)) return IDataStore::BADOFF;
        return target_->append(record.view().bytes(), record.size());
    }

    void startList(CopiedLevel& level, std::uint32_t list) {
        if (!Record::Snapshot(source_, list)->isWhole(Record::Kind::offsets)) return;
        level.at.children = listedChildren(source_, list);
        level.list.emplace(target_);
        refer(level, field::children, level.list->offset());
    }

    static void refer(CopiedLevel& level, Record::U32 field, std::uint32_t offset) {
        if (offset == IDataStore::BADOFF) return;
        level.copy.set(field, offset);
        level.isChanged = true;
    }

    void leave() {
        CopiedLevel& level = levels_.back();
        if (level.list) level.list->append(level.copies.data(), level.copies.size());
        refer(level, field::defaults, cloneSatellite(level.defaults, Record::Kind::offsets));
        if (level.isChanged) level.copy.commit();
        levels_.pop_back();
    }

    IDataStore* source_;
    IDataStore* target_;
    const CloneChanges& changes_;
    Record::OffsetSet met_;
    std::deque<CopiedLevel> levels_;  // a level stays where it is while deeper ones come
};

}  // namespace

std::uint32_t cloneSubtree(IDataStore* source, std::uint32_t offset, IDataStore* target,
                           const CloneChanges& changes) {
    Record::Base plain(target);
    if (clonePlain(source, offset, plain, changes)) return plain.offset();
    return Cloner(source, target, changes).clone(offset);
}

std::uint32_t cloneSubtree(IDataStore* source, std::uint32_t offset, const Satellites& known,
                           IDataStore* target) {
    const CloneChanges unchanged;
    return Cloner(source, target, unchanged).clone(offset, &known);
}

}  // namespace norvane::platform::data::Metadata
