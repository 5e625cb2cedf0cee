// Any bytes are read as a document, the result is written, and what was written is read again.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "norvane/platform/core/io/MemoryReader.h"
#include "norvane/platform/core/io/MemoryWriter.h"
#include "norvane/platform/core/storage/datastore/MemoryDataStore.h"
#include "norvane/platform/data/format/xml/IErrorReporter.h"
#include "norvane/platform/data/format/xml/IXMLFrontEnd.h"

namespace core = norvane::platform::core;
namespace data = norvane::platform::data;
using data::format::xml::IXMLFrontEnd;

namespace {

class Silent : public data::format::xml::IErrorReporter {
  public:
    void report(data::WideString) override {}
};

std::string readAndWrite(std::string_view document) {
    core::storage::datastore::MemoryDataStore store;
    auto locator = data::metadata::ISchemaLocator::make(&store);
    Silent reporter;
    core::io::MemoryReader reader(document);
    IXMLFrontEnd::parse(&store, &reader, locator.get(), nullptr, &reporter);
    core::io::MemoryWriter writer;
    if (store.size() != 0) IXMLFrontEnd::serialize(&store, &writer, locator.get(), 0);
    return writer.text();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    readAndWrite(readAndWrite({reinterpret_cast<const char*>(bytes), size}));
    return 0;
}
