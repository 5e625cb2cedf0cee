#include <gtest/gtest.h>

#include <type_traits>
#include <typeindex>
#include <typeinfo>

#include "impl/ContainerFilters.h"
#include "impl/ContainerImpl.h"
#include "impl/DesignPrimitiveImpl.h"
#include "impl/DesignTableImpl.h"
#include "impl/GroupImpl.h"
#include "impl/Handles.h"
#include "impl/LinkImpl.h"
#include "impl/NodeImpl.h"
#include "norvane/platform/core/storage/datastore/MemoryDataStore.h"

namespace norvane::platform::data {
namespace {

template <class Handle>
std::type_index classOf(const SharedPtr<Handle>& handle) {
    const Handle& object = *handle;
    return typeid(object);
}

class HandlesTest : public ::testing::Test {
  protected:
    ~HandlesTest() noexcept override = default;

    std::uint32_t makeContainer(std::uint32_t kind) {
        return Structural::Container(&store, kind, u"c").offset();
    }
    std::uint32_t openCount(std::uint32_t offset) {
        return Record::Snapshot(&store, offset)->load(Record::field::openCount);
    }

    core::storage::datastore::MemoryDataStore store;
    std::uint32_t root = Metadata::Root(&store, u"root").offset();
    std::uint32_t primitive = Design::Primitive(&store, 12, u"p").offset();
    std::uint32_t table = Design::Table(&store, u"t").offset();
};

TEST_F(HandlesTest, OnlyContainersAreOpenedAsContainers) {
    EXPECT_TRUE(openContainer(&store, makeContainer(0)));
    EXPECT_FALSE(openContainer(&store, root));
    EXPECT_FALSE(openContainer(&store, primitive));
    EXPECT_FALSE(openContainer(&store, table));
    EXPECT_FALSE(openContainer(&store, IDataStore::BADOFF));
    EXPECT_FALSE(openContainer(&store, 9999));
}

TEST_F(HandlesTest, PlainHandlesAreOfTheBaseClassWhateverTheKind) {
    for (const std::uint32_t kind : {0u, 1u, 2u, 3u}) {
        const auto handle = plainHandle(openContainer(&store, makeContainer(kind)));
        EXPECT_EQ(classOf(handle), typeid(ContainerImpl)) << kind;
        EXPECT_EQ(handle->kind(), kind);
    }
}

TEST_F(HandlesTest, FacetedHandlesAreOfTheClassOfTheirKind) {
    EXPECT_EQ(classOf(facetedHandle(openContainer(&store, makeContainer(0)))), typeid(NodeImpl));
    EXPECT_EQ(classOf(facetedHandle(openContainer(&store, makeContainer(1)))), typeid(GroupImpl));
    EXPECT_EQ(classOf(facetedHandle(openContainer(&store, makeContainer(2)))), typeid(LinkImpl));
}

TEST_F(HandlesTest, UnknownKindGivesNullAndLeavesTheRecordOpen) {
    const std::uint32_t odd = makeContainer(3);

    EXPECT_FALSE(facetedHandle(openContainer(&store, odd)));

    EXPECT_EQ(openCount(odd), 1u);
}

TEST_F(HandlesTest, NullGivesNull) {
    EXPECT_FALSE(plainHandle({}));
    EXPECT_FALSE(facetedHandle({}));
}

TEST_F(HandlesTest, PropertiesAreHandledByTheirKind) {
    EXPECT_EQ(classOf(propertyHandle(&store, primitive)), typeid(DesignPrimitiveImpl));
    EXPECT_EQ(classOf(propertyHandle(&store, table)), typeid(DesignTableImpl));
    EXPECT_FALSE(propertyHandle(&store, root));
    EXPECT_FALSE(propertyHandle(&store, makeContainer(0)));
    EXPECT_FALSE(propertyHandle(&store, IDataStore::BADOFF));
}

TEST_F(HandlesTest, HandleCountsAsOpenWhileItLives) {
    {
        const auto handle = propertyHandle(&store, primitive);
        EXPECT_EQ(openCount(primitive), 1u);
    }
    EXPECT_EQ(openCount(primitive), 0u);
}

TEST_F(HandlesTest, InterfaceOfTheHandleComesFirstItsFacetBehind) {
    const auto handle = propertyHandle(&store, primitive);
    auto* whole = dynamic_cast<DesignPrimitiveImpl*>(handle.get());

    EXPECT_EQ(static_cast<void*>(handle.get()), static_cast<void*>(whole));
    EXPECT_NE(static_cast<void*>(static_cast<metadata::IPrimitive*>(whole)), static_cast<void*>(whole));
}

TEST_F(HandlesTest, HandlesAndFiltersComeFromThePool) {
    EXPECT_TRUE((std::is_base_of_v<Pooled, ContainerImpl>));
    EXPECT_TRUE((std::is_base_of_v<Pooled, PropertyImpl>));
    EXPECT_TRUE((std::is_base_of_v<Pooled, ContainerImpl::DesignFilter>));
    EXPECT_TRUE((std::is_base_of_v<Pooled, ContainerImpl::ContainerFilter>));
    EXPECT_TRUE((std::is_base_of_v<Pooled, DesignTableImpl::DesignFilter>));
}

}  // namespace
}  // namespace norvane::platform::data
