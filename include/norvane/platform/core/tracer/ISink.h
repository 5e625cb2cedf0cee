#pragma once

#include "norvane/platform/core/Export.h"

namespace norvane::platform::core::tracer {

/// A place for trace output. Nothing of this system traces; it stands where hosts may hand one in.
class QVT_CORE_API ISink {
  public:
    virtual ~ISink() = default;
};

}  // namespace norvane::platform::core::tracer
