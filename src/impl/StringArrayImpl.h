#pragma once

#include <string_view>
#include <vector>

#include "norvane/platform/data/metadata/IStringArray.h"

namespace norvane::platform::data {

class StringArrayImpl final : public metadata::IStringArray {
  public:
    // Cuts the units at each NUL; what stands behind the last one is dropped.
    void split(std::u16string_view units);

    std::uint32_t count() override { return static_cast<std::uint32_t>(strings_.size()); }
    WideString at(std::uint32_t index) override;
    void append(WideString text) override;
    bool storeTo(metadata::IPrimitive* primitive) override;

  private:
    std::vector<WideString> strings_;
};

}  // namespace norvane::platform::data
