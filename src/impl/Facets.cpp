// From a handle to its facet. What the handle says of itself comes first; the cast then finds that it has
// such a facet at all, which one that was made without does not.
#include <typeinfo>

#include "impl/DesignPrimitiveImpl.h"
#include "impl/DesignTableImpl.h"
#include "impl/GroupImpl.h"
#include "impl/LinkImpl.h"
#include "impl/NodeImpl.h"
#include "norvane/platform/data/metadata/IPrimitive.h"
#include "norvane/platform/data/metadata/ITable.h"
#include "norvane/platform/data/structure/ContainerKind.h"
#include "norvane/platform/data/structure/IGroup.h"
#include "norvane/platform/data/structure/ILink.h"
#include "norvane/platform/data/structure/INode.h"

namespace norvane::platform::data {

namespace {

// A cast across the bases of a class takes long; that there is a facet, the one class of our own that has it
// says as well.
template <class Facet, class Impl, class Handle>
Facet* facetOf(Handle* handle, std::uint32_t kind) {
    if (!handle || handle->kind() != kind) return nullptr;
    if (typeid(*handle) == typeid(Impl)) return static_cast<Impl*>(handle);
    return dynamic_cast<Facet*>(handle);
}

constexpr std::uint32_t kPrimitive = 0;  // what IProperty::kind answers
constexpr std::uint32_t kTable = 1;

}  // namespace

namespace structure {

INode* INode::to(IContainer* container) { return facetOf<INode, NodeImpl>(container, kNode); }

IGroup* IGroup::to(IContainer* container) { return facetOf<IGroup, GroupImpl>(container, kGroup); }

ILink* ILink::to(IContainer* container) { return facetOf<ILink, LinkImpl>(container, kLink); }

}  // namespace structure

namespace metadata {

IPrimitive* IPrimitive::to(IProperty* property) {
    return facetOf<IPrimitive, DesignPrimitiveImpl>(property, kPrimitive);
}

ITable* ITable::to(IProperty* property) { return facetOf<ITable, DesignTableImpl>(property, kTable); }

}  // namespace metadata

}  // namespace norvane::platform::data
