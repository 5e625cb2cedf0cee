#pragma once

#include "norvane/platform/data/type/IType.h"

namespace norvane::platform::data::type::gfx::v1 {

/// An aspect of a material or an object. The library has only its number; hosts derive from it and add the
/// operations.
class QVT_DATA_TYPE IAspect : public IType {
  public:
    /// 17.
    static QVT_DATA_API const std::uint32_t _kID;
};

}  // namespace norvane::platform::data::type::gfx::v1
