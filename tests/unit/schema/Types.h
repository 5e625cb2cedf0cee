// Short words for building types, and for looking at what came of them.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "model/Container.h"
#include "model/Open.h"
#include "model/Primitive.h"
#include "model/Table.h"
#include "norvane/platform/core/storage/datastore/MemoryDataStore.h"
#include "norvane/platform/data/metadata/ISchemaLocator.h"
#include "norvane/platform/data/metadata/tDataType.h"
#include "schema/SchemaImpl.h"
#include "support/WideText.h"

namespace norvane::platform::test {

using core::storage::datastore::MemoryDataStore;
using data::IDataStore;
using data::Owned;
using data::SharedPtr;
using data::WideString;
using data::metadata::ISchema;
using data::metadata::ISchemaLocator;
using data::metadata::IStructLayout;

namespace Design = data::Design;
namespace Metadata = data::Metadata;
namespace Record = data::Record;
namespace Schema = data::Schema;
namespace Structural = data::Structural;
namespace field = data::Record::field;

using Offset = std::uint32_t;

// Appends entities to a store and lists them; closes every object it opens at once. Parents are record
// offsets; 0 is the root, which is made along with the builder if the store is empty.
class Builder {
  public:
    explicit Builder(IDataStore& store) : store_(&store) {
        if (store.size() == 0) Metadata::Root(store_, u"root");
    }

    Offset table(Offset parent, std::u16string_view name) {
        return list(parent, Design::Table(store_, name).offset());
    }

    Offset container(Offset parent, std::u16string_view name, std::uint32_t kind = 1) {
        return list(parent, Structural::Container(store_, kind, name).offset());
    }

    // A value of so many zero elements.
    Offset primitive(Offset parent, std::uint32_t type, std::u16string_view name, std::uint32_t count = 1) {
        Offset offset;
        {
            Design::Primitive made(store_, type, name);
            if (count != 0) made.resize(count);
            offset = made.offset();
        }
        return list(parent, offset);
    }

    Offset structOf(Offset parent, std::u16string_view name, const char16_t* type, std::uint32_t bytes) {
        const Offset offset = primitive(parent, data::metadata::kStruct, name, bytes);
        Design::Primitive(store_, offset).setStructType(type);
        return offset;
    }

    // Lists an entity under the parent without asking whether its name is taken.
    void listAnyway(Offset parent, Offset child) {
        const Offset list = Record::Snapshot(store_, parent)->load(field::children);
        store_->extend(list, &child, sizeof child);
    }

    IDataStore* store() const { return store_; }

  private:
    Offset list(Offset parent, Offset child) {
        Metadata::openSet(store_, parent, Metadata::Opening::transient)->addChild(child);
        return child;
    }

    IDataStore* store_;
};

inline std::uint32_t openCount(IDataStore& store, Offset offset) {
    return Record::Snapshot(&store, offset)->load(field::openCount);
}

inline std::string recordBytes(IDataStore& store, Offset offset) {
    const Record::Snapshot record(&store, offset);
    return {reinterpret_cast<const char*>(record->bytes()), record->size()};
}

// All records of a store, in the order of their offsets; those removed are empty.
inline std::vector<std::string> allRecords(MemoryDataStore& store) {
    std::vector<std::string> records;
    for (std::uint64_t offset = 0; offset < store.size(); ++offset)
        records.push_back(recordBytes(store, static_cast<Offset>(offset)));
    return records;
}

inline std::vector<Schema::Layout*> layoutsOf(const SharedPtr<ISchema>& schema) {
    const Schema::SchemaImpl* known = Schema::SchemaImpl::of(schema.get());
    return known ? known->layouts() : std::vector<Schema::Layout*>();
}

inline std::vector<std::u16string> layoutNames(const SharedPtr<ISchema>& schema) {
    std::vector<std::u16string> names;
    for (const Schema::Layout* layout : layoutsOf(schema)) names.push_back(layout->name());
    return names;
}

// A field as the tests write it down.
struct FieldRow {
    std::u16string name;
    std::uint32_t type;
    std::uint32_t count;
    std::uint32_t offset;
    std::uint32_t size;

    friend bool operator==(const FieldRow&, const FieldRow&) = default;
    friend void PrintTo(const FieldRow& row, std::ostream* out) {
        PrintTo(WideString(row.name.c_str()), out);
        *out << " type " << row.type << " count " << row.count << " at " << row.offset << " size "
             << row.size;
    }
};

inline std::vector<FieldRow> fieldsOf(IStructLayout& layout) {
    std::vector<FieldRow> rows;
    for (std::uint32_t i = 0; i < layout.fieldCount(); ++i) {
        const IStructLayout::tField& each = *layout.field(i);
        rows.push_back({each.name, each.type, each.count, each.offset, each.size});
    }
    return rows;
}

// A schema that does not come from here.
class ForeignSchema : public ISchema {
  public:
    WideString name() override { return u"foreign"; }
    IStructLayout* layout() override { return nullptr; }
};

}  // namespace norvane::platform::test
