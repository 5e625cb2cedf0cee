#include "impl/ContainerFilters.h"

#include "impl/Handles.h"
#include "impl/Kinds.h"
#include "model/Open.h"

namespace norvane::platform::data {

ChildCursor::ChildCursor(IDataStore* store, std::uint32_t container, IsMember isMember)
    : store_(store), isMember_(isMember) {
    const std::uint32_t list = Record::Snapshot(store, container)->load(Record::field::children);
    offsets_ = Metadata::listedChildren(store, list);
    scanForward();
}

bool ChildCursor::next() {
    if (position_ == offsets_.size()) return false;
    ++position_;
    return scanForward();
}

bool ChildCursor::previous() {
    if (position_ == 0) return false;
    const std::size_t start = position_--;
    if (scanBackward()) return true;
    position_ = start;
    return false;
}

std::uint32_t ChildCursor::offset() const {
    return position_ < offsets_.size() ? offsets_[position_] : std::uint32_t{IDataStore::BADOFF};
}

bool ChildCursor::scanForward() {
    return underGuard(store_, [this] {
        while (position_ < offsets_.size() && !isAtMember()) ++position_;
        return position_ < offsets_.size();
    });
}

bool ChildCursor::scanBackward() {
    return underGuard(store_, [this] {
        while (position_ > 0 && !isAtMember()) --position_;
        return isAtMember();
    });
}

ContainerImpl::DesignFilter::DesignFilter(IDataStore* store, std::uint32_t container)
    : cursor_(store, container, isProperty) {}

SharedPtr<metadata::IProperty> ContainerImpl::DesignFilter::value() {
    return underGuard(cursor_.store(), [this] { return propertyHandle(cursor_.store(), cursor_.offset()); });
}

ContainerImpl::ContainerFilter::ContainerFilter(IDataStore* store, std::uint32_t container)
    : cursor_(store, container, isContainer) {}

SharedPtr<structure::IContainer> ContainerImpl::ContainerFilter::value() {
    return underGuard(cursor_.store(),
                      [this] { return facetedHandle(openContainer(cursor_.store(), cursor_.offset())); });
}

}  // namespace norvane::platform::data
