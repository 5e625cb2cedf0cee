#include "integrity/Mend.h"

#include <algorithm>
#include <optional>
#include <unordered_set>

#include "integrity/Findings.h"
#include "integrity/Paths.h"
#include "integrity/RecordCheck.h"
#include "integrity/Survey.h"
#include "integrity/Tree.h"
#include "norvane/platform/data/structure/ContainerKind.h"
#include "records/OffsetSet.h"
#include "records/Records.h"
#include "records/StoreGuard.h"

namespace norvane::platform::data::integrity {

using namespace Record;

namespace {

std::string number(std::uint64_t value) { return std::to_string(value); }

void put(std::string& bytes, U32 field, std::uint32_t value) {
    std::memcpy(bytes.data() + field.position, &value, sizeof value);
}

// An entity of that kind without flags, with its name alone.
std::string newEntity(Kind kind, std::u16string_view name) {
    std::string bytes(formatOf(kind).fixedSize, '\0');
    bytes[0] = static_cast<char>(kind);
    put(bytes, field::parent, IDataStore::BADOFF);
    put(bytes, field::locale, IDataStore::BADOFF);
    put(bytes, field::children, IDataStore::BADOFF);
    put(bytes, nameSizeField(kind), checkedSize(storedSize(name)));
    bytes.append(reinterpret_cast<const char*>(name.data()), name.size() * 2);
    return bytes.append(2, '\0');
}

std::uint32_t appendList(IDataStore& store, const std::vector<std::uint32_t>& values) {
    std::string bytes(1, static_cast<char>(Kind::offsets));
    bytes.append(reinterpret_cast<const char*>(values.data()), values.size() * 4);
    return store.append(bytes.data(), checkedSize(bytes.size()));
}

void writeList(IDataStore& store, std::uint32_t list, const std::vector<std::uint32_t>& values) {
    std::string bytes(1, static_cast<char>(Kind::offsets));
    bytes.append(reinterpret_cast<const char*>(values.data()), values.size() * 4);
    store.write(list, bytes.data(), checkedSize(bytes.size()), true);
}

// Gives each unsound record bytes that are, or takes it away.
void mendRecords(IDataStore& store, const std::vector<std::uint32_t>& unsound) {
    for (const std::uint32_t offset : unsound) {
        std::optional<std::string> bytes;
        {
            const Snapshot record(&store, offset);
            if (isWholeRecord(*record)) bytes = normalForm(*record);
        }
        if (bytes)
            store.write(offset, bytes->data(), checkedSize(bytes->size()), true);
        else
            store.remove(offset);
    }
}

// The changes that a tree asks for.
class Mending {
  public:
    Mending(IDataStore& store, const Survey& survey, const Tree& tree, bool takesOrphans, Findings& findings)
        : store_(store), survey_(survey), tree_(tree), takesOrphans_(takesOrphans), findings_(findings) {}

    void run() {
        survey_.forEachOffset([&](std::uint32_t offset) {
            if (tree_.marksOf(offset) != 0 && (takesOrphans_ || tree_.isReachable(offset))) mend(offset);
        });
        relist();
    }

    // Puts the heads below a new group.
    void recover(const std::u16string& name) {
        std::vector<std::uint32_t> heads;
        for (const Tree::Head& head : tree_.heads())
            if (survey_.isChild(head.offset)) heads.push_back(head.offset);
        if (heads.empty() || !survey_.isSet(kRootOffset)) return;
        const std::uint32_t group = addGroup(name);
        storeField(&store_, group, field::children, appendList(store_, heads));
        for (const std::uint32_t head : heads) {
            storeField(&store_, head, field::parent, group);
            const std::string path = utf8Of(name) + "." + nameOf(store_, head);
            findings_.all.push_back({Severity::note, code::kRecovered, head, shortened(path),
                                     "Nothing led to it. It was put below a group for such."});
        }
    }

  private:
    void mend(std::uint32_t entity) {
        const std::uint8_t marks = tree_.marksOf(entity);
        if (marks & Tree::kListLost) storeField(&store_, entity, field::children, IDataStore::BADOFF);
        if (marks & Tree::kListChanged) filterList(entity);
        if (marks & Tree::kLocaleLost) storeField(&store_, entity, field::locale, IDataStore::BADOFF);
        if (marks & Tree::kDefaultsLost) storeField(&store_, entity, field::defaults, IDataStore::BADOFF);
        if (marks & Tree::kParentWrong) storeField(&store_, entity, field::parent, tree_.ownerOf(entity));
    }

