// Short ways to fill a store with a model, and to compare stores.
#pragma once

#include <cstdint>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "model/Container.h"
#include "model/Open.h"
#include "model/Primitive.h"
#include "model/Table.h"
#include "norvane/platform/data/metadata/tDataType.h"
#include "norvane/platform/data/structure/ContainerKind.h"
#include "support/RecordBytes.h"

namespace norvane::platform::test {

using Offset = std::uint32_t;

inline Offset noRecord() { return IDataStore::BADOFF; }

// Makes entities through the model's own objects, each of which is closed again at once. What is given as a
// parent is a root, table or container; `kUnlisted` leaves the new entity alone.
class ModelBuilder {
  public:
    static constexpr Offset kUnlisted = 0xFFFFFFF0u;

    explicit ModelBuilder(IDataStore& store) : store_(&store) {}

    Offset root(std::u16string_view name = u"all") { return data::Metadata::Root(store_, name).offset(); }
    Offset container(Offset parent, std::u16string_view name, std::uint32_t kind = data::structure::kGroup) {
        return list(parent, data::Structural::Container(store_, kind, name).offset());
    }
    Offset table(Offset parent, std::u16string_view name) {
        return list(parent, data::Design::Table(store_, name).offset());
    }
    Offset primitive(Offset parent, std::u16string_view name, std::uint32_t type = data::metadata::kInt32) {
        return list(parent, data::Design::Primitive(store_, type, name).offset());
    }
    template <class T>
    Offset values(Offset parent, std::u16string_view name, std::uint32_t type, const std::vector<T>& values) {
        const Offset offset = primitive(parent, name, type);
        data::Design::Primitive(store_, offset)
            .writeValues(values.data(), 0, static_cast<std::uint32_t>(values.size()));
        return offset;
    }
    void localise(Offset entity, const char16_t* locale, const char16_t* text) {
        data::Metadata::openItem(store_, entity)->setLocalised(text, locale);
    }
    void defaults(Offset table, std::uint32_t unitId, std::uint32_t type) {
        data::Design::Table(store_, table).addDefault(unitId, type);
    }
    void flag(Offset entity, std::uint8_t bits) { data::Metadata::openItem(store_, entity)->setFlags(bits); }

    Offset list(Offset parent, Offset child) {
        if (parent != kUnlisted) data::Metadata::openSet(store_, parent)->addChild(child);
        return child;
    }

  private:
    IDataStore* store_;
};

inline Offset parentOf(IDataStore& store, Offset entity) { return recordAt(store, entity).u32At(1); }
inline Offset openCountOf(IDataStore& store, Offset entity) { return recordAt(store, entity).u32At(5); }
inline Offset localeOf(IDataStore& store, Offset entity) { return recordAt(store, entity).u32At(9); }
inline std::uint8_t flagsOf(IDataStore& store, Offset entity) { return recordAt(store, entity).u8At(13); }
inline Offset listRecordOf(IDataStore& store, Offset entity) { return recordAt(store, entity).u32At(14); }
inline std::u16string nameOf(IDataStore& store, Offset entity) {
    return recordAt(store, entity).view().name();
}

inline std::vector<Offset> childrenOf(IDataStore& store, Offset entity) {
    return data::Metadata::listedChildren(&store, listRecordOf(store, entity));
}

// Appends what another store holds, so that every record has the offset that it has there.
inline void copyRecords(IDataStore& from, IDataStore& to) {
    std::vector<Offset> gone;
    for (Offset offset = 0; offset < from.size(); ++offset) {
        const RecordBytes record = recordAt(from, offset);
        const Offset copy = appendTo(to, record);
        if (record.size() == 0) gone.push_back(copy);
    }
    for (const Offset offset : gone) to.remove(offset);
}

// Nothing if both stores have the same records at the same offsets, else the first that differ.
inline std::string differenceOf(IDataStore& a, IDataStore& b) {
    std::ostringstream out;
    for (Offset offset = 0; offset < a.size() || offset < b.size(); ++offset) {
        const RecordBytes inA = recordAt(a, offset), inB = recordAt(b, offset);
        if (inA == inB) continue;
        out << "record " << offset << "\n"
            << testing::PrintToString(inA) << "against\n"
            << testing::PrintToString(inB);
        break;
    }
    if (a.size() != b.size()) out << a.size() << " offsets against " << b.size();
    return out.str();
}

}  // namespace norvane::platform::test
