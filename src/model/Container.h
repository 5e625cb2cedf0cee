// Open containers: nodes, groups and links.
#pragma once

#include "model/Set.h"
#include "norvane/platform/data/metadata/ISchema.h"

namespace norvane::platform::data::Structural {

class Container final : public Metadata::Set {
  public:
    // Opens the container record there.
    Container(IDataStore* store, std::uint32_t offset, Metadata::Opening opening = Metadata::Opening::handle);
    // Appends a new container record, which nothing lists yet. The record keeps the low byte of `kind`.
    Container(IDataStore* store, std::uint32_t kind, std::u16string_view name);
    // Makes a transient one, which is listed as the parent's last child. The parent has room for it. A null
    // link target is none.
    Container(Metadata::Set& parent, std::uint32_t kind, std::u16string_view name, std::uint8_t flags,
              const tWChar* linkTarget);

    std::uint32_t clone(IDataStore* target) override;

    // 0 node, 1 group, 2 link.
    std::uint32_t kind() const { return kind_; }
    // Names of the layouts applied, joined by ";"; empty when there are none.
    const std::u16string& classText() const { return classText_; }
    // Dotted path that a link leads to; empty when there is none.
    const std::u16string& linkTarget() const { return linkTarget_; }

    // Null takes the target out of the record.
    void setLinkTarget(const tWChar* path);
    // Adds the schema's names to the class text and copies the members in that are not here yet. Takes the
    // guard of each layout's store while that layout's members are copied. Defined beside the schemas.
    bool importClasses(metadata::ISchema* schema);

  private:
    std::uint32_t kind_ = 0;
    std::u16string classText_;
    std::u16string linkTarget_;
};

}  // namespace norvane::platform::data::Structural