    void filterList(std::uint32_t set) {
        const std::uint32_t list = survey_.childrenOf(set);
        if (!survey_.isList(list) || tree_.ownerOf(list) != set) return;
        OffsetSet met;
        std::vector<std::uint32_t> kept;
        for (const std::uint32_t child : valuesOf(store_, list, findings_))
            if (survey_.isChild(child) && tree_.ownerOf(child) == set && met.insert(child))
                kept.push_back(child);
        writeList(store_, list, kept);
    }

    // Gives new lists to sets that had lost theirs.
    void relist() {
        std::vector<Tree::Edge> adopted = tree_.adopted();
        std::sort(adopted.begin(), adopted.end());
        for (std::size_t i = 0; i < adopted.size();) {
            const std::uint32_t set = adopted[i].first;
            std::vector<std::uint32_t> children;
            for (; i < adopted.size() && adopted[i].first == set; ++i) children.push_back(adopted[i].second);
            if (!takesOrphans_ && !tree_.isReachable(set)) continue;
            storeField(&store_, set, field::children, appendList(store_, children));
            findings_.note(code::kRelisted, set,
                           "Its list was lost. It got a new one, of the " + number(children.size()) +
                               " that name it as their parent.");
        }
    }

    std::uint32_t addGroup(const std::u16string& name) {
        std::string bytes = newEntity(Kind::container, name);
        bytes[field::containerKind.position] = static_cast<char>(structure::kGroup);
        put(bytes, field::parent, kRootOffset);
        const std::uint32_t group = store_.append(bytes.data(), checkedSize(bytes.size()));
        const std::uint32_t list = Snapshot(&store_, kRootOffset)->load(field::children);
        if (list == IDataStore::BADOFF)
            storeField(&store_, kRootOffset, field::children, appendList(store_, {group}));
        else
            store_.extend(list, &group, sizeof group);
        return group;
    }

    IDataStore& store_;
    const Survey& survey_;
    const Tree& tree_;
    bool takesOrphans_;
    Findings& findings_;
};

std::unordered_set<std::u16string> namesBelowRoot(IDataStore& store) {
    Findings ignored;
    std::unordered_set<std::u16string> names;
    const std::uint32_t list = Snapshot(&store, kRootOffset)->load(field::children);
    for (const std::uint32_t child : valuesOf(store, list, ignored))
        names.insert(Snapshot(&store, child)->name());
    return names;
}

std::u16string freeName(IDataStore& store, const std::u16string& name) {
    const std::unordered_set<std::u16string> taken = namesBelowRoot(store);
    std::u16string free = name;
    for (std::uint32_t i = 2; taken.count(free) != 0; ++i) {
        free = name + u'-';
        for (const char digit : number(i)) free += static_cast<char16_t>(digit);
    }
    return free;
}

void addRemedies(std::vector<Finding>& findings) {
    for (Finding& each : findings)
        if (const std::string remedy = remedyOf(each.code); !remedy.empty()) each.text += " " + remedy;
}

void keepErrors(std::vector<Finding>& findings) {
    std::erase_if(findings, [](const Finding& each) {
        return each.severity != Severity::error && each.code != code::kRelisted &&
               each.code != code::kRecovered;
    });
}

// A record 0 that is no entity gives way to a root.
bool makeRoot(IDataStore& store, Findings& findings) {
    const bool isEntity = Snapshot(&store, kRootOffset)->isWholeEntity();
    if (isEntity || store.size() == 0) return false;
    findings.error(code::kRootMissing, kRootOffset, "Record 0 is no root, nor any other entity.");
    const std::string root = newRoot();
    store.write(kRootOffset, root.data(), checkedSize(root.size()), true);
    return true;
}

}  // namespace

std::string newRoot() { return newEntity(Kind::root, u"root"); }

std::vector<Finding> mend(IDataStore& store, const MendOptions& options) {
    const StoreGuard guard(&store);
    const bool takesOrphans = !options.recovered.empty();
    Findings findings;
    const bool isRootNew = makeRoot(store, findings) || options.isRootNew;
    mendRecords(store, Survey(store, findings).unsound());

    Findings ofRecords;  // none is left that matters
    const Survey survey(store, ofRecords);
    const Tree tree(store, survey, {true, isRootNew, takesOrphans}, findings);
    keepErrors(findings.all);
    fillPaths(store, tree, findings.all);
    const std::size_t told = findings.all.size();
    Mending mending(store, survey, tree, takesOrphans, findings);
    mending.run();
    std::vector<Finding> later(findings.all.begin() + static_cast<std::ptrdiff_t>(told), findings.all.end());
    fillPaths(store, tree, later);
    std::move(later.begin(), later.end(), findings.all.begin() + static_cast<std::ptrdiff_t>(told));
    if (takesOrphans) mending.recover(freeName(store, options.recovered));
    keepErrors(findings.all);
    addRemedies(findings.all);
    findings.sort();
    return std::move(findings.all);
}

}  // namespace norvane::platform::data::integrity
