// A host in C++17 that has the installed package and nothing else: it writes a value, finds it again, reads a
// document, and derives from what it may derive from.

#include <cstdint>
#include <cstdio>
#include <string>
#include <typeinfo>

#include "norvane/platform/core/io/MemoryReader.h"
#include "norvane/platform/core/storage/datastore/MemoryDataStore.h"
#include "norvane/platform/data/format/xml/IErrorReporter.h"
#include "norvane/platform/data/format/xml/IXMLFrontEnd.h"
#include "norvane/platform/data/metadata/IPrimitive.h"
#include "norvane/platform/data/structure/ContainerKind.h"
#include "norvane/platform/data/structure/IContainer.h"
#include "norvane/platform/data/structure/IContainerFrontEnd.h"
#include "norvane/platform/data/structure/IGroup.h"
#include "norvane/platform/data/type/asset/v1/IAsset.h"

namespace core = norvane::platform::core;
namespace data = norvane::platform::data;
using core::storage::datastore::MemoryDataStore;
using data::metadata::IPrimitive;
using data::structure::IContainerFrontEnd;

namespace {

int failures = 0;

void expect(bool holds, const char* what) {
    if (holds) return;
    std::printf("does not hold: %s\n", what);
    ++failures;
}

class Asset : public data::type::asset::v1::IAsset {};

class Reporter : public data::format::xml::IErrorReporter {
  public:
    void report(data::WideString) override { ++reports; }
    int reports = 0;
};

void findsAValueThatItWrote() {
    MemoryDataStore store;
    {
        auto top = IContainerFrontEnd::toplevel(&store, u"top");
        auto group = top->makeContainer(data::structure::kGroup, u"group", nullptr);
        auto length = group->makePrimitive(u"length", data::metadata::kDouble);
        const double written = 2.5;
        expect(length->resize(1) && length->writeValues(&written, 0, 1), "a value can be written");
    }
    auto top = IContainerFrontEnd::toplevel(&store, u"top");
    auto group = top->find(u"group");
    auto property = IContainerFrontEnd::find(&store, u"top.group")->findProperty(u"length");
    auto* length = IPrimitive::to(property.get());
    double read = 0;
    expect(length && length->readValues(&read, 0, 1) && read == 2.5, "the value is found at its dotted path");
    expect(group && data::structure::IGroup::to(group.get()),
           "what a path leads to has the facet of its kind");
}

void readsADocument() {
    MemoryDataStore store;
    Reporter reporter;
    core::io::MemoryReader reader(std::string_view("<nonsense/>"));
    data::format::xml::IXMLFrontEnd::parse(&store, &reader, nullptr, nullptr, &reporter);
    expect(reporter.reports > 0, "the host's own reporter hears of an unknown element");
}

void tellsAssetsApart() {
    Asset asset;
    const data::type::IType& type = asset;
    expect(dynamic_cast<const data::type::asset::v1::IAsset*>(&type) != nullptr,
           "a host's asset is an IAsset");
    expect(data::type::asset::v1::IAsset::_kID == 1, "IAsset has number 1");
}

}  // namespace

int main() {
    findsAValueThatItWrote();
    readsADocument();
    tellsAssetsApart();
    return failures == 0 ? 0 : 1;
}
