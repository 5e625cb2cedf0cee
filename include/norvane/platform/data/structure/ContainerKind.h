#pragma once

#include <cstdint>

namespace norvane::platform::data::structure {

/// What sort of container a container is. Not the kind of a record: every container is a record of one and
/// the same kind. The values are persistent. Interfaces pass them as std::uint32_t, because a store may hold
/// others.
enum ContainerKind : std::uint32_t {
    kNode = 0,   ///< An object.
    kGroup = 1,  ///< What holds objects together.
    kLink = 2,   ///< A place that names another container: see ILink.
};

}  // namespace norvane::platform::data::structure
