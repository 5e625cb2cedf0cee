// What is written of a store, and in which order.
#include <map>
#include <stdexcept>

#include "support/LoggingStore.h"
#include "support/ThrowingStore.h"
#include "unit/xml/Documents.h"
#include "xml/DocumentWriter.h"

namespace norvane::platform::data::test {
namespace {

using platform::test::LoggingStore;
using platform::test::StoreFailure;
using platform::test::ThrowingStore;

// A root "r" with what a test puts below it.
class Built {
  public:
    Built() { Metadata::Root(&store, u"r"); }

    void add(std::uint32_t offset) { Metadata::Root(&store, 0).addChild(offset); }
    std::uint32_t addContainer(std::uint32_t kind, std::u16string_view name) {
        const std::uint32_t offset = Structural::Container(&store, kind, name).offset();
        add(offset);
        return offset;
    }
    std::uint32_t addTable(std::u16string_view name) {
        const std::uint32_t offset = Design::Table(&store, name).offset();
        add(offset);
        return offset;
    }
    template <class T>
    void setField(std::uint32_t offset, Record::Field<T> field, T value) {
        Record::storeField(&store, offset, field, value);
    }

    MemoryDataStore store;
};

TEST(Serialize, NoOffsetGivesAHeaderAlone) {
    Document document(inRoot(""));
    EXPECT_EQ(written(document.store, nullptr, IDataStore::BADOFF), "");
}

TEST(Serialize, RecordOfAnotherKindGivesAHeaderAlone) {
    Document document("<root name='r'><name>R</name><group name='g'/></root>");
    for (std::uint32_t offset = 0; offset < document.store.size() + 2; ++offset) {
        const std::uint8_t kind = Record::kindOf(&document.store, offset);
        if (Record::isEntity(kind)) continue;
        EXPECT_EQ(written(document.store, nullptr, offset), "") << offset;
    }
}

TEST(Serialize, EmptyStoreGivesAHeaderAlone) {
    MemoryDataStore store;
    EXPECT_EQ(written(store), "");
}

TEST(Serialize, MissingStoreOrWriterIsNoDocument) {
    MemoryDataStore store;
    MemoryWriter writer;
    IXMLFrontEnd::serialize(nullptr, &writer, nullptr, 0);
    IXMLFrontEnd::serialize(&store, nullptr, nullptr, 0);
    EXPECT_FALSE(writer.closed());
    EXPECT_EQ(writer.text(), "");
}

TEST(Serialize, OpensWritesAndClosesTheWriter) {
    struct Writer : MemoryWriter {
        bool open() override {
            log += "open ";
            return false;  // nobody looks at it
        }
        void close() override { log += "close "; }
        std::size_t write(const void* buffer, std::size_t size) override {
            log += "write ";
            return MemoryWriter::write(buffer, size);
        }
        std::string log;
    } writer;
    Document document(inRoot(""));
    IXMLFrontEnd::serialize(&document.store, &writer, nullptr, 0);
    EXPECT_EQ(writer.log, "open write close ");
}

TEST(Serialize, RootHasVersionThenName) {
    Document document("<root name='r' version='4294967295'/>");
    EXPECT_EQ(document.written(), "<root version=\"4294967295\" name=\"r\"/>\n");
}

TEST(Serialize, ContainersHaveNameAndClassAndLinksATargetAlways) {
    Document document(inRoot("<node name='n'/><group name='g'/><link name='l'/><link name='m' to='g.x'/>"));
    EXPECT_EQ(document.written(),
              "<root version=\"0\" name=\"r\">\n"
              "  <node name=\"n\" class=\"\"/>\n"
              "  <group name=\"g\" class=\"\"/>\n"
              "  <link name=\"l\" class=\"\" to=\"\"/>\n"
              "  <link name=\"m\" class=\"\" to=\"g.x\"/>\n"
              "</root>\n");
}

TEST(Serialize, TableHasItsDefaultsByDimensionThenItsDisplayNamesThenItsChildren) {
    Document document(
        inRoot("<table name='t'><int8 name='i'/><name>T</name><default unit='Second' type='double'/>"
               "<default unit='Inch' type='vec2'/></table>"));
    EXPECT_EQ(document.written(),
              "<root version=\"0\" name=\"r\">\n"
              "  <table name=\"t\" class=\"\">\n"
              "    <default unit=\"Inch\" type=\"vec2\"/>\n"
              "    <default unit=\"Second\" type=\"double\"/>\n"
              "    <name locale=\"en-us\">T</name>\n"
              "    <int8 name=\"i\"/>\n"
              "  </table>\n"
              "</root>\n");
}

TEST(Serialize, DefaultOfAnUnknownUnitHasAnEmptyUnitAndOneOfAnUnknownTypeHasNone) {
    Built built;
    const std::uint32_t table = built.addTable(u"t");
    {
        Design::Table open(&built.store, table);
        open.addDefault(0x2FFF, 17);
        open.addDefault(0x5001, 24);
        open.addDefault(0x80000001, 3);
    }
    EXPECT_EQ(written(built.store),
              "<root version=\"0\" name=\"r\">\n"
              "  <table name=\"t\" class=\"\">\n"
              "    <default unit=\"\" type=\"string\"/>\n"
              "    <default unit=\"\" type=\"double\"/>\n"
              "    <default unit=\"Kilogram\"/>\n"
              "  </table>\n"
              "</root>\n");
}

TEST(Serialize, ValueHasItsAttributesInOrder) {
    Library library("<table name='T'><int8 name='i'>1</int8></table>");
    Document document(inGroup("<int8 uri='u' locale='de' units='Meter' name='i'/>"
                              "<struct uri='u' type='T' locale='de' units='Meter' name='s'/>"
                              "<struct type='T' name='t'/><struct type='X' name='v'/>"),
                      library.locator());
    EXPECT_EQ(document.written(library.locator()),
              "<root version=\"0\" name=\"r\">\n"
              "  <group name=\"g\" class=\"\">\n"
              "    <int8 name=\"i\" units=\"Meter\" locale=\"de\" uri=\"u\"/>\n"
              "    <struct name=\"s\" units=\"Meter\" locale=\"de\" type=\"T\" uri=\"u\"/>\n"
              "    <struct name=\"t\" type=\"T\">0</struct>\n"
              "    <struct name=\"v\" type=\"\"/>\n"
              "  </group>\n"
              "</root>\n");
}

TEST(Serialize, UnknownUnitIsAnEmptyAttribute) {
    Document document(inGroup("<int8 name='i'/>"));
    Design::Primitive(&document.store, document.at("g.i")).setUnits(0x2FFF);
    EXPECT_NE(document.written().find("<int8 name=\"i\" units=\"\"/>"), std::string::npos);
}

TEST(Serialize, EveryValueElementIsWrittenUnderItsName) {
    for (const tKeyword& keyword : kKeywords) {
        if (keyword.kind != Record::Kind::primitive) continue;
        MemoryDataStore store;
        const std::uint32_t offset = Design::Primitive(&store, keyword.detail, u"v").offset();
        const std::string type = keyword.detail == metadata::kStruct ? " type=\"\"" : "";
        EXPECT_EQ(written(store, nullptr, offset),
                  "<" + std::string(keyword.name) + " name=\"v\"" + type + "/>\n");
    }
}

TEST(Serialize, DisplayNamesComeInStoredOrder) {
    Document document(
        inRoot("<group name='g'><name locale='z'>1</name><name locale='a'>2</name><name>3</name></group>"));
    EXPECT_EQ(document.written(),
              "<root version=\"0\" name=\"r\">\n"
              "  <group name=\"g\" class=\"\">\n"
              "    <name locale=\"z\">1</name>\n"
              "    <name locale=\"a\">2</name>\n"
              "    <name locale=\"en-us\">3</name>\n"
              "  </group>\n"
              "</root>\n");
}

TEST(Serialize, SubtreeIsADocumentOfItsOwn) {
    Document document(inGroup("<name>G</name><table name='t'><int8 name='i'>1</int8></table>"));
    EXPECT_EQ(written(document.store, nullptr, document.at("g.t")),
              "<table name=\"t\" class=\"\">\n  <int8 name=\"i\">1</int8>\n</table>\n");
    EXPECT_EQ(written(document.store, nullptr, document.at("g.t.i")), "<int8 name=\"i\">1</int8>\n");
}

TEST(Serialize, WhatIsInheritedAndUntouchedIsLeftOut) {
    Library library(
        "<table name='A'><default unit='Meter' type='double'/><name>A</name><int32 name='i'>1</int32>"
        "<table name='t'><int8 name='j'>2</int8><int8 name='k'>3</int8></table></table>");
    Document document(
        inRoot("<table name='x' class='A'/>"
               "<group name='g' class='A'><table name='t'><int8 name='j'>9</int8></table></group>"),
        library.locator());
    EXPECT_EQ(document.written(),
              "<root version=\"0\" name=\"r\">\n"
              "  <table name=\"x\" class=\"A\"/>\n"
              "  <group name=\"g\" class=\"A\">\n"
              "    <table name=\"t\" class=\"\">\n"
              "      <int8 name=\"j\">9</int8>\n"
              "    </table>\n"
              "  </group>\n"
              "</root>\n");
}

TEST(Serialize, TableWithAClassWritesItsOwnDefaultsAndDisplayNames) {
    Library library("<table name='A'><int32 name='i'>1</int32></table>");
    Document document(
        inRoot("<table name='x' class='A'><name>X</name><default unit='Meter' type='double'/></table>"),
        library.locator());
    EXPECT_EQ(document.written(),
              "<root version=\"0\" name=\"r\">\n"
              "  <table name=\"x\" class=\"A\">\n"
              "    <default unit=\"Meter\" type=\"double\"/>\n"
              "    <name locale=\"en-us\">X</name>\n"
              "  </table>\n"
              "</root>\n");
}

TEST(Serialize, InheritedStartGivesAHeaderAlone) {
    Library library("<table name='A'><table name='t'><int8 name='j'>2</int8></table></table>");
    Document document(inRoot("<group name='g' class='A'/>"), library.locator());
    EXPECT_EQ(written(document.store, nullptr, document.at("g.t")), "");
    EXPECT_EQ(written(document.store, nullptr, document.at("g.t.j")), "");
}

TEST(Serialize, ChainDownToATouchedChildIsWritten) {
    Library library(
        "<table name='A'><table name='t'><table name='u'><int8 name='j'>2</int8></table></table></table>");
    Document document(inRoot("<group name='g' class='A'/>"), library.locator());
    Design::Primitive(&document.store, document.at("g.t.u.j")).touch();
    EXPECT_EQ(document.written(),
              "<root version=\"0\" name=\"r\">\n"
              "  <group name=\"g\" class=\"A\">\n"
              "    <table name=\"t\" class=\"\">\n"
              "      <table name=\"u\" class=\"\">\n"
              "        <int8 name=\"j\">2</int8>\n"
              "      </table>\n"
              "    </table>\n"
              "  </group>\n"
              "</root>\n");
}

TEST(Serialize, OptionalAndDimAreNeverWritten) {
    Document document(inRoot("<group name='g' optional='true'><int8 name='i' dim='2'/></group>"));
    EXPECT_EQ(document.written(),
              "<root version=\"0\" name=\"r\">\n"
              "  <group name=\"g\" class=\"\">\n"
              "    <int8 name=\"i\">0 0</int8>\n"
              "  </group>\n"
              "</root>\n");
}

TEST(Serialize, RecordsThatNoElementStandsForAreLeftOutWithAllBelow) {
    Built built;
    const std::uint32_t strange = built.addContainer(structure::kGroup, u"strange");
    Structural::Container(&built.store, strange)
        .addChild(Structural::Container(&built.store, structure::kNode, u"below").offset());
    built.setField(strange, Record::field::containerKind, std::uint8_t{3});
    const std::uint32_t group = built.addContainer(structure::kGroup, u"g");
    for (const std::uint32_t type : {0U, 25U, 0xFFFFFFFFU}) {
        const Design::Primitive primitive(&built.store, type, wide("p" + std::to_string(type)));
        Structural::Container(&built.store, group).addChild(primitive.offset());
    }
    EXPECT_EQ(written(built.store),
              "<root version=\"0\" name=\"r\">\n  <group name=\"g\" class=\"\"/>\n</root>\n");
}

TEST(Serialize, RecordsThatAreCutShortAreLeftOut) {
    Built built;
    for (const std::uint32_t size : {1U, 10U, 30U}) {
        const std::uint32_t offset =
            built.addContainer(structure::kGroup, wide("cut" + std::to_string(size)));
        std::string bytes(built.store.recordSize(offset), '\0');
        built.store.read(offset, bytes.data(), 0xFFFFFFFF);
        built.store.write(offset, bytes.data(), size, true);
        EXPECT_EQ(written(built.store, nullptr, offset), "") << size;
    }
}

TEST(Serialize, ChildThatIsListedTwiceIsWrittenOnce) {
    Built built;
    const std::uint32_t a = built.addContainer(structure::kGroup, u"a");
    const std::uint32_t list = Record::Snapshot(&built.store, 0)->load(Record::field::children);
    built.store.extend(list, &a, sizeof a);
    EXPECT_EQ(written(built.store),
              "<root version=\"0\" name=\"r\">\n  <group name=\"a\" class=\"\"/>\n</root>\n");
}

TEST(Serialize, SetThatStandsBelowItselfIsNotWrittenAgain) {
    Built built;
    const std::uint32_t a = built.addContainer(structure::kGroup, u"a");
    const std::uint32_t b = Structural::Container(&built.store, structure::kGroup, u"b").offset();
    Structural::Container(&built.store, a).addChild(b);
    Structural::Container(&built.store, b).addChild(a);
    Structural::Container(&built.store, b).addChild(b);
    EXPECT_EQ(written(built.store),
              "<root version=\"0\" name=\"r\">\n"
              "  <group name=\"a\" class=\"\">\n"
              "    <group name=\"b\" class=\"\"/>\n"
              "  </group>\n"
              "</root>\n");
    EXPECT_EQ(openCounts(built.store), 0U);
}

TEST(Serialize, ChangesNothingButOpenCountsAndThoseBack) {
    LoggingStore store;
    read(store, inGroup("<name>G</name><table name='t'><default unit='Meter' type='double'/><int8 "
                        "name='i'>1</int8></table>"));
    const std::string before = recordsOf(store.behind());
    store.takeCalls();
    written(store);
    for (const auto& call : store.changes()) EXPECT_TRUE(call.name == "write" && !call.flag) << call;
    EXPECT_EQ(recordsOf(store.behind()), before);
    EXPECT_EQ(store.count("lock"), 0U);
    EXPECT_EQ(store.count("flush"), 0U);
}

// Looks at the open counts of a store with each piece that it is given.
struct WatchingWriter : MemoryWriter {
    explicit WatchingWriter(IDataStore& watched) : store(watched) {}
    std::size_t write(const void*, std::size_t size) override {
        for (std::uint32_t offset = 0; offset < store.size(); ++offset) {
            const Record::Snapshot record(&store, offset);
            if (!Record::isEntity(record->kind())) continue;
            seen[narrow(record->name())] =
                std::max(seen[narrow(record->name())], record->load(Record::field::openCount));
        }
        return size;
    }

