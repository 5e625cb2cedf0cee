// One probe for each public class with virtual operations, so that a compiler that is asked to print the
// tables of virtual operations prints theirs. A probe's destructor stands out of line, and so brings the
// probe's table along.

#include "norvane/platform/core/Compare.h"
#include "norvane/platform/core/io/IDataReader.h"
#include "norvane/platform/core/io/IDataWriter.h"
#include "norvane/platform/core/memory/SharedPtr.h"
#include "norvane/platform/core/storage/datastore/IDataStore.h"
#include "norvane/platform/core/string/WideString.h"
#include "norvane/platform/core/tracer/ISink.h"
#include "norvane/platform/core/xml/IXMLParseListener.h"
#include "norvane/platform/core/xml/IXMLPauses.h"
#include "norvane/platform/core/xml/XMLCallback.h"
#include "norvane/platform/core/xml/XMLParser.h"
#include "norvane/platform/core/xml/XMLSerializer.h"
#include "norvane/platform/data/format/xml/IErrorReporter.h"
#include "norvane/platform/data/format/xml/IURIResolver.h"
#include "norvane/platform/data/metadata/IPrimitive.h"
#include "norvane/platform/data/metadata/IProperty.h"
#include "norvane/platform/data/metadata/IPropertyFilter.h"
#include "norvane/platform/data/metadata/ISchema.h"
#include "norvane/platform/data/metadata/ISchemaLocator.h"
#include "norvane/platform/data/metadata/IStringArray.h"
#include "norvane/platform/data/metadata/IStructLayout.h"
#include "norvane/platform/data/metadata/ITable.h"
#include "norvane/platform/data/structure/IContainer.h"
#include "norvane/platform/data/structure/IContainerFilter.h"
#include "norvane/platform/data/structure/IGroup.h"
#include "norvane/platform/data/structure/ILink.h"
#include "norvane/platform/data/structure/INode.h"
#include "norvane/platform/data/type/asset/v1/IAsset.h"
#include "norvane/platform/data/type/asset/v1/IResource.h"
#include "norvane/platform/data/type/gfx/v1/IMesh.h"
#include "norvane/platform/data/type/xref/v1/IXRef.h"

template <class Interface>
struct Probe : Interface {
    ~Probe() override;
};

template <class Interface>
Probe<Interface>::~Probe() {}

namespace core = norvane::platform::core;
namespace data = norvane::platform::data;

template struct Probe<core::tCompareEqual<char>>;
template struct Probe<core::tCompareLess<char>>;
template struct Probe<core::tWCharCompareEqual>;
template struct Probe<core::tCharCompareEqual>;
template struct Probe<core::tCharCompareLess>;
template struct Probe<core::io::IDataReader>;
template struct Probe<core::io::IDataWriter>;
template struct Probe<core::memory::IPointerCounter>;
template struct Probe<core::memory::DefaultPointerCounterImp>;
template struct Probe<core::storage::datastore::IDataStore>;
template struct Probe<core::storage::datastore::IDataStore::Companion>;
template struct Probe<core::storage::datastore::IDataStore::Guard>;
template struct Probe<core::string::IString>;
template struct Probe<core::string::WideString>;
template struct Probe<core::tracer::ISink>;
template struct Probe<core::xml::IXMLParseListener>;
template struct Probe<core::xml::IXMLPauses>;
template struct Probe<core::xml::XMLCallback>;
template struct Probe<core::xml::XMLParser>;
template struct Probe<core::xml::XMLSerializer>;

template struct Probe<data::structure::IContainer>;
template struct Probe<data::structure::IContainerFilter>;
template struct Probe<data::structure::IGroup>;
template struct Probe<data::structure::INode>;
template struct Probe<data::structure::ILink>;
template struct Probe<data::metadata::IProperty>;
template struct Probe<data::metadata::IPropertyFilter>;
template struct Probe<data::metadata::IPrimitive>;
template struct Probe<data::metadata::ITable>;
template struct Probe<data::metadata::IStringArray>;
template struct Probe<data::metadata::ISchemaLocator>;
template struct Probe<data::metadata::ISchema>;
template struct Probe<data::metadata::IStructLayout>;
template struct Probe<data::format::xml::IErrorReporter>;
template struct Probe<data::format::xml::IURIResolver>;

template struct Probe<data::type::IType>;
template struct Probe<data::type::asset::v1::IAsset>;
template struct Probe<data::type::asset::v1::IResource>;
template struct Probe<data::type::gfx::v1::IMesh>;
template struct Probe<data::type::xref::v1::IXRef>;
