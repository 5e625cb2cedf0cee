#pragma once

#include <string_view>

#include "impl/PropertyImpl.h"
#include "model/Table.h"
#include "norvane/platform/data/metadata/IPropertyFilter.h"
#include "norvane/platform/data/metadata/ITable.h"

namespace norvane::platform::data {

class DesignTableImpl final : public PropertyImpl, public metadata::ITable {
  public:
    class DesignFilter;

    explicit DesignTableImpl(Owned<Design::Table> item) noexcept : PropertyImpl(std::move(item)) {}

    // A handle on a new table, listed in `parent` unless it has a child of that name. The schema may be null.
    static SharedPtr<metadata::ITable> make(Metadata::Set& parent, std::u16string_view name,
                                            const metadata::ISchema* schema);

    metadata::IProperty* property() override { return this; }
    SharedPtr<metadata::IProperty> find(WideString path) override;
    SharedPtr<metadata::IPropertyFilter> properties() override;
    bool conforms(metadata::ISchema* schema) override;
    SharedPtr<metadata::IPrimitive> makeByDimension(WideString name, std::uint32_t key) override;
    SharedPtr<metadata::IPrimitive> makePrimitive(WideString name, std::uint32_t type,
                                                  std::uint32_t unit) override;
    SharedPtr<metadata::ITable> makeTable(WideString name, metadata::ISchema* schema) override;
    bool remove(WideString name) override;
    std::uint32_t count() override;
    SharedPtr<metadata::IProperty> at(std::uint32_t index) override;
    bool addDefault(std::uint32_t unit, std::uint32_t type) override;
    std::uint32_t defaultCount() override;
    std::uint32_t defaultDimension(std::uint32_t index) override;
    std::uint32_t defaultType(std::uint32_t key) override;
    std::uint32_t defaultUnit(std::uint32_t key) override;
    WideString className() override;

  private:
    Design::Table& table() const { return static_cast<Design::Table&>(item()); }
    std::uint32_t ownOrParents(std::uint32_t (Design::Table::*ask)(std::int32_t key) const,
                               std::uint32_t key);
};

// A cursor over the members of a table. It keeps a table object of its own open, whose count of children is
// the end; where a position leads, the list in the store says at each step.
class DesignTableImpl::DesignFilter final : public metadata::IPropertyFilter, public Pooled {
  public:
    DesignFilter(IDataStore* store, std::uint32_t table);

    bool next() override;
    bool previous() override;
    SharedPtr<metadata::IProperty> value() override;

  private:
    bool skipForward();
    bool skipBackward();
    bool isAtProperty();

    IDataStore* store_;
    Owned<Design::Table> table_;
    std::uint32_t cursor_ = 0;
    std::uint32_t limit_ = 0;
};

}  // namespace norvane::platform::data
