// What a document that is written and read again keeps, and what it is known to lose.
#include <limits>

#include "unit/xml/Documents.h"

namespace norvane::platform::data::test {
namespace {

// A document read, written, read again and written again.
class RoundTrip {
  public:
    explicit RoundTrip(std::string_view document, ISchemaLocator* locator = nullptr)
        : first(document, locator),
          text(first.written(locator)),
          second(text, locator),
          again(second.written(locator)) {}

    Document first;
    std::string text;
    Document second;
    std::string again;
};

TEST(RoundTrip, KeepsEverythingElse) {
    Library library(
        "<table name='A'><int32 name='i'>1 2</int32><table name='t'><int8 name='j'>3</int8></table></table>"
        "<table name='P'><int8 name='x'>0</int8><double name='y'>0</double></table>");
    RoundTrip trip(
        "<root name='r' version='7'><name>R</name><name locale='nl'>&lt;R&gt;</name>"
        "<table name='T'><default unit='Inch' type='vec3'/><table name='U'><int8 "
        "name='a'>1</int8></table></table>"
        "<group name='g' class='A'><int32 name='i'>5 6</int32><table name='t'><int8 "
        "name='j'>-4</int8></table>"
        "<node name='n'><link name='l' to='g.n'/><link name='m'/></node>"
        "<string name='s' locale='de'> two\n lines \t&#13;</string><string "
        "name='v'><val>a</val><val/><val>b</val></string>"
        "<string name='e'/><binary name='b'>AAECAwQ=</binary><uint64 name='q'>18446744073709551615</uint64>"
        "<double name='d' units='Link'><name>D</name><val>0.5 1e-300 -0</val></double>"
        "<vector3 name='w' uri='file:x'/><struct name='p' type='P'>1 2.5 3 4.5</struct></group></root>",
        library.locator());
    EXPECT_THAT(trip.first.reports, IsEmpty());
    EXPECT_THAT(trip.second.reports, IsEmpty());
    EXPECT_EQ(trip.again, trip.text);
    EXPECT_EQ(trip.second.text("g.s"), trip.first.text("g.s"));
    for (const char* path : {"g.i", "g.t.j", "g.b", "g.q", "g.d", "g.p", "g.v", "g.e", "T.U.a"}) {
        EXPECT_EQ(trip.second.bytes(path), trip.first.bytes(path)) << path;
        EXPECT_EQ(trip.second.flags(path), trip.first.flags(path)) << path;
    }
}

TEST(RoundTrip, LosesTheOptionalFlag) {
    RoundTrip trip(inRoot("<group name='g' optional='true'/>"));
    EXPECT_EQ(trip.first.flags("g"), Record::kOptional);
    EXPECT_EQ(trip.second.flags("g"), 0);
}

TEST(RoundTrip, KeepsTheOptionalFlagThatAClassGives) {
    Library library("<table name='A'><table name='t' optional='true'><int8 name='i'/></table></table>");
    RoundTrip trip(
        inRoot("<group name='g' class='A'><table name='t'><int8 name='i'>1</int8></table></group>"),
        library.locator());
    EXPECT_EQ(trip.second.flags("g.t"), Record::kOptional | Record::kFixed);
}

TEST(RoundTrip, LosesDigitsBehindTheSeventh) {
    RoundTrip trip(inGroup("<double name='d'>0.1234567891</double><double name='e'>123456789</double>"));
    EXPECT_THAT(trip.first.values<double>("g.d"), ElementsAre(0.1234567891));
    EXPECT_THAT(trip.second.values<double>("g.d"), ElementsAre(0.1234568));
    EXPECT_THAT(trip.second.values<double>("g.e"), ElementsAre(123456800.0));
    EXPECT_EQ(trip.again, trip.text);
}

TEST(RoundTrip, LosesWhatIsNotFinite) {
    Document first(inGroup("<double name='d'/>"));
    const double values[] = {1, std::numeric_limits<double>::infinity(),
                             std::numeric_limits<double>::quiet_NaN(), 2};
    Design::Primitive(&first.store, first.at("g.d")).writeValues(values, 0, 4);
    EXPECT_NE(first.written().find(">1 inf nan 2<"), std::string::npos);
    EXPECT_THAT(Document(first.written()).values<double>("g.d"), ElementsAre(1.0, 0.0, 0.0, 2.0));
}

TEST(RoundTrip, LosesUnknownUnits) {
    Document first(inGroup("<int8 name='i'/>"));
    Design::Primitive(&first.store, first.at("g.i")).setUnits(0x2FFF);
    Document second(first.written());
    EXPECT_THAT(second.reports, IsEmpty());
    EXPECT_EQ(second.record("g.i")->load(Record::field::unit), 0U);
}

TEST(RoundTrip, WritesTheFirstOfTwoNamesOfAUnit) {
    RoundTrip trip(inGroup("<int8 name='i' units='Quart'/>"));
    EXPECT_NE(trip.text.find("units=\"Quart_US_fluid\""), std::string::npos);
    EXPECT_EQ(trip.second.record("g.i")->load(Record::field::unit), 0x400CU);
}

TEST(RoundTrip, TurnsATextOfNoElementsIntoOneEmptyString) {
    Document first(inGroup("<string name='s'/>"));
    Design::Primitive(&first.store, first.at("g.s")).resize(0);
    Document second(first.written());
    EXPECT_THAT(first.bytes("g.s"), IsEmpty());
    EXPECT_THAT(second.bytes("g.s"), ElementsAre(0, 0));
    EXPECT_EQ(second.written(), first.written());
}

TEST(RoundTrip, KeepsATextOfNoElementsThatHasADisplayName) {
    Document first(inGroup("<string name='s'><name>S</name></string>"));
    EXPECT_THAT(first.bytes("g.s"), IsEmpty());
    EXPECT_THAT(Document(first.written()).bytes("g.s"), IsEmpty());
}

TEST(RoundTrip, LosesTheTextThatNoNulEnds) {
    Document first(inGroup("<string name='s'/>"));
    Design::Primitive(&first.store, first.at("g.s")).writeValues(u"a\0bc", 0, 4);
    EXPECT_EQ(first.text("g.s"), "a|bc");
    EXPECT_EQ(Document(first.written()).text("g.s"), "a|");
}

TEST(RoundTrip, KeepsTheTailOfALongerInheritedString) {
    Library library("<table name='A'><string name='s'>abcd</string></table>");
    Document first(inRoot("<group name='g' class='A'/>"), library.locator());
    {
        Design::Primitive primitive(&first.store, first.at("g.s"));
        primitive.resize(0);
        primitive.writeValues(u"x", 0, 2);
        primitive.touch();
    }
    Document second(first.written(), library.locator());
    EXPECT_EQ(first.text("g.s"), "x|");
    EXPECT_EQ(second.text("g.s"), "x|cd|");
}

TEST(RoundTrip, KeepsTheTailOfALongerInheritedArray) {
    Library library("<table name='A'><int32 name='i'>1 2 3</int32></table>");
    Document first(inRoot("<group name='g' class='A'/>"), library.locator());
    {
        Design::Primitive primitive(&first.store, first.at("g.i"));
        const std::int32_t value = 9;
        primitive.resize(0);
        primitive.writeValues(&value, 0, 1);
        primitive.touch();
    }
    EXPECT_THAT(first.values<int>("g.i"), ElementsAre(9));
    EXPECT_THAT(Document(first.written(), library.locator()).values<int>("g.i"), ElementsAre(9, 2, 3));
}

TEST(RoundTrip, AddsTheStringsOfAnOverrideToTheInheritedOnes) {
    Library library("<table name='A'><string name='s'>ab</string><string name='t'>ab</string></table>");
    Document first(inRoot("<group name='g' class='A'/>"), library.locator());
    for (const char* path : {"g.s", "g.t"}) {
        Design::Primitive primitive(&first.store, first.at(path));
        primitive.resize(0);
        primitive.writeValues(u"x\0y", 0, 4);
        primitive.touch();
    }
    {
        Design::Primitive named(&first.store, first.at("g.t"));
        named.resize(0);
        named.writeValues(u"x", 0, 2);
        named.setLocalised(u"T", u"en-us");
    }
    Document second(first.written(), library.locator());
    EXPECT_EQ(second.text("g.s"), "ab|x|y|");
    EXPECT_EQ(second.text("g.t"), "ab|x|");
}

TEST(RoundTrip, LosesUnitsUriAndLocaleOfAnOverride) {
    Library library("<table name='A'><int8 name='i' units='Meter'>1</int8><int8 name='j'>1</int8></table>");
    Document first(inRoot("<group name='g' class='A'/>"), library.locator());
    {
        Design::Primitive primitive(&first.store, first.at("g.i"));
        primitive.setUnits(0x2C001);
        primitive.setLocale(u"de");
        primitive.touch();
        Design::Primitive external(&first.store, first.at("g.j"));
        external.setUri(u"file:x");
        external.touch();
    }
    Document second(first.written(), library.locator());
    EXPECT_EQ(second.record("g.i")->load(Record::field::unit), 0x2001U);
    EXPECT_EQ(second.record("g.i")->load(Record::field::localeTagSize), 0U);
    EXPECT_EQ(second.flags("g.j"), Record::kFixed);
    EXPECT_THAT(second.bytes("g.j"), ElementsAre(1));
}

TEST(RoundTrip, LosesMembersThatWereMadeUnderAnUntouchedTable) {
    Library library("<table name='A'><table name='t'><int8 name='i'>1</int8></table></table>");
    Document first(inRoot("<group name='g' class='A'/>"), library.locator());
    Design::Table(&first.store, first.at("g.t"))
        .addChild(Design::Primitive(&first.store, metadata::kInt8, u"new").offset());
    EXPECT_TRUE(first.has("g.t.new"));
    EXPECT_FALSE(Document(first.written(), library.locator()).has("g.t.new"));
}

TEST(RoundTrip, ContainerInATableIsWrittenAndRefused) {
    Document first(inRoot("<table name='t'/>"));
    Design::Table(&first.store, first.at("t"))
        .addChild(Structural::Container(&first.store, structure::kNode, u"n").offset());
    Document second(first.written());
    EXPECT_THAT(second.reports, ElementsAre("node : could not nest the element"));
    EXPECT_FALSE(second.has("t.n"));
}

TEST(RoundTrip, DefaultOfATypeWithoutAWordIsReported) {
    Document first(inRoot("<table name='t'/>"));
    Design::Table(&first.store, first.at("t")).addDefault(0x2001, metadata::kStruct);
    Document second(first.written());
    EXPECT_THAT(second.reports, ElementsAre("default : unknown element, skipping"));
    EXPECT_THAT(Design::Table(&second.store, second.at("t")).defaultKeys(), IsEmpty());
}

TEST(RoundTrip, SortsDefaultsByDimension) {
    RoundTrip trip(
        inRoot("<table name='t'><default unit='Second' type='double'/><default unit='Meter' "
               "type='double'/></table>"));
    const auto pairs = [](Document& document) {
        const std::uint32_t list = document.record("t")->load(Record::field::defaults);
        return Metadata::listedChildren(&document.store, list);
    };
    EXPECT_THAT(pairs(trip.first), ElementsAre(0x2C001, 17, 0x2001, 17));
    EXPECT_THAT(pairs(trip.second), ElementsAre(0x2001, 17, 0x2C001, 17));
    EXPECT_EQ(trip.again, trip.text);
}

TEST(RoundTrip, LosesUnknownClassesAndAllWithoutALocator) {
    Library library("<table name='A'><int8 name='i'>1</int8></table>");
    RoundTrip trip(inRoot("<group name='g' class='X;A;Y'/>"), library.locator());
    EXPECT_NE(trip.text.find("class=\"A\""), std::string::npos);
    Document second(trip.text);
    EXPECT_NE(second.written().find("class=\"\""), std::string::npos);
    EXPECT_FALSE(second.has("g.i"));
}

TEST(RoundTrip, LosesTextAndBinaryFieldsOfAStruct) {
    Library library(
        "<table name='P'><int8 name='i'>0</int8><string name='s'/><int8 name='j'>0</int8></table>");
    Document first(inGroup("<struct name='p' type='P' dim='1'/>"), library.locator());
    const unsigned char value[] = {1, 'x', 0, 2};
    Design::Primitive(&first.store, first.at("g.p")).writeValues(value, 0, 4);
    EXPECT_THAT(Document(first.written(library.locator()), library.locator()).bytes("g.p"),
                ElementsAre(1, 0, 0, 2));
}

TEST(RoundTrip, LosesStructsThatAreWrittenWithoutALocator) {
    Library library("<table name='P'><int8 name='i'>0</int8></table>");
    Document first(inGroup("<struct name='p' type='P'>7</struct>"), library.locator());
    Document second(first.written(), library.locator());
    EXPECT_THAT(first.bytes("g.p"), ElementsAre(7));
    EXPECT_THAT(second.bytes("g.p"), ElementsAre(0)) << "the empty text counts as one struct without numbers";
    EXPECT_EQ(second.record("g.p")->text(Record::field::structTypeSize), u"P");
}

TEST(RoundTrip, LosesBytesBehindTheLastStruct) {
    Library library("<table name='P'><int16 name='i'>0</int16></table>");
    Document first(inGroup("<struct name='p' type='P'>7</struct>"), library.locator());
    Design::Primitive(&first.store, first.at("g.p")).writeValues("x", 2, 1);
    EXPECT_THAT(first.bytes("g.p"), ElementsAre(7, 0, 'x'));
    EXPECT_THAT(Document(first.written(library.locator()), library.locator()).bytes("g.p"),
                ElementsAre(7, 0));
}

TEST(RoundTrip, LosesCharactersThatDocumentsDoNotHave) {
    Document first(inGroup("<string name='s'/>"));
    Design::Primitive(&first.store, first.at("g.s")).writeValues(u"a\x01\xFFFE\xD800", 0, 5);
    EXPECT_EQ(Document(first.written()).text("g.s"), "a\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD|");
}

TEST(RoundTrip, MakesAnEmptyTargetOfNoTarget) {
    RoundTrip trip(inRoot("<link name='l'/>"));
    EXPECT_EQ(trip.first.record("l")->load(Record::field::linkTargetSize), 0U);
    EXPECT_EQ(trip.second.record("l")->load(Record::field::linkTargetSize), 2U);
    EXPECT_EQ(trip.again, trip.text);
}

TEST(RoundTrip, KeepsObjectsOfReservedNamesThoughNobodyFindsThem) {
    const std::string text =
        "<root version=\"0\" name=\"r\">\n"
        "  <group name=\"$$$$$_____empty_key\" class=\"\">\n"
        "    <name locale=\"$$$$$_____deleted_key\">x</name>\n"
        "    <int8 name=\"$$$$$_____deleted_key\">1</int8>\n"
        "    <int8 name=\"$$$$$_____deleted_key\">2</int8>\n"
        "  </group>\n"
        "</root>\n";
    RoundTrip trip(text);
    EXPECT_THAT(trip.first.reports, IsEmpty());
    EXPECT_EQ(trip.text, text);
    EXPECT_EQ(trip.again, text);
    EXPECT_FALSE(trip.first.has("$$$$$_____empty_key"));
}

}  // namespace
}  // namespace norvane::platform::data::test
