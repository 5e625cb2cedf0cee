#pragma once

#include "norvane/platform/data/type/IType.h"

namespace norvane::platform::data::type::gfx::v1 {

/// One of several alternatives. The library has only its number; hosts derive from it and add the operations.
class QVT_DATA_TYPE IChoice : public IType {
  public:
    /// 24.
    static QVT_DATA_API const std::uint32_t _kID;
};

}  // namespace norvane::platform::data::type::gfx::v1
