#pragma once

#include "norvane/platform/data/type/IType.h"

namespace norvane::platform::data::type::xref::v1 {

/// A reference from one asset to another. The library has only its number; hosts derive from it and add the
/// operations.
class QVT_DATA_TYPE IXRef : public IType {
  public:
    /// 3.
    static QVT_DATA_API const std::uint32_t _kID;
};

}  // namespace norvane::platform::data::type::xref::v1
