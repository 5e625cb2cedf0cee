#pragma once

#include "impl/ContainerImpl.h"
#include "norvane/platform/data/structure/IGroup.h"

namespace norvane::platform::data {

class GroupImpl final : public ContainerImpl, public structure::IGroup {
  public:
    using ContainerImpl::ContainerImpl;

    structure::IContainer* container() override { return this; }
};

}  // namespace norvane::platform::data
