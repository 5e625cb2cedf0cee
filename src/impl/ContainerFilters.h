// Cursors over the children of a container.
#pragma once

#include <cstdint>
#include <vector>

#include "impl/ContainerImpl.h"
#include "norvane/platform/data/metadata/IPropertyFilter.h"
#include "norvane/platform/data/structure/IContainerFilter.h"

namespace norvane::platform::data {

// Steps over a copy of the list of children, as it stood in the store, and stops at records of the wanted
// kinds. It holds offsets and no objects: passing over a child costs one byte, and nothing is kept open. Its
// own steps take the guard, also the first one, which is made under the guard already.
class ChildCursor {
  public:
    using IsMember = bool (*)(std::uint8_t kind);

    // Stands on the first member, or past the end.
    ChildCursor(IDataStore* store, std::uint32_t container, IsMember isMember);

    // Both are false, and `previous` then stays where it is, when there is no further member.
    bool next();
    bool previous();

    IDataStore* store() const { return store_; }
    // The child under the cursor; BADOFF past the end.
    std::uint32_t offset() const;

  private:
    bool scanForward();
    bool scanBackward();
    bool isAtMember() const { return isMember_(Record::kindOf(store_, offsets_[position_])); }

    IDataStore* store_;
    IsMember isMember_;
    std::vector<std::uint32_t> offsets_;
    std::size_t position_ = 0;
};

class ContainerImpl::DesignFilter final : public metadata::IPropertyFilter, public Pooled {
  public:
    DesignFilter(IDataStore* store, std::uint32_t container);

    bool next() override { return cursor_.next(); }
    bool previous() override { return cursor_.previous(); }
    SharedPtr<metadata::IProperty> value() override;

  private:
    ChildCursor cursor_;
};

class ContainerImpl::ContainerFilter final : public structure::IContainerFilter, public Pooled {
  public:
    ContainerFilter(IDataStore* store, std::uint32_t container);

    bool next() override { return cursor_.next(); }
    bool previous() override { return cursor_.previous(); }
    SharedPtr<IContainer> value() override;

  private:
    ChildCursor cursor_;
};

}  // namespace norvane::platform::data
