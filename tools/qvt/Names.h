// The names of the library that the tool uses everywhere.
#pragma once

#include <string>
#include <string_view>

#include "norvane/platform/core/string/StringAlgorithm.h"
#include "norvane/platform/data/metadata/IPrimitive.h"
#include "norvane/platform/data/metadata/IProperty.h"
#include "norvane/platform/data/metadata/ISchemaLocator.h"
#include "norvane/platform/data/metadata/ITable.h"
#include "norvane/platform/data/structure/IContainer.h"

namespace qvt {

namespace core = norvane::platform::core;
namespace data = norvane::platform::data;
namespace metadata = data::metadata;
namespace structure = data::structure;

using data::IDataStore;
using data::SharedPtr;
using data::WideString;
using metadata::IPrimitive;
using metadata::IProperty;
using metadata::ISchema;
using metadata::ISchemaLocator;
using metadata::IStructLayout;
using metadata::ITable;
using structure::IContainer;

inline std::string utf8(const WideString& text) {
    return core::string::StringAlgorithm::UTF8Encode(text.value(), text.length());
}

inline WideString wide(std::string_view text) {
    return core::string::StringAlgorithm::UTF8Decode(text.data(), text.size());
}

}  // namespace qvt
