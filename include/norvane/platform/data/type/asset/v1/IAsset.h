#pragma once

#include "norvane/platform/data/type/IType.h"

namespace norvane::platform::data::type::asset::v1 {

/// An asset, as a host keeps and names it. Not the resources that it is made of.
/// Hosts derive from it and add the operations; the library has only its special members and its number.
class QVT_DATA_API IAsset : public IType {
  public:
    /// 1.
    static const std::uint32_t _kID;

    IAsset();
    /// Copies nothing: there is no state.
    IAsset(const IAsset& other);
    /// Copies nothing: there is no state.
    IAsset& operator=(const IAsset& other);
    ~IAsset() override;
};

}  // namespace norvane::platform::data::type::asset::v1
