// What the records of a store are, one by one: all that the walks over the tree need to know, so that they
// read lists and nothing else.
#pragma once

#include <cstdint>
#include <exception>
#include <new>
#include <string>
#include <vector>

#include "integrity/Findings.h"
#include "integrity/OffsetMap.h"
#include "norvane/platform/core/storage/datastore/IDataStore.h"
#include "records/Fields.h"
#include "records/View.h"

namespace norvane::platform::data::integrity {

// Stands for a record that is there and that readers pass over.
inline constexpr std::uint8_t kUnsoundKind = 0xFE;

class Survey {
  public:
    // Reads each record once.
    Survey(IDataStore& store, Findings& findings);

    std::uint64_t end() const { return end_; }
    std::uint64_t recordCount() const { return recordCount_; }
    // Records that readers pass over, or that `normalForm` would change.
    const std::vector<std::uint32_t>& unsound() const { return unsound_; }

    // `Record::kNoKind` where there is no record.
    std::uint8_t kindOf(std::uint32_t offset) const { return kinds_.get(offset); }
    bool isEntity(std::uint32_t offset) const { return Record::isEntity(kindOf(offset)); }
    bool isChild(std::uint32_t offset) const { return Record::isChildKind(kindOf(offset)); }
    bool isSet(std::uint32_t offset) const { return isEntity(offset) && kindOf(offset) != 1; }
    bool isList(std::uint32_t offset) const { return kindOf(offset) == 3; }

    // The fields of an entity; BADOFF where it has none such.
    std::uint32_t parentOf(std::uint32_t offset) const { return parents_.get(offset); }
    std::uint32_t localeOf(std::uint32_t offset) const { return locales_.get(offset); }
    std::uint32_t childrenOf(std::uint32_t offset) const { return lists_.get(offset); }
    std::uint32_t defaultsOf(std::uint32_t offset) const { return defaults_.get(offset); }
    std::uint64_t nameHashOf(std::uint32_t offset) const { return nameHashes_.get(offset); }

    // Calls `visit(offset)` for every offset up to the end.
    template <class Visit>
    void forEachOffset(Visit visit) const {
        for (std::uint64_t offset = 0; offset < end_; ++offset) visit(static_cast<std::uint32_t>(offset));
    }

  private:
    void look(IDataStore& store, std::uint32_t offset, Findings& findings);
    void note(std::uint32_t offset, const Record::View& record);

    std::uint64_t end_;
    std::uint64_t recordCount_ = 0;
    std::vector<std::uint32_t> unsound_;
    OffsetMap<std::uint8_t> kinds_;
    OffsetMap<std::uint32_t> parents_, locales_, lists_, defaults_;
    OffsetMap<std::uint64_t> nameHashes_{0};
};

// Runs `act`, which reads of the store. What it throws becomes a finding and false, save for want of memory.
template <class Act>
bool tryReading(std::uint32_t offset, Findings& findings, Act act) {
    try {
        act();
        return true;
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& failure) {
        findings.error(code::kUnreadable, offset, std::string("It cannot be read: ") + failure.what());
    } catch (...) {
        findings.error(code::kUnreadable, offset, "It cannot be read.");
    }
    return false;
}

// The values of a list record. Empty, with a finding, when the store does not give it.
std::vector<std::uint32_t> valuesOf(IDataStore& store, std::uint32_t list, Findings& findings);

}  // namespace norvane::platform::data::integrity
