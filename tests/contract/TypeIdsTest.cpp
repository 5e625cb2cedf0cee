#include <gtest/gtest.h>

#include <cstdint>
#include <iterator>
#include <memory>
#include <type_traits>

#include "norvane/platform/data/type/IType.h"
#include "norvane/platform/data/type/asset/v1/IAsset.h"
#include "norvane/platform/data/type/asset/v1/IResource.h"
#include "norvane/platform/data/type/gfx/v1/IAspect.h"
#include "norvane/platform/data/type/gfx/v1/IBounds.h"
#include "norvane/platform/data/type/gfx/v1/ICamera.h"
#include "norvane/platform/data/type/gfx/v1/IChoice.h"
#include "norvane/platform/data/type/gfx/v1/IChoiceList.h"
#include "norvane/platform/data/type/gfx/v1/IEnvironment.h"
#include "norvane/platform/data/type/gfx/v1/ILight.h"
#include "norvane/platform/data/type/gfx/v1/IMaterial.h"
#include "norvane/platform/data/type/gfx/v1/IMesh.h"
#include "norvane/platform/data/type/gfx/v1/IProceduralGeometry.h"
#include "norvane/platform/data/type/gfx/v1/IRenderingMesh.h"
#include "norvane/platform/data/type/gfx/v1/IRenderingNode.h"
#include "norvane/platform/data/type/gfx/v1/IRenderingSet.h"
#include "norvane/platform/data/type/gfx/v1/IScene.h"
#include "norvane/platform/data/type/gfx/v1/ISceneEffect.h"
#include "norvane/platform/data/type/gfx/v1/ISubMesh.h"
#include "norvane/platform/data/type/gfx/v1/ITexture.h"
#include "norvane/platform/data/type/gfx/v1/ITextureSource.h"
#include "norvane/platform/data/type/gfx/v1/IVertexSet.h"
#include "norvane/platform/data/type/xref/v1/IXRef.h"
#include "norvane/platform/data/type/xref/v1/IXRefProduct.h"
#include "norvane/platform/data/type/xref/v1/IXRefTarget.h"
#include "norvane/platform/data/type/xref/v1/IXRefTargetResolution.h"

namespace norvane::platform::data::type {
namespace {

TEST(TypeIds, NumbersAreThoseThatHostsHaveStored) {
    struct {
        const std::uint32_t& id;
        std::uint32_t stored;
    } const ids[] = {
        {asset::v1::IAsset::_kID, 1},
        {asset::v1::IResource::_kID, 2},
        {xref::v1::IXRef::_kID, 3},
        {xref::v1::IXRefTarget::_kID, 4},
        {xref::v1::IXRefProduct::_kID, 5},
        {xref::v1::IXRefTargetResolution::_kID, 6},
        {gfx::v1::IMesh::_kID, 7},
        {gfx::v1::IVertexSet::_kID, 8},
        {gfx::v1::IScene::_kID, 9},
        {gfx::v1::IRenderingSet::_kID, 10},
        {gfx::v1::IRenderingNode::_kID, 11},
        {gfx::v1::IRenderingMesh::_kID, 12},
        {gfx::v1::ISubMesh::_kID, 13},
        {gfx::v1::ILight::_kID, 14},
        {gfx::v1::ICamera::_kID, 15},
        {gfx::v1::IMaterial::_kID, 16},
        {gfx::v1::IAspect::_kID, 17},
        {gfx::v1::ITexture::_kID, 18},
        {gfx::v1::ITextureSource::_kID, 19},
        {gfx::v1::IEnvironment::_kID, 20},
        {gfx::v1::IProceduralGeometry::_kID, 21},
        {gfx::v1::ISceneEffect::_kID, 22},
        {gfx::v1::IBounds::_kID, 23},
        {gfx::v1::IChoice::_kID, 24},
        {gfx::v1::IChoiceList::_kID, 25},
    };

    for (const auto& [id, stored] : ids) EXPECT_EQ(id, stored);
    EXPECT_EQ(std::size(ids), 25U);
}

class HostAsset : public asset::v1::IAsset {
  public:
    explicit HostAsset(int bytes, bool* destroyed = nullptr) : size(bytes), destroyed_(destroyed) {}
    HostAsset(const HostAsset&) = default;
    HostAsset& operator=(const HostAsset&) = default;
    ~HostAsset() override {
        if (destroyed_) *destroyed_ = true;
    }

    int size;

  private:
    bool* destroyed_;
};

class HostResource : public asset::v1::IResource {};
class HostMesh : public gfx::v1::IMesh {};
class HostReference : public xref::v1::IXRef {};

TEST(TypeInterfaces, HostTellsItsAssetsApartFromItsResources) {
    const HostAsset asset(3);
    const HostResource resource;
    const IType* const types[] = {&asset, &resource};

    EXPECT_EQ(dynamic_cast<const HostAsset*>(types[0])->size, 3);
    EXPECT_NE(dynamic_cast<const asset::v1::IAsset*>(types[0]), nullptr);
    EXPECT_EQ(dynamic_cast<const asset::v1::IAsset*>(types[1]), nullptr);
    EXPECT_NE(dynamic_cast<const asset::v1::IResource*>(types[1]), nullptr);
}

TEST(TypeInterfaces, HostDerivesFromInterfacesThatHaveANumberOnly) {
    const HostMesh mesh;
    const HostReference reference;
    const IType* const types[] = {&mesh, &reference};

    EXPECT_NE(dynamic_cast<const gfx::v1::IMesh*>(types[0]), nullptr);
    EXPECT_EQ(dynamic_cast<const xref::v1::IXRef*>(types[0]), nullptr);
    EXPECT_NE(dynamic_cast<const xref::v1::IXRef*>(types[1]), nullptr);
}

TEST(TypeInterfaces, AssetsAreCopiedWithWhatTheHostAdded) {
    const HostAsset asset(3);
    HostAsset other(asset);
    EXPECT_EQ(other.size, 3);

    const HostAsset third(4);
    other = third;

    EXPECT_EQ(other.size, 4);
}

TEST(TypeInterfaces, AssetIsDestroyedThroughItsRoot) {
    bool destroyed = false;
    std::unique_ptr<IType> type = std::make_unique<HostAsset>(3, &destroyed);

    type.reset();

    EXPECT_TRUE(destroyed);
}

TEST(TypeInterfaces, OnlyTheRootCannotBeMadeByItself) {
    EXPECT_FALSE(std::is_default_constructible_v<IType>);
    EXPECT_TRUE(std::is_copy_constructible_v<IType>);
    EXPECT_TRUE(std::is_default_constructible_v<asset::v1::IAsset>);
    EXPECT_TRUE(std::is_default_constructible_v<asset::v1::IResource>);
    EXPECT_EQ(sizeof(asset::v1::IAsset), sizeof(void*));
}

}  // namespace
}  // namespace norvane::platform::data::type
