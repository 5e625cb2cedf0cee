#pragma once

#include "norvane/platform/data/type/IType.h"

namespace norvane::platform::data::type::asset::v1 {

/// A resource that assets use. Not an asset of its own.
/// Hosts derive from it and add the operations; the library has only its special members and its number.
class QVT_DATA_API IResource : public IType {
  public:
    /// 2.
    static const std::uint32_t _kID;

    IResource();
    /// Copies nothing: there is no state.
    IResource(const IResource& other);
    /// Copies nothing: there is no state.
    IResource& operator=(const IResource& other);
    ~IResource() override;
};

}  // namespace norvane::platform::data::type::asset::v1
