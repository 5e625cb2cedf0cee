#pragma once

#include "impl/Guarded.h"
#include "impl/Pooled.h"
#include "model/Item.h"
#include "norvane/platform/data/metadata/IProperty.h"

namespace norvane::platform::data {

// What handles on primitives and on tables have in common: an open item and what can be asked of any
// property.
class PropertyImpl : public metadata::IProperty, public Pooled {
  public:
    // The open object; never null. For other operations of this library that are given the handle.
    Metadata::Item& item() const { return *item_; }

    WideString name() override;
    WideString path() override;
    IDataStore* store() override { return item_->store(); }
    std::uint32_t kind() override;
    bool rename(WideString newName) override;
    SharedPtr<metadata::ITable> parent() override;
    std::uint32_t localisedCount() override;
    WideString localeAt(std::uint32_t index) override;
    void setLocalised(WideString locale, WideString text) override;
    WideString localised(WideString locale) override;
    std::uint8_t flags() override;
    void setFlags(std::uint8_t bits) override;
    void clearFlags(std::uint8_t bits) override;

  protected:
    explicit PropertyImpl(Owned<Metadata::Item> item) noexcept : item_(std::move(item)) {}

  private:
    GuardedItem<Metadata::Item> item_;
};

}  // namespace norvane::platform::data
