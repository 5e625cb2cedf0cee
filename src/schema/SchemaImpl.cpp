#include "schema/SchemaImpl.h"

#include <algorithm>

namespace norvane::platform::data::Schema {

WideString SchemaImpl::name() {
    return layouts_.empty() ? WideString() : WideString(layouts_.front()->name().c_str());
}

metadata::IStructLayout* SchemaImpl::layout() { return layouts_.empty() ? nullptr : layouts_.front(); }

bool SchemaImpl::isBlank() const {
    return std::none_of(layouts_.begin(), layouts_.end(), [](Layout* each) { return each->hasMembers(); });
}

}  // namespace norvane::platform::data::Schema
