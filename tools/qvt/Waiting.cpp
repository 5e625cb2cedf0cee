#include "Waiting.h"

#include <utility>

namespace qvt {

Waiting::Waiting(Waiting&& other) noexcept
    : byKey_(std::move(other.byKey_)),
      first_(std::exchange(other.first_, nullptr)),
      last_(std::exchange(other.last_, nullptr)) {}

void Waiting::put(std::string key, Placed placed) {
    auto* entry = new Entry{std::move(key), std::move(placed), last_, nullptr};
    (last_ ? last_->next : first_) = entry;
    last_ = entry;
    byKey_.emplace(entry->key, entry);
}

Placed Waiting::take(std::string_view key) {
    const auto found = byKey_.find(key);
    if (found == byKey_.end()) return {};
    Entry* entry = found->second;
    byKey_.erase(found);
    return taken(entry);
}

Placed Waiting::takeFirst() {
    const auto [begin, end] = byKey_.equal_range(first_->key);
    for (auto each = begin; each != end; ++each) {
        if (each->second != first_) continue;
        byKey_.erase(each);
        break;
    }
    return taken(first_);
}

Placed Waiting::taken(Entry* entry) {
    Placed placed = std::move(entry->placed);
    delete unlink(entry);
    return placed;
}

Waiting::Entry* Waiting::unlink(Entry* entry) {
    (entry->previous ? entry->previous->next : first_) = entry->next;
    (entry->next ? entry->next->previous : last_) = entry->previous;
    return entry;
}

}  // namespace qvt