    IDataStore& store;
    std::map<std::string, std::uint32_t> seen;
};

TEST(Serialize, ElementsOnTheWayDownAreOpenWhileTheHostsWriterIsCalled) {
    Document document(inGroup("<table name='t'><string name='s'>" + std::string(1 << 20, 'x') +
                              "</string></table><int8 name='i'/>"));
    WatchingWriter writer(document.store);
    IXMLFrontEnd::serialize(&document.store, &writer, nullptr, 0);
    EXPECT_EQ(writer.seen,
              (std::map<std::string, std::uint32_t>{{"r", 1}, {"g", 1}, {"t", 1}, {"s", 1}, {"i", 0}}));
    EXPECT_EQ(openCounts(document.store), 0U);
}

TEST(Serialize, ExceptionOfTheWriterReachesTheHostAndTheWriterStaysOpen) {
    struct Writer : MemoryWriter {
        std::size_t write(const void*, std::size_t) override { throw std::runtime_error("full"); }
    } writer;
    Document document(inGroup("<string name='s'>" + std::string(1 << 20, 'x') + "</string>"));
    EXPECT_THROW(IXMLFrontEnd::serialize(&document.store, &writer, nullptr, 0), std::runtime_error);
    EXPECT_FALSE(writer.closed());
    EXPECT_EQ(openCounts(document.store), 0U);
}

TEST(Serialize, FailureOfTheStoreAtAnyCallReachesTheHost) {
    Library library("<table name='P'><int8 name='i'>1</int8></table>");
    Document document(
        "<root name='r'><name>R</name><table name='t'><default unit='Meter' type='double'/>"
        "<double name='d' units='Meter'>1 2</double></table><group name='g'><struct name='p' "
        "type='P'>5</struct>"
        "<link name='l' to='g'/></group></root>",
        library.locator());
    std::uint64_t failures = 0;
    for (std::uint64_t n = 1;; ++n) {
        ThrowingStore store(document.store);
        MemoryWriter writer;
        store.throwAt(n);
        bool hasThrown = false;
        try {
            IXMLFrontEnd::serialize(&store, &writer, library.locator(), 0);
        } catch (const StoreFailure&) {
            hasThrown = true;
        }
        EXPECT_EQ(hasThrown, store.thrown());
        EXPECT_EQ(writer.closed(), !hasThrown);
        if (!hasThrown) break;
        ++failures;
    }
    EXPECT_GT(failures, 30U);
}

}  // namespace
}  // namespace norvane::platform::data::test
