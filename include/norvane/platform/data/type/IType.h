#pragma once

#include <cstdint>

#include "norvane/platform/data/Export.h"

namespace norvane::platform::data::type {

/// The root of the asset type interfaces, which a host implements and tells apart by number.
/// It is not part of the data model: no operation of the library takes, makes or returns one. It has no
/// number of its own.
///
/// The numbers are persistent names: they never change, and a new interface takes the next free one, which
/// is 26.
class QVT_DATA_API IType {
  public:
    /// Copies nothing: there is no state.
    IType(const IType& other);
    /// Copies nothing: there is no state.
    IType& operator=(const IType& other);
    virtual ~IType();

  protected:
    IType();
};

}  // namespace norvane::platform::data::type
