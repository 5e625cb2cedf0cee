// How the records of a store hang together: who lists whom, which record belongs to which entity, and where
// they contradict each other.
#pragma once

#include <cstdint>
#include <deque>
#include <utility>
#include <vector>

#include "integrity/Findings.h"
#include "integrity/OffsetMap.h"
#include "integrity/Survey.h"

namespace norvane::platform::data::integrity {

inline constexpr std::uint32_t kRootOffset = 0;

struct TreeOptions {
    // A set whose list is lost gets those that name it as their parent.
    bool adopts = false;
    // The root has just been made, so that its list counts as lost.
    bool isRootNew = false;
    // What nothing leads to is to be listed: contradictions in it are errors, not notes.
    bool takesOrphans = false;
};

// A tree of owners, whatever the records say: each entity is entered once, from the root first and from what
// nothing leads to next. Where several lists name an entity it belongs to the one of its parent, if that can
// be reached, else to the first that was met. A list record goes to the entity that those listed in it name
// as their parent.
class Tree {
  public:
    using Edge = std::pair<std::uint32_t, std::uint32_t>;  // who lists, who is listed

    // What is to be changed about an entity, as bits.
    static constexpr std::uint8_t kListChanged = 1;
    static constexpr std::uint8_t kListLost = 2;
    static constexpr std::uint8_t kLocaleLost = 4;
    static constexpr std::uint8_t kDefaultsLost = 8;
    static constexpr std::uint8_t kParentWrong = 16;

    // An entity that nothing leads to, and how many are below it.
    struct Head {
        std::uint32_t offset;
        std::uint64_t below;
    };

    Tree(IDataStore& store, const Survey& survey, TreeOptions options, Findings& findings);

    bool isReachable(std::uint32_t offset) const { return phases_.get(offset) == kReachable; }
    // The set that lists an entity, or the entity that a list or locale record belongs to; BADOFF if none.
    std::uint32_t ownerOf(std::uint32_t offset) const { return owners_.get(offset); }
    std::uint8_t marksOf(std::uint32_t offset) const { return marks_.get(offset); }
    const std::vector<Head>& heads() const { return heads_; }
    // Who was put below sets that had lost their lists, in the order in which they were met.
    const std::vector<Edge>& adopted() const { return adopted_; }
    // All that are listed, ordered by the set that lists them, then by offset.
    std::vector<Edge> edges() const;

  private:
    enum Phase : std::uint8_t { kUnseen, kReachable, kOrphan };

    struct Frame {
        std::uint32_t set;
        std::vector<std::uint32_t> children;
        std::size_t next;
        bool isAdopting;
    };

    void assignLists();
    void findAdoptable();
    void growFromRoot();
    void growOrphans();
    void growHead(std::uint32_t offset);
    bool isOrphan(std::uint32_t offset) const;
    OffsetMap<std::uint8_t> listedByOrphans();

    void grow(std::uint32_t top);
    void settleDeferred();
    void climb();
    void see(std::uint32_t offset);
    void enter(std::uint32_t set);
    void enterList(std::uint32_t set, std::uint32_t list);
    void adopt(std::uint32_t set);
    void visit(std::uint32_t set, std::uint32_t child);
    void take(std::uint32_t set, std::uint32_t child);
    bool isListLost(std::uint32_t set) const;
    bool isListOfOther(std::uint32_t set) const;
    void reportSurplus();

    void finishPhase();
    void claimSatellites();
    void claim(std::uint32_t entity, std::uint32_t target, std::uint8_t kind, const char* code,
               std::uint8_t mark);
    void noteUnclaimed();

    void mark(std::uint32_t offset, std::uint8_t bit);
    void report(const char* code, std::uint32_t offset, std::string text);

    IDataStore& store_;
    const Survey& survey_;
    TreeOptions options_;
    Findings& findings_;
    Phase phase_ = kReachable;

    OffsetMap<std::uint8_t> phases_{kUnseen};
    OffsetMap<std::uint8_t> marks_{0};
    OffsetMap<std::uint8_t> isClaimed_{0};   // whether an entity stands in the list of its parent
    OffsetMap<std::uint8_t> isDefaults_{0};  // whether a table has a list for its defaults
    OffsetMap<std::uint32_t> owners_;
    OffsetMap<std::uint32_t> listClaims_;  // which set a list record is meant for
    std::vector<Edge> adoptable_;          // by parent
    std::vector<Edge> adopted_;
    std::vector<Edge> surplus_;            // listings of entities that belong to another
    std::deque<Edge> deferred_;            // to be followed if nobody with a better claim comes
    std::deque<Edge> doubtful_;            // lists of children that look like defaults
    std::deque<std::uint32_t> unclaimed_;  // seen, their satellites not yet looked at
    std::vector<Frame> frames_;
    std::vector<Head> heads_;
    std::uint64_t seen_ = 0;
};

}  // namespace norvane::platform::data::integrity
