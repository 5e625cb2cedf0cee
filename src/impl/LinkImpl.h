#pragma once

#include "impl/ContainerImpl.h"
#include "norvane/platform/data/structure/ILink.h"

namespace norvane::platform::data {

class LinkImpl final : public ContainerImpl, public structure::ILink {
  public:
    using ContainerImpl::ContainerImpl;

    structure::IContainer* container() override { return this; }
    SharedPtr<structure::IContainer> resolve(IDataStore* store) override;
    void setTarget(WideString target) override;
    WideString target() override;
};

}  // namespace norvane::platform::data
