// Every record damaged in every field and cut at every length, and all that the model can do with it. Nothing
// may be read or written outside of a record (AddressSanitizer sees that), run for ever, or be counted wrong.
#include <limits>
#include <set>

#include "model/Subtree.h"
#include "support/ForwardingStore.h"
#include "unit/model/ModelFixture.h"

namespace norvane::platform::test {
namespace {

using Design::Primitive;
using Design::Table;

// One of each record, linked as they should be.
void fillSample(IDataStore& store) {
    ModelBuilder build(store);
    const Offset root = build.root();
    const Offset group = build.container(root, u"g");
    build.localise(group, u"de", u"eins");
    Record::Entity(&store, group).setField(Record::field::classTextSize, u"A;B", 8);
    Container(&store, group).setLinkTarget(u"g.t");
    const Offset table = build.table(group, u"t");
    Record::Entity(&store, table).setField(Record::field::tableClassSize, u"C", 4);
    build.defaults(table, 0x2001, 17);
    build.values<std::int32_t>(table, u"p", 12, {1, 2, 3});
    const Offset structure = build.primitive(table, u"s", 24);
    Primitive open(&store, structure);
    open.setLocale(u"de");
    open.setStructType(u"S");
    open.writeValues("value", 0, 5);
    Primitive(&store, build.primitive(group, u"u", 3)).setUri(u"file");
}

void ask(Item& item) {
    item.path();
    item.flags();
    item.isRemovable();
    item.localisedCount();
    item.localeAt(0);
    item.textAt(0xFFFFFFFFu);
    item.localised(u"de");
    item.localisedIndex(u"de");
}

void ask(Set& set) {
    ask(static_cast<Item&>(set));
    set.childCount();
    set.children();
    for (const Offset child : set.countedChildren()) Metadata::findChild(set.store(), child, u"p");
    for (const std::uint32_t index : {0u, 1u, 0xFFFFFFFFu}) set.childAt(index);
    for (const char16_t* path : {u"", u"g", u"t.p", u"g.t.s", u"g.t.p.x", u"u"}) set.resolve(path);
}

void ask(Table& table) {
    ask(static_cast<Set&>(table));
    for (const std::int32_t key : table.defaultKeys()) table.defaultUnit(key), table.defaultType(key);
}

void ask(Primitive& primitive) {
    ask(static_cast<Item&>(primitive));
    std::vector<char> target(4096);
    const std::uint32_t element = std::max(primitive.elementSize(), 1u);
    for (const std::uint32_t start : {0u, 1u, 3u, 0x7FFFFFFFu, 0xFFFFFFFFu})
        for (const std::uint32_t count : {1u, 2u, 4096u / 8})
            EXPECT_LE(std::size_t{primitive.readValues(target.data(), start, count)} * element,
                      target.size());
    primitive.units();
}

// An object of each class on each record, whatever it is.
void askEverything(IDataStore& store, Opening opening) {
    std::vector<Offset> offsets = {noRecord(), 0xFFFFu};
    for (Offset offset = 0; offset < store.size(); ++offset) offsets.push_back(offset);
    for (const Offset offset : offsets) {
        Root root(&store, offset, opening);
        ask(root);
        Container container(&store, offset, opening);
        ask(container);
        Table table(&store, offset, opening);
        ask(table);
        Primitive primitive(&store, offset, opening);
        ask(primitive);
        Metadata::isSubtreeClosed(&store, offset);
        Metadata::resolvePath(&store, offset, u"g.t.p");
        MemoryDataStore other;
        Metadata::cloneSubtree(&store, offset, &other);
        if (const Owned<Item> item = Metadata::openItem(&store, offset, opening)) item->clone(&other);
    }
}

void change(Item& item) {
    item.setFlags(2);
    item.clearFlags(3);
    item.touch();
    item.setLocalised(u"zwei", u"fr");
    item.setLocalised(nullptr, u"de");
    item.clone(item.store());
}

void change(Set& set) {
    change(static_cast<Item&>(set));
    const Offset fresh = ModelBuilder(*set.store()).primitive(kUnlisted, u"new");
    set.addChild(fresh);
    set.addChild(set.offset());
    set.renameChild(u"new", u"");
    for (const Offset child : set.children()) set.importChild(set.store(), child);
    set.reloadChildren();
    set.removeChild(u"");
    set.removeChild(u"t");
    set.removeChild(u"u");
}

void change(Primitive& primitive) {
    const std::string source(4096, 'x');
    change(static_cast<Item&>(primitive));
    primitive.writeValues(source.data(), 0, 1);
    primitive.writeValues(source.data(), 1, 2);
    primitive.writeValues(source.data(), 7, 2);
    primitive.overlayValues(reinterpret_cast<const std::byte*>(source.data()), {0, 1, 0, 1});
    primitive.setUnits(0x2001);
    primitive.setLocale(u"fr");
    primitive.setStructType(u"Other");
    primitive.setLocale(nullptr);
    primitive.resize(3);
    primitive.setUri(u"u");
    primitive.setUri(nullptr);
}

void changeEverything(IDataStore& store) {
    const auto size = static_cast<Offset>(store.size());
    for (Offset offset = 0; offset < size; ++offset) {
        Primitive primitive(&store, offset);
        change(primitive);
        Table table(&store, offset);
        table.addDefault(0x5019, 12);
        table.addDefault(0x2002, 12);
        change(static_cast<Set&>(table));
        Container container(&store, offset);
        container.setLinkTarget(u"x.y");
        container.setLinkTarget(nullptr);
        change(static_cast<Set&>(container));
        Root root(&store, offset);
        change(static_cast<Set&>(root));
    }
    for (Offset offset = 0; offset < size; ++offset) {
        if (const Owned<Item> item = Metadata::openItem(&store, offset)) item->erase();
        if (const Owned<Set> set = Metadata::openSet(&store, offset)) set->erase();
    }
}

std::vector<Offset> countsOf(IDataStore& store, Offset size) {
    std::vector<Offset> counts;
    for (Offset offset = 0; offset < size; ++offset) {
        const RecordBytes record = recordAt(store, offset);
        counts.push_back(record.view().isWholeEntity() ? record.u32At(5) : 0);
    }
    return counts;
}

// Does everything, and finds each object that was counted in counted out again.
void doEverything(IDataStore& sample, Offset damaged, const RecordBytes& bytes, Extensions extensions) {
    MemoryDataStore memory(MemoryDataStore::Options{.recordLimit = 1u << 20});
    copyRecords(sample, memory);
    putAt(memory, damaged, bytes);
    ForwardingStore store(memory, extensions);
    const auto size = static_cast<Offset>(memory.size());
    const std::vector<Offset> before = countsOf(memory, size);

    askEverything(store, Opening::transient);
    ASSERT_EQ(recordAt(memory, damaged), bytes);
    askEverything(store, Opening::handle);
    ASSERT_EQ(recordAt(memory, damaged), bytes);
    changeEverything(store);

    for (Offset offset = 0; offset < size; ++offset)
        if (recordAt(memory, offset).view().isWholeEntity()) {
            ASSERT_EQ(openCountOf(memory, offset), before[offset]) << "record " << offset;
        }
}

class DamagedTest : public testing::TestWithParam<Extensions> {
  public:
    DamagedTest() { fillSample(sample_); }
    ~DamagedTest() noexcept override = default;

