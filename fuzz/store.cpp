// A small sound store has single bytes of its records replaced; then everything in it is looked at.
// Input: groups of four bytes: which record, a position in it (two bytes), the new value.

#include <cstddef>
#include <cstdint>
#include <vector>

#include "norvane/platform/core/io/FileReader.h"
#include "norvane/platform/core/storage/datastore/MemoryDataStore.h"
#include "norvane/platform/data/format/xml/IXMLFrontEnd.h"
#include "norvane/platform/data/metadata/IPrimitive.h"
#include "norvane/platform/data/metadata/IPropertyFilter.h"
#include "norvane/platform/data/metadata/ITable.h"
#include "norvane/platform/data/structure/IContainer.h"
#include "norvane/platform/data/structure/IContainerFilter.h"
#include "norvane/platform/data/structure/IContainerFrontEnd.h"
#include "norvane/platform/data/structure/ILink.h"

namespace core = norvane::platform::core;
namespace data = norvane::platform::data;
using core::memory::SharedPtr;
using data::metadata::IPrimitive;
using data::metadata::IProperty;
using data::metadata::ITable;
using data::structure::IContainer;

namespace {

/// Knows the offset of each of its records.
class ListedStore : public core::storage::datastore::MemoryDataStore {
  public:
    std::uint32_t append(const void* buffer, std::uint32_t size) override {
        offsets.push_back(MemoryDataStore::append(buffer, size));
        return offsets.back();
    }
    std::vector<std::uint32_t> offsets;
};

void damage(ListedStore& store, const std::uint8_t* bytes, std::size_t size) {
    for (; size >= 4; bytes += 4, size -= 4) {
        const std::uint32_t offset = store.offsets[bytes[0] % store.offsets.size()];
        std::vector<std::uint8_t> record(store.recordSize(offset));
        if (record.empty()) continue;
        store.read(offset, record.data(), core::storage::datastore::kWholeRecord);
        record[(bytes[1] + 256u * bytes[2]) % record.size()] = bytes[3];
        store.write(offset, record.data(), static_cast<std::uint32_t>(record.size()), true);
    }
}

/// In a damaged store an item may contain itself: both bounds are needed.
struct Look {
    ListedStore& store;
    int left = 200;
    static constexpr int kDepth = 12;

    void at(IPrimitive& primitive) {
        primitive.structType();
        primitive.uri();
        primitive.locale();
        primitive.units();
        const std::uint64_t count = primitive.count();
        const std::uint64_t bytes = count * primitive.elementSize();
        if (bytes > 4096) return;
        std::vector<std::uint8_t> values(bytes + 1);
        primitive.readValues(values.data(), 0, static_cast<std::uint32_t>(count));
    }

    void at(ITable& table, int depth) {
        table.className();
        for (std::uint32_t i = 0; i < table.defaultCount() && i < 32; ++i) table.defaultUnit(i);
        for (std::uint32_t i = 0; i < table.count() && i < 32; ++i) at(table.at(i), depth + 1);
    }

    void at(SharedPtr<IProperty> property, int depth) {
        if (!property || depth > kDepth || --left < 0) return;
        property->path();
        for (std::uint32_t i = 0; i < property->localisedCount() && i < 8; ++i) property->localeAt(i);
        if (auto* primitive = IPrimitive::to(property.get())) at(*primitive);
        if (auto* table = ITable::to(property.get())) at(*table, depth);
    }

    void at(SharedPtr<IContainer> container, int depth) {
        if (!container || depth > kDepth || --left < 0) return;
        container->path();
        container->className();
        container->localised(u"de");
        if (auto* link = data::structure::ILink::to(container.get())) link->resolve(&store);
        auto properties = container->properties();
        do {
            at(properties->value(), depth + 1);
        } while (left > 0 && properties->next());
        auto containers = container->containers();
        do {
            at(containers->value(), depth + 1);
        } while (left > 0 && containers->next());
    }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    ListedStore store;
    core::io::FileReader reader(QVT_FUZZ_MODEL);
    auto locator = data::metadata::ISchemaLocator::make(&store);
    data::format::xml::IXMLFrontEnd::parse(&store, &reader, locator.get(), nullptr, nullptr);
    damage(store, bytes, size);
    locator->locate(u"types.Point");
    Look look{store};
    look.at(data::structure::IContainerFrontEnd::toplevel(&store, u"types"), 0);
    look.at(data::structure::IContainerFrontEnd::toplevel(&store, u"model"), 0);
    data::structure::IContainerFrontEnd::find(&store, u"model.node.deep");
    return 0;
}
