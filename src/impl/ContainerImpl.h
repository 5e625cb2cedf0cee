#pragma once

#include "impl/Guarded.h"
#include "impl/Pooled.h"
#include "model/Container.h"
#include "norvane/platform/data/structure/IContainer.h"

namespace norvane::platform::data {

// The one implementation of containers: a handle over one open container, which answers names, class text and
// lookups among the direct children from what it read when it was opened. Paths go on from there in the
// store. What lives and dies inside one operation is opened as transient; only what a handle keeps counts as
// open.
class ContainerImpl : public structure::IContainer, public Pooled {
  public:
    class DesignFilter;
    class ContainerFilter;

    explicit ContainerImpl(Owned<Structural::Container> item) noexcept : item_(std::move(item)) {}

    // The open object; never null. For other operations of this library that are given the handle.
    Structural::Container& item() const { return *item_; }

    WideString name() override;
    WideString path() override;
    IDataStore* store() override { return item_->store(); }
    SharedPtr<IContainer> parent() override;
    WideString className() override;
    bool isEmpty() override { return item_->childCount() == 0; }
    std::uint32_t kind() override;
    bool remove(WideString name) override;
    bool rename(WideString newName) override;
    SharedPtr<metadata::ITable> makeTable(WideString name, metadata::ISchema* schema) override;
    SharedPtr<metadata::IPrimitive> makePrimitive(WideString name, std::uint32_t type) override;
    SharedPtr<IContainer> makeContainer(std::uint32_t kind, WideString name,
                                        metadata::ISchema* schema) override;
    bool contains(WideString path) override;
    SharedPtr<IContainer> find(WideString path) override;
    SharedPtr<metadata::IProperty> findProperty(WideString path) override;
    SharedPtr<metadata::IPropertyFilter> properties() override;
    SharedPtr<structure::IContainerFilter> containers() override;
    bool conforms(WideString path, metadata::ISchema* schema, bool classOnly) override;
    bool conforms(metadata::ISchema* schema, bool classOnly) override;
    bool merge(SharedPtr<IContainer> source) override;
    bool copyTo(IDataStore* destination, WideString path) override;
    bool copy(WideString source, WideString destination, bool absolute) override;
    bool add(SharedPtr<IContainer> item) override;
    bool add(SharedPtr<metadata::IProperty> item) override;
    std::uint32_t localisedCount() override;
    WideString localeAt(std::uint32_t index) override;
    void setLocalised(WideString locale, WideString text) override;
    WideString localised(WideString locale) override;

  private:
    GuardedItem<Structural::Container> item_;
};

}  // namespace norvane::platform::data
