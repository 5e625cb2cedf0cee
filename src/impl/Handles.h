// From records to handles.
#pragma once

#include <cstdint>

#include "model/Container.h"
#include "norvane/platform/data/metadata/IProperty.h"
#include "norvane/platform/data/structure/IContainer.h"
#include "records/Owned.h"

namespace norvane::platform::data {

// Opens the container there for a handle; null when the record is not one.
Owned<Structural::Container> openContainer(IDataStore* store, std::uint32_t offset);

// A handle without facets. Null for null.
SharedPtr<structure::IContainer> plainHandle(Owned<Structural::Container> item);

// A handle with the facet of the container's kind. Null for null and for an unknown kind, whose record is
// then left open: hosts see by that count that somebody has met it.
SharedPtr<structure::IContainer> facetedHandle(Owned<Structural::Container> item);

// A handle on the primitive or table there; null when the record is neither.
SharedPtr<metadata::IProperty> propertyHandle(IDataStore* store, std::uint32_t offset);

}  // namespace norvane::platform::data
