#include "norvane/platform/data/type/IType.h"

#include "norvane/platform/data/type/asset/v1/IAsset.h"
#include "norvane/platform/data/type/asset/v1/IResource.h"

namespace norvane::platform::data::type {

IType::IType() = default;
IType::IType(const IType&) = default;
IType& IType::operator=(const IType&) = default;
IType::~IType() = default;

}  // namespace norvane::platform::data::type

namespace norvane::platform::data::type::asset::v1 {

IAsset::IAsset() = default;
IAsset::IAsset(const IAsset&) = default;
IAsset& IAsset::operator=(const IAsset&) = default;
IAsset::~IAsset() = default;

IResource::IResource() = default;
IResource::IResource(const IResource&) = default;
IResource& IResource::operator=(const IResource&) = default;
IResource::~IResource() = default;

}  // namespace norvane::platform::data::type::asset::v1
