// What the programs that measure this library share: stores from documents and through the interface, and a
// walk over every value.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "harness/Harness.h"
#include "norvane/platform/core/io/IDataReader.h"
#include "norvane/platform/core/storage/datastore/MemoryDataStore.h"
#include "norvane/platform/data/format/xml/IXMLFrontEnd.h"
#include "norvane/platform/data/metadata/IPrimitive.h"
#include "norvane/platform/data/metadata/IProperty.h"
#include "norvane/platform/data/metadata/IPropertyFilter.h"
#include "norvane/platform/data/metadata/ISchemaLocator.h"
#include "norvane/platform/data/metadata/ITable.h"
#include "norvane/platform/data/structure/ContainerKind.h"
#include "norvane/platform/data/structure/IContainer.h"
#include "norvane/platform/data/structure/IContainerFilter.h"
#include "norvane/platform/data/structure/IContainerFrontEnd.h"
#include "workload/Workload.h"

namespace bench {

using norvane::platform::core::memory::SharedPtr;
using norvane::platform::core::storage::datastore::IDataStore;
using norvane::platform::core::storage::datastore::MemoryDataStore;
using norvane::platform::core::string::WideString;
using norvane::platform::data::format::xml::IXMLFrontEnd;
using norvane::platform::data::metadata::IPrimitive;
using norvane::platform::data::metadata::IProperty;
using norvane::platform::data::metadata::ISchemaLocator;
using norvane::platform::data::metadata::ITable;
using norvane::platform::data::structure::IContainer;
using norvane::platform::data::structure::IContainerFrontEnd;

WideString wide(std::string_view ascii);

// Reads a document into an empty store, with a locator that knows the store. Throws if anything is reported.
void import(IDataStore& store, norvane::platform::core::io::IDataReader& reader);
void importText(IDataStore& store, const std::string& document);

// Makes a workload through the public interfaces.
void build(IDataStore& store, const Recording& recording);

// The workload that arguments speak of.
Workload workloadOf(const Arguments& arguments);
// The model that arguments speak of: `document=` read from a file, or `workload=`, `size=` and `depth=`
// built.
void fill(IDataStore& store, const Arguments& arguments);

// What a walk over a model has met.
struct Walk {
    std::uint64_t containers = 0;
    std::uint64_t values = 0;
    std::uint64_t elements = 0;
    std::uint64_t bytes = 0;
    Digest digest;
};

// Visits every container, table and value below a container, and reads every value.
Walk walk(const SharedPtr<IContainer>& container);
// The same for the group that every workload has below its root.
Walk walk(IDataStore& store);

SharedPtr<IContainer> top(IDataStore& store);

// Opens a value in a container, reads one double and closes it.
double readDouble(IContainer& container, const WideString& path);

// The dotted paths, below the container, of every double that is alone in its value: those of containers and
// the names in them.
struct Place {
    WideString container;
    WideString name;
};
std::vector<Place> placesOfDoubles(IDataStore& store);

}  // namespace bench
