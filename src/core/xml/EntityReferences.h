// Entity references in the bytes of a tag.
#pragma once

#include <string_view>

namespace norvane::platform::core::xml {

// True if a start tag refers to an entity by a name that is not predefined. The tag is well-formed otherwise
// and begins with its "<", which shows whether it is in UTF-16; any other encoding has ASCII characters as
// their own bytes.
bool hasUndefinedEntity(std::string_view tag);

}  // namespace norvane::platform::core::xml
