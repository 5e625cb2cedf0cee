#pragma once

#include "norvane/platform/data/Names.h"

namespace norvane::platform::data::format::xml {

/// A place kept in the parse calls for what resolves URIs. It does nothing: URIs are stored as text and never
/// followed, and no operation is called on it. Null does as well.
///
/// Slots keep this order, new ones go last.
class QVT_DATA_TYPE IURIResolver {
  public:
    virtual ~IURIResolver() noexcept(false) {}
};

}  // namespace norvane::platform::data::format::xml
