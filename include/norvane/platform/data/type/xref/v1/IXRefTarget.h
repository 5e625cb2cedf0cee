#pragma once

#include "norvane/platform/data/type/IType.h"

namespace norvane::platform::data::type::xref::v1 {

/// What a reference leads to. The library has only its number; hosts derive from it and add the operations.
class QVT_DATA_TYPE IXRefTarget : public IType {
  public:
    /// 4.
    static QVT_DATA_API const std::uint32_t _kID;
};

}  // namespace norvane::platform::data::type::xref::v1
