// From a handle to its facet. What the handle says of itself comes first; the cast then finds that it has
// such a facet at all, which one that was made without does not.
#include "norvane/platform/data/metadata/IPrimitive.h"
#include "norvane/platform/data/metadata/ITable.h"
#include "norvane/platform/data/structure/ContainerKind.h"
#include "norvane/platform/data/structure/IGroup.h"
#include "norvane/platform/data/structure/ILink.h"
#include "norvane/platform/data/structure/INode.h"

namespace norvane::platform::data {

namespace {

template <class Facet, class Handle>
Facet* facetOf(Handle* handle, std::uint32_t kind) {
    return handle && handle->kind() == kind ? dynamic_cast<Facet*>(handle) : nullptr;
}

constexpr std::uint32_t kPrimitive = 0;  // what IProperty::kind answers
constexpr std::uint32_t kTable = 1;

}  // namespace

namespace structure {

INode* INode::to(IContainer* container) { return facetOf<INode>(container, kNode); }

IGroup* IGroup::to(IContainer* container) { return facetOf<IGroup>(container, kGroup); }

ILink* ILink::to(IContainer* container) { return facetOf<ILink>(container, kLink); }

}  // namespace structure

namespace metadata {

IPrimitive* IPrimitive::to(IProperty* property) { return facetOf<IPrimitive>(property, kPrimitive); }

ITable* ITable::to(IProperty* property) { return facetOf<ITable>(property, kTable); }

}  // namespace metadata

}  // namespace norvane::platform::data
