// What the attributes of value elements make.
#include "unit/xml/Documents.h"
#include "xml/XMLPrimitive.h"

namespace norvane::platform::data::test {
namespace {

std::string littleEndian(std::uint32_t value) {
    std::string text;
    for (int i = 0; i < 4; ++i, value >>= 8) {
        text += "0123456789abcdef"[value >> 4 & 15];
        text += "0123456789abcdef"[value & 15];
    }
    return text;
}

TEST(XMLPrimitive, EveryElementMakesItsType) {
    for (const tKeyword& keyword : kKeywords) {
        if (keyword.kind != Record::Kind::primitive || keyword.detail == metadata::kStruct) continue;
        Document document(inGroup("<" + std::string(keyword.name) + " name='x'/>"));
        EXPECT_THAT(document.reports, IsEmpty());
        EXPECT_EQ(document.record("g.x")->load(Record::field::dataType), keyword.detail) << keyword.name;
    }
}

TEST(XMLPrimitive, VectorsAndMatricesHaveTheirSizeWhateverDimSays) {
    const struct {
        const char* element;
        std::size_t count;
    } cases[] = {{"vector2", 2},   {"vector3", 3},   {"vector4", 4},
                 {"matrix2x2", 4}, {"matrix3x3", 9}, {"matrix4x4", 16}};
    for (const auto& each : cases) {
        Document document(inGroup("<" + std::string(each.element) + " name='v' dim='7'/>"));
        EXPECT_EQ(document.values<double>("g.v"), std::vector<double>(each.count)) << each.element;
    }
}

TEST(XMLPrimitive, DimMakesRoomForSoManyElements) {
    Document document(
        inGroup("<int32 name='i' dim='3'/><uint8 name='u' dim='2'/><string name='s' dim='2'/>"
                "<binary name='b' dim='4'/>"));
    EXPECT_THAT(document.values<int>("g.i"), ElementsAre(0, 0, 0));
    EXPECT_THAT(document.bytes("g.u"), ElementsAre(0, 0));
    EXPECT_THAT(document.bytes("g.b"), ElementsAre(0, 0, 0, 0));
    EXPECT_EQ(document.text("g.s"), "||");
}

TEST(XMLPrimitive, DimThatIsNoNumberIsZero) {
    Document document(
        inGroup("<int8 name='a' dim='x'/><int8 name='b' dim=''/><int8 name='c' dim='4294967296'/>"));
    EXPECT_THAT(document.bytes("g.a"), IsEmpty());
    EXPECT_THAT(document.bytes("g.b"), IsEmpty());
    EXPECT_THAT(document.bytes("g.c"), IsEmpty());
}

TEST(XMLPrimitive, DimIsReadUpToTheFirstCharacterThatIsNoDigit) {
    Document document(
        inGroup("<int8 name='a' dim='2x'/><int8 name='b' dim=' +3'/><int8 name='c' dim='1.9'/>"));
    EXPECT_EQ(document.bytes("g.a").size(), 2U);
    EXPECT_EQ(document.bytes("g.b").size(), 3U);
    EXPECT_EQ(document.bytes("g.c").size(), 1U);
}

TEST(XMLPrimitive, DimIsDecimal) {
    Document document(inGroup("<int8 name='a' dim='010'/><int8 name='b' dim='0x10'/>"));
    EXPECT_EQ(document.bytes("g.a").size(), 10U);
    EXPECT_EQ(document.bytes("g.b").size(), 0U);
}

TEST(XMLPrimitive, FewerNumbersThanDimLeaveTheRestZero) {
    Document document(inGroup("<int32 name='i' dim='3'>1 2</int32><vector3 name='v'>1 2</vector3>"));
    EXPECT_THAT(document.values<int>("g.i"), ElementsAre(1, 2, 0));
    EXPECT_THAT(document.values<double>("g.v"), ElementsAre(1.0, 2.0, 0.0));
}

TEST(XMLPrimitive, MoreNumbersThanDimLengthenTheValue) {
    Document document(inGroup("<vector3 name='v'>1 2 3 4 5</vector3>"));
    EXPECT_THAT(document.values<double>("g.v"), ElementsAre(1.0, 2.0, 3.0, 4.0, 5.0));
}

TEST(XMLPrimitive, UriMakesTheValueExternalAndDropsItsTextAndSize) {
    Document document(
        inGroup("<int32 name='i' uri='file:a' dim='3'>1</int32><int32 name='j' uri='b'><val>1</val></int32>"
                "<vector3 name='v' uri='c'>1 2 3</vector3>"));
    EXPECT_THAT(document.reports, IsEmpty());
    for (const char* path : {"g.i", "g.j", "g.v"}) {
        EXPECT_EQ(document.flags(path), Record::kHasUri);
        EXPECT_EQ(Design::Primitive(&document.store, document.at(path)).count(), 0U);
    }
    EXPECT_EQ(document.record("g.i")->text(Record::field::valueSize), u"file:a");
}

TEST(XMLPrimitive, EmptyUriIsAUri) {
    Document document(inGroup("<int8 name='i' uri=''>5</int8>"));
    EXPECT_EQ(document.flags("g.i"), Record::kHasUri);
    EXPECT_THAT(document.bytes("g.i"), ElementsAre(0, 0));
}

TEST(XMLPrimitive, EmptyLocaleIsStored) {
    Document document(inGroup("<int8 name='i' locale=''/>"));
    EXPECT_EQ(document.record("g.i")->load(Record::field::localeTagSize), 2U);
}

TEST(XMLPrimitive, RecordOfAnElementWithEverythingIsByteExact) {
    Document document("<int16 name='ab' locale='de' units='Inch' dim='2'>5</int16>");
    const std::string none = littleEndian(IDataStore::BADOFF);
    const std::string expected = "0:01" +        // kind
                                 none +          // parent
                                 "00000000" +    // open count
                                 none +          // locale
                                 "00"            // flags
                                 "00000000"      // children
                                 "16200000"      // unit
                                 "0a000000"      // data type
                                 "06000000"      // size of the locale tag
                                 "06000000"      // size of the name
                                 "00000000"      // size of the struct type
                                 "04000000"      // size of the value
                                 "640065000000"  // locale tag
                                 "610062000000"  // name
                                 "05000000"      // value
                                 "\n";
    EXPECT_EQ(recordsOf(document.store), "version 0\n" + expected);
}

TEST(XMLPrimitive, StructWithoutATypeIsRefused) {
    Library library("<table name='T'><int8 name='i'/></table>");
    Document document(inGroup("<struct name='s'>1</struct>"), library.locator());
    EXPECT_THAT(document.reports, ElementsAre("struct : missing mandatory 'type' attribute for <struct>"));
    EXPECT_FALSE(document.has("g.s"));
}

TEST(XMLPrimitive, StructWithoutALocatorIsRefused) {
    Document document(inGroup("<Struct name='s' type='T'>1</Struct>"));
    EXPECT_THAT(document.reports, ElementsAre("Struct : missing locator to resolve the 'type' attribute"));
    EXPECT_FALSE(document.has("g.s"));
}

TEST(XMLPrimitive, StructWithNeitherNameNorTypeLacksItsName) {
    Document document(inGroup("<struct/><struct name='s'/>"));
    EXPECT_THAT(document.reports, ElementsAre("struct : missing mandatory 'id' attribute",
                                              "struct : missing mandatory 'type' attribute for <struct>"));
}

TEST(XMLPrimitive, StructOfAnUnknownTypeIsMadeWithoutTypeAndValue) {
    Library library("<table name='T'><int8 name='i'/></table>");
    Document document(inGroup("<struct name='s' type='U' dim='3'>1 2</struct>"), library.locator());
    EXPECT_THAT(document.reports, IsEmpty());
    EXPECT_EQ(document.record("g.s")->load(Record::field::structTypeSize), 0U);
    EXPECT_THAT(document.bytes("g.s"), IsEmpty());
}

TEST(XMLPrimitive, RemembersWhyAStructHasNoType) {
    Library library("<table name='T'><int8 name='i'/></table>");
    MemoryDataStore store;
    XMLPrimitive handler(*keywordOf("struct"), &store, library.locator());
    const char* const attributes[] = {"name", "s", "type", "U", nullptr};
    const Owned<Metadata::Item> object = handler.create(attributes);
    EXPECT_TRUE(object);
    EXPECT_EQ(handler.error(), u"unable to resolve type schema 'U'");
}

TEST(XMLPrimitive, NothingNestsInAValue) {
    MemoryDataStore store;
    XMLPrimitive handler(*keywordOf("int8"), &store, nullptr);
    const char* const attributes[] = {"name", "i", nullptr};
    const Owned<Metadata::Item> parent = handler.create(attributes);
    Owned<Metadata::Item> child = handler.create(attributes);
    EXPECT_FALSE(handler.nest(*parent, child));
    EXPECT_TRUE(child);
    EXPECT_EQ(handler.error(), u"unable to nest");
}

TEST(XMLPrimitive, DimOfAStructCountsStructs) {
    Library library("<table name='T'><int8 name='i'>1</int8><double name='d'>2</double></table>");
    Document document(inGroup("<struct name='s' type='T' dim='3'/>"), library.locator());
    EXPECT_EQ(document.bytes("g.s"), std::vector<int>(27));
    EXPECT_EQ(document.record("g.s")->text(Record::field::structTypeSize), u"T");
}

TEST(XMLPrimitive, StructBehindAUriHasItsTypeAndNoSize) {
    Library library("<table name='T'><int8 name='i'>1</int8></table>");
    Document document(inGroup("<struct name='s' type='T' dim='3' uri='u'>1</struct>"), library.locator());
    EXPECT_EQ(document.record("g.s")->text(Record::field::structTypeSize), u"T");
    EXPECT_EQ(document.record("g.s")->text(Record::field::valueSize), u"u");
}

TEST(XMLPrimitive, StructBehindAUriMayHaveAnyDim) {
    Library library("<table name='T'><double name='d'>1</double></table>");
    Document document(inGroup("<struct name='s' type='T' dim='4294967295' uri='u'/><int8 name='after'/>"),
                      library.locator());
    EXPECT_TRUE(document.has("g.after"));
}

TEST(XMLPrimitive, TypeMeansNothingToElementsThatAreNoStructs) {
    Library library("<table name='T'><double name='d'>1</double></table>");
    Document document(inGroup("<int16 name='i' type='T' dim='2'/><int16 name='j' type='Unknown' dim='1'/>"),
                      library.locator());
    EXPECT_THAT(document.reports, IsEmpty());
    EXPECT_EQ(document.bytes("g.i").size(), 4U);
    EXPECT_EQ(document.bytes("g.j").size(), 2U);
    EXPECT_EQ(document.record("g.i")->load(Record::field::structTypeSize), 0U);
}

TEST(XMLPrimitive, ValueThatFitsNoRecordEndsTheParseAtOnce) {
    for (const char* element :
         {"int8 name='i' dim='-1'", "int8 name='i' dim='4294967295'", "double name='i' dim='600000000'",
          "struct name='i' type='T' dim='4294967295'", "struct name='i' type='T' dim='536870913'"}) {
        Library library("<table name='T'><double name='d'>2</double></table>");
        MemoryDataStore store;
        const std::string document =
            inGroup("<int8 name='before'/><" + std::string(element) + "/><int8 name='after'/>");
        MemoryReader reader(document);
        core::xml::DiagnosingReader diagnosing(reader);
        IXMLFrontEnd::parse(&store, &diagnosing, library.locator(), nullptr, nullptr);
        EXPECT_TRUE(diagnosing.stopped());
        EXPECT_EQ(diagnosing.stopText(), "value too large for a record");
        EXPECT_EQ(diagnosing.stopPlace().byte, document.find(element) - 1);
        EXPECT_NE(Metadata::resolvePath(&store, 0, u"g.before"), IDataStore::BADOFF);
        EXPECT_EQ(Metadata::resolvePath(&store, 0, u"g.after"), IDataStore::BADOFF);
    }
}

TEST(XMLPrimitive, ValueThatFitsNoRecordIsThrownOutOfAParseIntoAContainer) {
    MemoryDataStore store;
    const SharedPtr<IContainer> top = structure::IContainerFrontEnd::toplevel(&store, WideString(u"top"));
    EXPECT_THROW(readInto(*top, "<group name='x'><int8 name='i' dim='4294967295'/></group>"), std::bad_alloc);
}

}  // namespace
}  // namespace norvane::platform::data::test
