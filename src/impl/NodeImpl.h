#pragma once

#include "impl/ContainerImpl.h"
#include "norvane/platform/data/structure/INode.h"

namespace norvane::platform::data {

class NodeImpl final : public ContainerImpl, public structure::INode {
  public:
    using ContainerImpl::ContainerImpl;

    structure::IContainer* container() override { return this; }
};

}  // namespace norvane::platform::data
