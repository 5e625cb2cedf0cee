#include "impl/Handles.h"

#include <utility>

#include "impl/ContainerImpl.h"
#include "impl/DesignPrimitiveImpl.h"
#include "impl/DesignTableImpl.h"
#include "impl/GroupImpl.h"
#include "impl/Kinds.h"
#include "impl/LinkImpl.h"
#include "impl/NodeImpl.h"
#include "norvane/platform/data/structure/ContainerKind.h"

namespace norvane::platform::data {

Owned<Structural::Container> openContainer(IDataStore* store, std::uint32_t offset) {
    if (!isContainer(Record::kindOf(store, offset))) return {};
    return makeOwned<Structural::Container>(store, offset);
}

SharedPtr<structure::IContainer> plainHandle(Owned<Structural::Container> item) {
    if (!item) return {};
    return SharedPtr<ContainerImpl>(new ContainerImpl(std::move(item)));
}

SharedPtr<structure::IContainer> facetedHandle(Owned<Structural::Container> item) {
    if (!item) return {};
    switch (item->kind()) {
        case structure::kNode:
            return SharedPtr<NodeImpl>(new NodeImpl(std::move(item)));
        case structure::kGroup:
            return SharedPtr<GroupImpl>(new GroupImpl(std::move(item)));
        case structure::kLink:
            return SharedPtr<LinkImpl>(new LinkImpl(std::move(item)));
        default:
            item->abandon();
            return {};
    }
}

SharedPtr<metadata::IProperty> propertyHandle(IDataStore* store, std::uint32_t offset) {
    const std::uint8_t kind = Record::kindOf(store, offset);
    if (isPrimitive(kind))
        return SharedPtr<DesignPrimitiveImpl>(
            new DesignPrimitiveImpl(makeOwned<Design::Primitive>(store, offset)));
    if (isTable(kind))
        return SharedPtr<DesignTableImpl>(new DesignTableImpl(makeOwned<Design::Table>(store, offset)));
    return {};
}

}  // namespace norvane::platform::data
