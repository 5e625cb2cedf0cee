// Going up from an entity.
#pragma once

#include <cstdint>
#include <optional>

#include "records/Records.h"

namespace norvane::platform::data::Metadata {

// Stands on one record after the other, each the parent that the one before names. In a damaged store parents
// can form a ring; the walk then ends (Brent's method: no memory of the way is needed).
class ParentWalk {
  public:
    ParentWalk(IDataStore* store, std::uint32_t start) : store_(store), teleport_(start) { stand(start); }

    bool isAtEntity() const { return !ended_ && isWholeEntity(); }
    bool isAtChildKind() const { return isAtEntity() && Record::isChildKind((*record_)->kind()); }
    std::uint32_t offset() const { return offset_; }
    // Valid until the store changes or the walk goes on.
    const Record::Snapshot& record() const { return *record_; }
    std::uint32_t parent() const { return (*record_)->load(Record::field::parent); }

    // Goes on to `parent()`, which the caller has read ahead of any change of the store.
    void upTo(std::uint32_t parent) {
        stand(parent);
        if (offset_ == teleport_) {
            ended_ = true;
        } else if (++steps_ == limit_) {
            teleport_ = offset_;
            steps_ = 0;
            limit_ *= 2;
        }
    }

  private:
    void stand(std::uint32_t offset) {
        offset_ = offset;
        record_.emplace(store_, offset);
    }
    bool isWholeEntity() const {
        const std::uint8_t kind = (*record_)->kind();
        return Record::isEntity(kind) && (*record_)->isWhole(static_cast<Record::Kind>(kind));
    }

    IDataStore* store_;
    std::uint32_t offset_ = 0;
    std::uint32_t teleport_;
    std::uint64_t steps_ = 0;
    std::uint64_t limit_ = 1;
    std::optional<Record::Snapshot> record_;
    bool ended_ = false;
};

}  // namespace norvane::platform::data::Metadata
