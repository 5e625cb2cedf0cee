// Random models, random damage to their records, and what readers make of a store.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "records/OffsetSet.h"
#include "support/ModelBuilder.h"
#include "unit/integrity/Store.h"

namespace norvane::platform::test {

class Random {
  public:
    explicit Random(std::uint32_t seed) : engine_(seed) {}
    std::uint32_t below(std::size_t end) { return static_cast<std::uint32_t>(engine_() % end); }
    bool chance(std::uint32_t percent) { return below(100) < percent; }
    template <class T>
    const T& of(const std::vector<T>& all) {
        return all[below(all.size())];
    }

  private:
    std::mt19937 engine_;
};

inline std::u16string randomName(Random& random, int index) {
    std::u16string name = u"n";
    for (const char digit : std::to_string(index)) name += static_cast<char16_t>(digit);
    for (std::uint32_t more = random.below(4); more > 0; --more) name += u'x';
    return name;
}

// A model of some twenty entities, some of them with display names and defaults.
inline void fillAtRandom(IDataStore& store, Random& random) {
    ModelBuilder build(store);
    store.setVersion(1);
    std::vector<Offset> sets{build.root()};
    for (int i = 0; i < 20; ++i) {
        const std::u16string name = randomName(random, i);
        const Offset parent = random.of(sets);
        Offset made = 0;
        switch (random.below(3)) {
            case 0:
                made = build.container(parent, name, random.below(3));
                sets.push_back(made);
                break;
            case 1:
                made = build.table(parent, name);
                sets.push_back(made);
                if (random.chance(50)) build.defaults(made, 0x2001, 17);
                break;
            default:
                made = build.values<std::int32_t>(parent, name, data::metadata::kInt32, {1, 2, 3});
        }
        if (random.chance(30)) build.localise(made, u"de", u"Ding");
    }
}

inline std::vector<Offset> recordsOf(IDataStore& store) {
    std::vector<Offset> records;
    for (Offset offset = 0; offset < store.size(); ++offset)
        if (store.recordSize(offset) != 0) records.push_back(offset);
    return records;
}

// The positions of the fields that say what a record is and what it leads to, each with its width.
inline std::vector<std::pair<std::size_t, std::size_t>> structuralFields(const RecordBytes& record) {
    const auto* format = data::Record::formatOf(record.u8At(0));
    std::vector<std::pair<std::size_t, std::size_t>> fields{{0, 1}};
    if (!format) return fields;
    for (const auto& row : format->fields)
        if (row.width == 4 && row.name != std::string("unit") && row.name != std::string("data type") &&
            row.position + row.width <= record.size())
            fields.push_back({row.position, row.width});
    if (record.u8At(0) == 3)
        for (std::size_t at = 1; at + 4 <= record.size(); at += 4) fields.push_back({at, 4});
    return fields;
}

// Spoils one record; answers which.
inline Offset spoil(IDataStore& store, Random& random) {
    const std::vector<Offset> records = recordsOf(store);
    const Offset offset = random.of(records);
    const RecordBytes record = recordAt(store, offset);
    const std::uint32_t action = random.below(10);
    if (action == 0 && offset != 0) {
        store.remove(offset);
    } else if (action == 1 && record.size() > 1) {
        putAt(store, offset, RecordBytes(record.part(0, 1 + random.below(record.size() - 1))));
    } else if (action == 2) {
        putAt(store, offset, RecordBytes(record).zeros(1 + random.below(9)));
    } else {
        const auto [position, width] = random.of(structuralFields(record));
        const std::vector<std::uint32_t> extremes{
            0, 1, 2, 4, 6, 0x7FFFFFFF, 0xFFFFFFFF, random.of(records), random.of(records), offset};
        RecordBytes value;
        if (width == 1)
            value.u8(random.below(8));
        else
            value.u32(random.of(extremes));
        putAt(store, offset, with(record, position, value));
    }
    return offset;
}

// What can be seen of a store from its root: each entity once, with its flags, its sections and its display
// names. Not what a table has for defaults: any values may stand there.
class Meaning {
  public:
    explicit Meaning(IDataStore& store) : store_(store) { enter(0, none(), 0); }
    const std::string& text() const { return text_; }

  private:
    void enter(Offset offset, Offset parent, int depth) {
        const RecordBytes record = recordAt(store_, offset);
        const auto view = record.view();
        if (!view.isWholeEntity() || !met_.insert(offset)) return;
        text_ += "\n" + std::string(static_cast<std::size_t>(depth), ' ') + std::to_string(offset);
        if (record.u32At(1) != parent) text_ += " with another parent";
        if (record.u32At(5) != 0) text_ += " open";
        text_ += record.part(13, 1) + sectionsOf(view) + satellite(record.u32At(9), 5);
        if (record.u8At(0) == 2) text_ += satellite(record.u32At(22), 3);
        if (record.u8At(0) != 1) enterAll(recordAt(store_, record.u32At(14)), offset, depth + 1);
    }

    void enterAll(const RecordBytes& list, Offset parent, int depth) {
        if (!list.view().isWhole(data::Record::Kind::offsets)) return;
        for (std::uint32_t i = 0; i < list.view().valueCount(); ++i)
            if (list.view().value(i) != 0) enter(list.view().value(i), parent, depth);
    }

    static std::string sectionsOf(const data::Record::View& view) {
        std::string text;
        for (const auto& row : data::Record::formatOf(view.kind())->sections) {
            const auto section = view.section(data::Record::U32{row.sizePosition});
            const std::u16string units = data::Record::View::textOf(section);
            text += '|';
            if (row.isText)
                text.append(reinterpret_cast<const char*>(units.data()), units.size() * 2);
            else if (section.size != 0)
                text.append(reinterpret_cast<const char*>(section.begin), section.size);
        }
        return text;
    }

    std::string satellite(Offset offset, unsigned kind) {
        const RecordBytes record = recordAt(store_, offset);
        if (record.size() == 0 || record.u8At(0) != kind) return "|";
        return kind == 5 ? "|" + record.bytes() : "|defaults";
    }

    IDataStore& store_;
    data::Record::OffsetSet met_;
    std::string text_;
};

}  // namespace norvane::platform::test
