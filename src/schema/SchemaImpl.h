// The answer to one request for types.
#pragma once

#include <vector>

#include "norvane/platform/data/metadata/ISchema.h"
#include "schema/Layout.h"

namespace norvane::platform::data::Schema {

// The layouts that were found, in the order of the names asked for. They belong to the locator.
class SchemaImpl final : public metadata::ISchema {
  public:
    SchemaImpl() = default;
    explicit SchemaImpl(std::vector<Layout*> layouts) : layouts_(std::move(layouts)) {}

    // Null for null and for a schema of somebody else's making.
    static const SchemaImpl* of(const metadata::ISchema* schema) {
        return dynamic_cast<const SchemaImpl*>(schema);
    }

    // Null without layouts, which no locator gives out.
    WideString name() override;
    metadata::IStructLayout* layout() override;

    const std::vector<Layout*>& layouts() const { return layouts_; }
    // No layout has a member.
    bool isBlank() const;

  private:
    std::vector<Layout*> layouts_;
};

}  // namespace norvane::platform::data::Schema
