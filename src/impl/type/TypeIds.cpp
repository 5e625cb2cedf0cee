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

// Real objects in one place, and not inline: a host reads the number that this library was built with.
// The numbers are persistent names. None may change; a new interface takes the next free one.

namespace norvane::platform::data::type::asset::v1 {

const std::uint32_t IAsset::_kID = 1;
const std::uint32_t IResource::_kID = 2;

}  // namespace norvane::platform::data::type::asset::v1

namespace norvane::platform::data::type::xref::v1 {

const std::uint32_t IXRef::_kID = 3;
const std::uint32_t IXRefTarget::_kID = 4;
const std::uint32_t IXRefProduct::_kID = 5;
const std::uint32_t IXRefTargetResolution::_kID = 6;

}  // namespace norvane::platform::data::type::xref::v1

namespace norvane::platform::data::type::gfx::v1 {

const std::uint32_t IMesh::_kID = 7;
const std::uint32_t IVertexSet::_kID = 8;
const std::uint32_t IScene::_kID = 9;
const std::uint32_t IRenderingSet::_kID = 10;
const std::uint32_t IRenderingNode::_kID = 11;
const std::uint32_t IRenderingMesh::_kID = 12;
const std::uint32_t ISubMesh::_kID = 13;
const std::uint32_t ILight::_kID = 14;
const std::uint32_t ICamera::_kID = 15;
const std::uint32_t IMaterial::_kID = 16;
const std::uint32_t IAspect::_kID = 17;
const std::uint32_t ITexture::_kID = 18;
const std::uint32_t ITextureSource::_kID = 19;
const std::uint32_t IEnvironment::_kID = 20;
const std::uint32_t IProceduralGeometry::_kID = 21;
const std::uint32_t ISceneEffect::_kID = 22;
const std::uint32_t IBounds::_kID = 23;
const std::uint32_t IChoice::_kID = 24;
const std::uint32_t IChoiceList::_kID = 25;

}  // namespace norvane::platform::data::type::gfx::v1
