// Values from text.
#include <cmath>
#include <limits>

#include "unit/xml/Documents.h"
#include "xml/ValueReader.h"

namespace norvane::platform::data::test {
namespace {

std::string group(const std::string& type, const std::string& text) {
    return inGroup("<" + type + " name='v'>" + text + "</" + type + ">");
}

std::vector<int> bytesOf(const std::string& type, const std::string& text) {
    return Document(group(type, text)).bytes("g.v");
}

std::string ones(int count) {
    std::string text;
    for (int i = 0; i < count; ++i) text += "1 ";
    return text;
}

TEST(ReadNumbers, AreStoredInTheBytesOfTheirType) {
    EXPECT_THAT(bytesOf("bool", "0 1 2"), ElementsAre(0, 1, 2));
    EXPECT_THAT(bytesOf("int8", "-1 127"), ElementsAre(255, 127));
    EXPECT_THAT(bytesOf("uint8", "255"), ElementsAre(255));
    EXPECT_THAT(bytesOf("int16", "-2"), ElementsAre(254, 255));
    EXPECT_THAT(bytesOf("uint16", "258"), ElementsAre(2, 1));
    EXPECT_THAT(bytesOf("int32", "-2"), ElementsAre(254, 255, 255, 255));
    EXPECT_THAT(bytesOf("uint32", "16909060"), ElementsAre(4, 3, 2, 1));
    EXPECT_THAT(bytesOf("int64", "-2"), ElementsAre(254, 255, 255, 255, 255, 255, 255, 255));
    EXPECT_THAT(bytesOf("uint64", "72623859790382856"), ElementsAre(8, 7, 6, 5, 4, 3, 2, 1));
    EXPECT_THAT(bytesOf("scalar", "1.5"), ElementsAre(0, 0, 0xC0, 0x3F));
    EXPECT_THAT(bytesOf("double", "1.5"), ElementsAre(0, 0, 0, 0, 0, 0, 0xF8, 0x3F));
    EXPECT_THAT(bytesOf("matrix2x2", "0 0 0 -2"),
                ElementsAre(0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
                            0, 0, 0, 0, 0xC0));
}

TEST(ReadNumbers, NarrowTypesKeepTheLowBytes) {
    EXPECT_THAT(bytesOf("uint8", "300"), ElementsAre(44));
    EXPECT_THAT(bytesOf("int8", "200"), ElementsAre(200));
    EXPECT_THAT(bytesOf("int16", "70000"), ElementsAre(0x70, 0x11));
    EXPECT_THAT(bytesOf("uint8", "-1"), ElementsAre(255));
}

TEST(ReadNumbers, TokenThatIsNoNumberUsesUpItsPlace) {
    Document document(
        inGroup("<int32 name='a'>1 x 3</int32><int32 name='b'>x 5</int32><int32 name='c'>1 2 x</int32>"
                "<int32 name='d' dim='3'>x x 7</int32><bool name='e'>true 1</bool>"));
    EXPECT_THAT(document.values<int>("g.a"), ElementsAre(1, 0, 3));
    EXPECT_THAT(document.values<int>("g.b"), ElementsAre(0, 5));
    EXPECT_THAT(document.values<int>("g.c"), ElementsAre(1, 2));
    EXPECT_THAT(document.values<int>("g.d"), ElementsAre(0, 0, 7));
    EXPECT_THAT(document.bytes("g.e"), ElementsAre(0, 1));
}

TEST(ReadNumbers, OwnOutputOfWhatIsNoNumberIsReadAsZero) {
    Document document(inGroup("<double name='a'>nan 1</double><double name='b'>2 inf 3</double>"));
    EXPECT_THAT(document.values<double>("g.a"), ElementsAre(0.0, 1.0));
    EXPECT_THAT(document.values<double>("g.b"), ElementsAre(2.0, 0.0, 3.0));
}

TEST(ReadNumbers, NothingIsStoredWhenNoTokenIsANumber) {
    Document document(
        inGroup("<int32 name='a'>x y z</int32><int32 name='b'></int32><int32 name='c'> \n </int32>"
                "<int32 name='d' dim='1'>x y z</int32>"));
    EXPECT_THAT(document.values<int>("g.a"), IsEmpty());
    EXPECT_THAT(document.values<int>("g.b"), IsEmpty());
    EXPECT_THAT(document.values<int>("g.c"), IsEmpty());
    EXPECT_THAT(document.values<int>("g.d"), ElementsAre(0));
}

TEST(ReadNumbers, FailuresAtTheEndDoNotLengthenTheValue) {
    EXPECT_THAT(bytesOf("int8", "1 2 x y"), ElementsAre(1, 2));
}

TEST(ReadNumbers, WhiteSpaceAroundThemDoesNotMatter) {
    EXPECT_THAT(bytesOf("int8", "\n  1\t2\r\n 3\n"), ElementsAre(1, 2, 3));
}

TEST(ReadNumbers, NumberEndsWhereItCannotGoOn) {
    EXPECT_THAT(bytesOf("int8", "12abc 0x1F 1,5"), ElementsAre(12, 0, 1));
    EXPECT_THAT(Document(group("double", "1,5 12em 3")).values<double>("g.v"), ElementsAre(1.0, 0.0, 3.0));
}

TEST(ReadNumbers, OutOfRangeIsNoNumber) {
    EXPECT_THAT(Document(group("int32", "2147483648 -2147483648")).values<std::int32_t>("g.v"),
                ElementsAre(0, std::numeric_limits<std::int32_t>::min()));
    EXPECT_THAT(Document(group("scalar", "1e39 1e-50 2")).values<float>("g.v"),
                ElementsAre(0.0F, 0.0F, 2.0F));
}

TEST(ReadNumbers, EachValBeginsAtTheFirstElement) {
    Document document(inGroup("<int32 name='i'><val>1 2 3</val><val>9</val></int32>"));
    EXPECT_THAT(document.values<int>("g.i"), ElementsAre(9, 2, 3));
}

TEST(ReadNumbers, LongTextsAreReadLikeShortOnes) {
    for (const std::size_t size : {4095U, 4096U, 4097U, 100000U}) {
        const std::string text = "7" + std::string(size - 3, ' ') + "-8";
        EXPECT_THAT(Document(group("int32", text)).values<int>("g.v"), ElementsAre(7, -8)) << size;
    }
}

TEST(ReadNumbers, ReferencesAndCdataAreText) {
    EXPECT_THAT(bytesOf("int8", "&#49;<![CDATA[2 3]]>&#32;4"), ElementsAre(12, 3, 4));
}

TEST(ReadText, IsStoredWithItsNul) {
    EXPECT_THAT(bytesOf("string", "ab"), ElementsAre('a', 0, 'b', 0, 0, 0));
    for (const char* type : {"uuid", "time", "uri", "version"})
        EXPECT_THAT(bytesOf(type, "x"), ElementsAre('x', 0, 0, 0)) << type;
}

TEST(ReadText, EmptyElementIsOneEmptyString) {
    EXPECT_THAT(bytesOf("string", ""), ElementsAre(0, 0));
    EXPECT_THAT(Document(inGroup("<string name='v'/>")).bytes("g.v"), ElementsAre(0, 0));
}

TEST(ReadText, WhiteSpaceStays) { EXPECT_EQ(Document(group("string", " a\n\tb ")).text("g.v"), " a\n\tb |"); }

TEST(ReadText, IsDecodedFromUtf8) {
    EXPECT_EQ(Document(group("string", "\xE2\x9D\xA4\xF0\x9F\x98\x80")).values<char16_t>("g.v"),
              (std::vector<char16_t>{0x2764, 0xD83D, 0xDE00, 0}));
}

TEST(ReadText, EachValAddsAString) {
    Document document(inGroup("<string name='v'><val>ab</val><val/><val>c</val></string>"));
    EXPECT_EQ(document.text("g.v"), "ab||c|");
}

TEST(ReadText, ValIsAddedBehindTheElementsOfDim) {
    Document document(
        inGroup("<string name='v' dim='2'><val>a</val></string><string name='w' dim='3'>a</string>"));
    EXPECT_EQ(document.text("g.v"), "||a|");
    EXPECT_EQ(document.text("g.w"), "a||");
}

TEST(ReadText, DisplayNameBetweenValsDoesNotDisturb) {
    Document document(inGroup("<string name='v'><val>a</val><name>V</name><val>b</val></string>"));
    EXPECT_EQ(document.text("g.v"), "a|b|");
}

TEST(ReadBinary, IsDecodedFromBase64) {
    EXPECT_THAT(bytesOf("binary", "AAECAwT/"), ElementsAre(0, 1, 2, 3, 4, 255));
    EXPECT_THAT(bytesOf("binary", "\n AAEC\n AwT/ \n"), ElementsAre(0, 1, 2, 3, 4, 255));
}

TEST(ReadBinary, EndsAtTheFirstCharacterThatIsNone) {
    EXPECT_THAT(bytesOf("binary", "AAEC*AwT/"), ElementsAre(0, 1, 2));
    EXPECT_THAT(bytesOf("binary", "*"), IsEmpty());
    EXPECT_THAT(bytesOf("binary", ""), IsEmpty());
}

TEST(ReadBinary, EachValBeginsAtTheFirstByte) {
    Document document(inGroup("<binary name='v'><val>AAEC</val><val>/w==</val></binary>"));
    EXPECT_THAT(document.bytes("g.v"), ElementsAre(255, 1, 2));
}

std::vector<int> structOf(const std::string& members, const std::string& text,
                          const std::string& dimension = "") {
    Library library("<table name='T'>" + members + "</table>");
    Document document(inGroup("<struct name='s' type='T' " + dimension + ">" + text + "</struct>"),
                      library.locator());
    EXPECT_THAT(document.reports, IsEmpty());
    return document.bytes("g.s");
}

const char* const kPair = "<uint16 name='a'>0</uint16><uint8 name='b'>0</uint8>";

TEST(ReadStructs, NumbersAreLaidIntoTheFieldsInOrder) {
    EXPECT_THAT(structOf(kPair, "258 3"), ElementsAre(2, 1, 3));
    EXPECT_THAT(structOf("<double name='a'>0</double><scalar name='b'>0</scalar>", "1.5 2"),
                ElementsAre(0, 0, 0, 0, 0, 0, 0xF8, 0x3F, 0, 0, 0, 0x40));
    EXPECT_THAT(
        structOf("<int16 name='a'>0 0</int16><table name='t'><int64 name='b'>0</int64></table>", "1 2 3"),
        ElementsAre(1, 0, 2, 0, 3, 0, 0, 0, 0, 0, 0, 0));
}

TEST(ReadStructs, SeveralStandOneAfterTheOther) {
    EXPECT_THAT(structOf(kPair, "1 2 3 4"), ElementsAre(1, 0, 2, 3, 0, 4));
}

TEST(ReadStructs, FewerNumbersThanOneStructTakesStoreNothing) {
    EXPECT_THAT(structOf(kPair, "1"), IsEmpty());
    EXPECT_THAT(structOf(kPair, "1", "dim='1'"), ElementsAre(0, 0, 0));
}

TEST(ReadStructs, NumbersThatMakeNoWholeStructAreNotStored) {
    EXPECT_THAT(structOf(kPair, "1 2 3"), ElementsAre(1, 0, 2));
}

TEST(ReadStructs, EmptyTokenAtTheEndCountsForTheNumberOfStructs) {
    EXPECT_THAT(structOf("<int16 name='a'>0</int16>", "5\n"), ElementsAre(5, 0, 0, 0));
    EXPECT_THAT(structOf(kPair, "1 2\n"), ElementsAre(1, 0, 2));
    EXPECT_THAT(structOf(kPair, "1 2 3\n"), ElementsAre(1, 0, 2, 3, 0, 0));
    EXPECT_THAT(structOf("<int16 name='a'>0</int16>", ""), ElementsAre(0, 0));
}

TEST(ReadStructs, TokenThatIsNoNumberKeepsTheSpillOfTheNumberBefore) {
    const char* three = "<int8 name='a'>0</int8><int8 name='b'>0</int8><int16 name='c'>0</int16>";
    EXPECT_THAT(structOf(three, "1 2 3"), ElementsAre(1, 2, 3, 0));
    EXPECT_THAT(structOf(three, "-1 x x"), ElementsAre(255, 255, 255, 255));
    EXPECT_THAT(structOf(three, "-1 2 x"), ElementsAre(255, 2, 0, 0));
    EXPECT_THAT(structOf(three, "x x x"), ElementsAre(0, 0, 0, 0));
}

TEST(ReadStructs, SpillDoesNotReachBehindTheLastStruct) {
    EXPECT_THAT(structOf("<int8 name='a'>0</int8>", "-1"), ElementsAre(255));
    EXPECT_THAT(structOf("<int8 name='a'>0</int8>", "1 -1"), ElementsAre(1, 255));
}

TEST(ReadStructs, ThousandsOfSurplusTokensAreHarmless) {
    std::string text;
    for (int i = 0; i < 5999; ++i) text += "-1 ";
    EXPECT_EQ(structOf("<int8 name='a' dim='3000'/>", text), std::vector<int>(6000, 255))
        << "the last is empty";
    EXPECT_EQ(structOf("<int8 name='a' dim='3001'/>", text), std::vector<int>(3001, 255));
    EXPECT_EQ(structOf("<double name='a' dim='3001'/>", text).size(), 8U * 3001U);
}

TEST(ReadStructs, TextAndBinaryFieldsTakeATokenForEachElementAndStayZero) {
    EXPECT_THAT(
        structOf("<int16 name='a'>0</int16><string name='s'>x</string><int16 name='b'>0</int16>", "1 7 8 2"),
        ElementsAre(1, 0, 0, 0, 0, 0, 2, 0));
    EXPECT_THAT(structOf("<binary name='s'>AAAA</binary><int16 name='b'>0</int16>", "7 7 7 2"),
                ElementsAre(0, 0, 0, 2, 0));
}

TEST(ReadStructs, SpillIntoATextFieldStays) {
    EXPECT_THAT(structOf("<int8 name='a'>0</int8><string name='s'/>", "-1 x"), ElementsAre(255, 255, 255));
}

TEST(ReadStructs, FieldBehindAUriTakesNoTokenButItsRoom) {
    EXPECT_THAT(
        structOf("<int16 name='a'>0</int16><int16 name='u' uri='x'/><int16 name='b'>0</int16>", "1 2"),
        ElementsAre(1, 0, 0, 0, 0, 0, 2, 0));
    EXPECT_THAT(structOf("<int16 name='u' uri='x'/><int16 name='b'>0</int16>", "1 2"),
                ElementsAre(0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 2, 0));
}

TEST(ReadStructs, TypeWithoutNumbersStoresNothing) {
    EXPECT_THAT(structOf("<int16 name='u' uri='x'/>", "1 2"), IsEmpty());
    EXPECT_THAT(structOf("", "1 2"), IsEmpty());
}

TEST(ReadStructs, InnerStructsAreUnrolled) {
    MemoryDataStore types;
    SharedPtr<ISchemaLocator> locator = ISchemaLocator::make(&types);
    EXPECT_THAT(
        read(
            types,
            inRoot(
                "<table name='Inner'><int8 name='i'>1</int8><int16 name='j'>2</int16></table>"
                "<table name='Outer'><struct name='p' type='Inner' dim='2'/><int8 name='k'>0</int8></table>"),
            locator.get()),
        IsEmpty());
    Document document(inGroup("<struct name='s' type='Outer'>1 2 3 4 5</struct>"), locator.get());
    EXPECT_THAT(document.bytes("g.s"), ElementsAre(1, 2, 0, 3, 4, 0, 5));
}

TEST(ReadStructs, EachValBeginsAtTheFirstStruct) {
    Library library("<table name='T'>" + std::string(kPair) + "</table>");
    Document document(
        inGroup("<struct name='s' type='T'><name>S</name><val>1 2 3 4</val><val>5 6</val></struct>"),
        library.locator());
    EXPECT_THAT(document.bytes("g.s"), ElementsAre(5, 0, 6, 3, 0, 4));
}

TEST(ReadStructs, FirstOfSeveralTypesCounts) {
    Library library(
        "<table name='A'><int16 name='i'>1</int16></table><table name='B'><int64 name='i'>1</int64></table>");
    Document document(inGroup("<struct name='s' type='X;A;B'>5</struct>"), library.locator());
    EXPECT_THAT(document.bytes("g.s"), ElementsAre(5, 0));
    EXPECT_EQ(document.record("g.s")->text(Record::field::structTypeSize), u"X;A;B");
}

TEST(ReadStructs, RoomForWhatFitsNoRecordIsNotTaken) {
    Library library("<table name='T'><int8 name='i'>1</int8><int32 name='u' uri='" +
                    std::string(500000, 'x') + "'/></table>");
    const std::string document = inGroup("<struct name='s' type='T'>" + ones(5000) + "</struct>");
    MemoryDataStore store;
    MemoryReader reader(document);
    core::xml::DiagnosingReader diagnosing(reader);
    IXMLFrontEnd::parse(&store, &diagnosing, library.locator(), nullptr, nullptr);
    EXPECT_EQ(diagnosing.stopText(), "value too large for a record");
}

TEST(ReadValues, ThatFitNoRecordEndTheParse) {
    Library library("<table name='T'><int8 name='i'>1</int8><binary name='b' dim='700'/></table>");
    for (const std::string& element : {"<struct name='v' type='T'>" + ones(1402) + "</struct>",
                                       "<string name='v'>" + std::string(600, 'x') + "</string>",
                                       "<binary name='v'>" + std::string(1400, 'A') + "</binary>",
                                       "<int8 name='v'>" + ones(1000) + "</int8>",
                                       "<int8 name='v' uri='" + std::string(600, 'x') + "'/>"}) {
        MemoryDataStore store(MemoryDataStore::Options{1000});
        const std::string document = inGroup(element);
        MemoryReader reader(document);
        core::xml::DiagnosingReader diagnosing(reader);
        IXMLFrontEnd::parse(&store, &diagnosing, library.locator(), nullptr, nullptr);
        EXPECT_EQ(diagnosing.stopText(), "value too large for a record") << element.substr(0, 20);
    }
}

}  // namespace
}  // namespace norvane::platform::data::test
