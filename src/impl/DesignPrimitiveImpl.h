#pragma once

#include <string_view>

#include "impl/PropertyImpl.h"
#include "model/Primitive.h"
#include "model/Set.h"
#include "norvane/platform/data/metadata/IPrimitive.h"

namespace norvane::platform::data {

class DesignPrimitiveImpl final : public PropertyImpl, public metadata::IPrimitive {
  public:
    explicit DesignPrimitiveImpl(Owned<Design::Primitive> item) noexcept : PropertyImpl(std::move(item)) {}

    // A handle on a new primitive, listed in `parent` unless it has a child of that name. Unit 0 is none.
    static SharedPtr<metadata::IPrimitive> make(Metadata::Set& parent, std::u16string_view name,
                                                std::uint32_t type, std::uint32_t unit);

    metadata::IProperty* property() override { return this; }
    std::uint32_t count() override;
    std::uint32_t elementSize() override;
    std::uint32_t valueBytes() override;
    std::uint32_t dataType() override;
    std::uint32_t units() override;
    bool setStructType(WideString name) override;
    WideString structType() override;
    bool setUri(WideString uri) override;
    WideString uri() override;
    void setLocale(WideString tag) override;
    WideString locale() override;
    bool writeValues(const void* source, std::uint32_t start, std::uint32_t count) override;
    bool resize(std::uint32_t count) override;
    bool readValues(void* target, std::uint32_t start, std::uint32_t count) override;

  private:
    Design::Primitive& primitive() const { return static_cast<Design::Primitive&>(item()); }
};

}  // namespace norvane::platform::data