  protected:
    void expectNoHarm(Offset offset, const RecordBytes& damaged, const std::string& what) {
        doEverything(sample_, offset, damaged, GetParam());
        if (HasFatalFailure())
            FAIL() << "record " << offset << ", " << what << "\n" << testing::PrintToString(damaged);
    }

    MemoryDataStore sample_;
};

INSTANTIATE_TEST_SUITE_P(Stores, DamagedTest, testing::Values(Extensions::off, Extensions::on),
                         [](const auto& each) {
                             return each.param == Extensions::on ? "WithViews" : "WithoutViews";
                         });

TEST_P(DamagedTest, SampleHasEveryKindOfRecord) {
    std::set<int> kinds;
    for (Offset offset = 0; offset < sample_.size(); ++offset) kinds.insert(Record::kindOf(&sample_, offset));

    EXPECT_THAT(kinds, ElementsAre(0, 1, 2, 3, 4, 5));
}

TEST_P(DamagedTest, NoFieldCanLeadAstray) {
    for (Offset offset = 0; offset < sample_.size(); ++offset) {
        const RecordBytes sound = recordAt(sample_, offset);
        const std::vector<std::uint32_t> values = {0,           1,      5,          0x7FFFFFFFu,
                                                   0xFFFFFFFCu, offset, noRecord(), 0xFFFFFFFFu};
        for (const Record::FieldRow& row : Record::formatOf(sound.view().kind())->fields)
            for (const std::uint32_t value : values) {
                std::string bytes = sound.bytes();
                bytes.replace(row.position, row.width, RecordBytes().u32(value).bytes(), 0, row.width);
                expectNoHarm(offset, RecordBytes(bytes), row.name);
            }
    }
}

TEST_P(DamagedTest, RecordsMayBeTakenForAnyKind) {
    for (Offset offset = 0; offset < sample_.size(); ++offset)
        for (const int kind : {0, 1, 2, 3, 4, 5, 6, 255}) {
            std::string bytes = recordAt(sample_, offset).bytes();
            bytes[0] = static_cast<char>(kind);
            expectNoHarm(offset, RecordBytes(bytes), "kind");
        }
}

TEST_P(DamagedTest, RecordsMayEndAnywhere) {
    for (Offset offset = 0; offset < sample_.size(); ++offset) {
        const RecordBytes sound = recordAt(sample_, offset);
        for (std::uint32_t size = 1; size < sound.size(); ++size)
            expectNoHarm(offset, RecordBytes(sound.part(0, size)), "cut");
    }
}

// Every reference in the store led to every record: rings, shared children, lists taken for entities.
TEST_P(DamagedTest, ReferencesMayLeadAnywhere) {
    for (Offset offset = 0; offset < sample_.size(); ++offset) {
        const RecordBytes sound = recordAt(sample_, offset);
        std::vector<std::uint32_t> positions;
        if (sound.view().isWholeEntity()) positions = {1, 9, 14};
        if (sound.view().isWhole(Record::Kind::table)) positions.push_back(22);
        if (sound.view().isWhole(Record::Kind::offsets))
            for (std::uint32_t i = 0; i < sound.view().valueCount(); ++i) positions.push_back(1 + 4 * i);
        for (const std::uint32_t position : positions)
            for (Offset value = 0; value < sample_.size(); ++value) {
                std::string bytes = sound.bytes();
                bytes.replace(position, 4, RecordBytes().u32(value).bytes());
                expectNoHarm(offset, RecordBytes(bytes), "reference");
            }
    }
}

}  // namespace
}  // namespace norvane::platform::test
