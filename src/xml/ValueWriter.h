// Values as the text of a document.
#pragma once

#include "model/Primitive.h"
#include "norvane/platform/core/xml/XMLSerializer.h"
#include "norvane/platform/data/metadata/ISchemaLocator.h"

namespace norvane::platform::data {

// Writes the value into the open element: as its own text, or in a `val` where display names stand before it,
// so that the two do not mix. Several strings have a `val` each in any case. A value behind a URI and one
// without elements have no text at all, and neither has a struct without a locator.
void writeValue(const Design::Primitive& primitive, core::xml::XMLSerializer& serializer, bool hasNames,
                metadata::ISchemaLocator* locator);

}  // namespace norvane::platform::data
