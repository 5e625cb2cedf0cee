// Values as text.
#include <cmath>
#include <limits>

#include "unit/xml/Documents.h"
#include "xml/ValueWriter.h"

namespace norvane::platform::data::test {
namespace {

// A primitive "v" as the only record of a store.
class Value {
  public:
    explicit Value(std::uint32_t type) : primitive(&store, type, u"v") {}

    template <class T>
    Value(std::uint32_t type, std::vector<T> elements) : Value(type) {
        primitive.writeValues(
            elements.data(), 0,
            static_cast<std::uint32_t>(elements.size() * sizeof(T)) / primitive.elementSize());
    }

    std::string text(ISchemaLocator* locator = nullptr) { return written(store, locator); }
    void addName() {
        Design::Primitive open(&store, 0);
        open.setLocalised(u"N", u"en");
    }

    MemoryDataStore store;
    Design::Primitive primitive;
};

constexpr char kWithName[] = "\n  <name locale=\"en\">N</name>\n";

TEST(WriteNumbers, AreSeparatedByOneBlank) {
    EXPECT_EQ(Value(metadata::kInt32, std::vector<std::int32_t>{1, -2, 3}).text(),
              "<int32 name=\"v\">1 -2 3</int32>\n");
}

TEST(WriteNumbers, OfEveryTypeAreWrittenFromTheirBytes) {
    using Bytes = std::vector<std::uint8_t>;
    EXPECT_EQ(Value(metadata::kBool, Bytes{0, 1, 2}).text(), "<bool name=\"v\">0 1 2</bool>\n");
    EXPECT_EQ(Value(metadata::kInt8, Bytes{255, 200}).text(), "<int8 name=\"v\">-1 -56</int8>\n");
    EXPECT_EQ(Value(metadata::kUint8, Bytes{255}).text(), "<uint8 name=\"v\">255</uint8>\n");
    EXPECT_EQ(Value(metadata::kInt16, Bytes{254, 255}).text(), "<int16 name=\"v\">-2</int16>\n");
    EXPECT_EQ(Value(metadata::kUint16, Bytes{2, 1}).text(), "<uint16 name=\"v\">258</uint16>\n");
    EXPECT_EQ(Value(metadata::kUint32, Bytes{255, 255, 255, 255}).text(),
              "<uint32 name=\"v\">4294967295</uint32>\n");
    EXPECT_EQ(
        Value(metadata::kInt64, std::vector<std::int64_t>{std::numeric_limits<std::int64_t>::min()}).text(),
        "<int64 name=\"v\">-9223372036854775808</int64>\n");
    EXPECT_EQ(Value(metadata::kUint64, std::vector<std::uint64_t>{~std::uint64_t{0}}).text(),
              "<uint64 name=\"v\">18446744073709551615</uint64>\n");
    EXPECT_EQ(Value(metadata::kScalar, std::vector<float>{1.5F, 2.0F}).text(),
              "<scalar name=\"v\">1.5 2</scalar>\n");
    EXPECT_EQ(Value(metadata::kVector2, std::vector<double>{0.25, 1e30}).text(),
              "<vector2 name=\"v\">0.25 1e+30</vector2>\n");
}

TEST(WriteNumbers, HaveSevenSignificantDigits) {
    EXPECT_EQ(Value(metadata::kDouble, std::vector<double>{0.1234567891, 123456789.0}).text(),
              "<double name=\"v\">0.1234568 1.234568e+08</double>\n");
}

TEST(WriteNumbers, WithoutElementsLeaveNoText) {
    EXPECT_EQ(Value(metadata::kInt32).text(), "<int32 name=\"v\"/>\n");
}

TEST(WriteNumbers, StandInAValBehindDisplayNames) {
    Value value(metadata::kInt32, std::vector<std::int32_t>{1, 2});
    value.addName();
    EXPECT_EQ(value.text(), "<int32 name=\"v\">" + std::string(kWithName) + "  <val>1 2</val>\n</int32>\n");
}

TEST(WriteNumbers, WithoutElementsHaveNoValEither) {
    Value value(metadata::kInt32);
    value.addName();
    EXPECT_EQ(value.text(), "<int32 name=\"v\">" + std::string(kWithName) + "</int32>\n");
}

TEST(WriteNumbers, BytesThatMakeNoWholeElementShiftTheStep) {
    // Only a damaged record has such a value: 11 bytes are two elements, five bytes apart.
    Value value(metadata::kInt32);
    Record::Entity record(&value.store, 0);
    const unsigned char bytes[11] = {1, 0, 0, 0, 0, 2, 0, 0, 9, 9, 9};
    record.setField(Record::field::valueSize, bytes, sizeof bytes);
    EXPECT_EQ(value.text(), "<int32 name=\"v\">1 2</int32>\n")
        << "what lies behind the last whole element is not read";
}

TEST(WriteText, OneStringIsTheTextOfTheElement) {
    EXPECT_EQ(Value(metadata::kString, std::vector<char16_t>{'a', 'b', 0}).text(),
              "<string name=\"v\">ab</string>\n");
    EXPECT_EQ(Value(metadata::kUuid, std::vector<char16_t>{'a', 0}).text(), "<uuid name=\"v\">a</uuid>\n");
}

TEST(WriteText, OneEmptyStringIsAnElementWithoutText) {
    EXPECT_EQ(Value(metadata::kString, std::vector<char16_t>{0}).text(), "<string name=\"v\"/>\n");
}

TEST(WriteText, SeveralStringsHaveAValEach) {
    EXPECT_EQ(Value(metadata::kString, std::vector<char16_t>{'a', 0, 0, 'b', 0}).text(),
              "<string name=\"v\">\n  <val>a</val>\n  <val/>\n  <val>b</val>\n</string>\n");
}

TEST(WriteText, OneStringStandsInAValBehindDisplayNames) {
    Value value(metadata::kString, std::vector<char16_t>{'a', 0});
    value.addName();
    EXPECT_EQ(value.text(), "<string name=\"v\">" + std::string(kWithName) + "  <val>a</val>\n</string>\n");
}

TEST(WriteText, SeveralStringsStandBehindDisplayNamesLikeThat) {
    Value value(metadata::kString, std::vector<char16_t>{'a', 0, 'b', 0});
    value.addName();
    EXPECT_EQ(value.text(),
              "<string name=\"v\">" + std::string(kWithName) + "  <val>a</val>\n  <val>b</val>\n</string>\n");
}

TEST(WriteText, WhatNoNulEndsIsNotWritten) {
    EXPECT_EQ(Value(metadata::kTime, std::vector<char16_t>{'a', 0, 'b'}).text(),
              "<time name=\"v\">\n  <val>a</val>\n</time>\n");
    EXPECT_EQ(Value(metadata::kUuid, std::vector<char16_t>{'a', 'b'}).text(), "<uuid name=\"v\"/>\n");
}

TEST(WriteText, IsEscaped) {
    EXPECT_EQ(Value(metadata::kString, std::vector<char16_t>{'<', '&', 0x2764, 0}).text(),
              "<string name=\"v\">&lt;&amp;\xE2\x9D\xA4</string>\n");
}

TEST(WriteBinary, IsBase64WithoutLineEnds) {
    EXPECT_EQ(Value(metadata::kBinary, std::vector<std::uint8_t>{0, 1, 2, 255}).text(),
              "<binary name=\"v\">AAEC/w==</binary>\n");
    const std::string text = Value(metadata::kBinary, std::vector<std::uint8_t>(3000)).text();
    EXPECT_NE(text.find(std::string(4000, 'A')), std::string::npos);
}

TEST(WriteBinary, StandsInAValBehindDisplayNames) {
    Value value(metadata::kBinary, std::vector<std::uint8_t>{1});
    value.addName();
    EXPECT_EQ(value.text(),
              "<binary name=\"v\">" + std::string(kWithName) + "  <val>AQ==</val>\n</binary>\n");
}

TEST(WriteValue, BehindAUriIsNotWritten) {
    Value value(metadata::kString);
    value.primitive.setUri(u"file:a b");
    value.addName();
    EXPECT_EQ(value.text(), "<string name=\"v\" uri=\"file:a b\">" + std::string(kWithName) + "</string>\n");
}

TEST(WriteValue, OfADamagedRecordEndsWithTheRecord) {
    Value value(metadata::kInt32, std::vector<std::int32_t>{1, 2});
    Record::storeField(&value.store, 0, Record::field::valueSize, std::uint32_t{0xFFFFFFFC});
    EXPECT_EQ(value.text(), "<int32 name=\"v\">1 2</int32>\n");
}

// A struct "v" of type T, whose members are given, with these bytes as value.
std::string structText(const std::string& members, const std::vector<std::uint8_t>& bytes,
                       bool hasName = false, bool hasLocator = true, const char16_t* type = u"T") {
    Library library("<table name='T'>" + members + "</table>");
    Value value(metadata::kStruct, bytes);
    value.primitive.setStructType(type);
    if (hasName) value.addName();
    return value.text(hasLocator ? library.locator() : nullptr);
}

const char* const kPair = "<uint16 name='a'>0</uint16><uint8 name='b'>0 0</uint8>";

TEST(WriteStructs, FieldsAndStructsAreSeparatedByOneBlank) {
    EXPECT_EQ(structText(kPair, {2, 1, 3, 4}), "<struct name=\"v\" type=\"T\">258 3 4</struct>\n");
    EXPECT_EQ(structText(kPair, {2, 1, 3, 4, 5, 0, 6, 7}),
              "<struct name=\"v\" type=\"T\">258 3 4 5 6 7</struct>\n");
}

TEST(WriteStructs, StandInAValBehindDisplayNames) {
    EXPECT_EQ(
        structText(kPair, {2, 1, 3, 4}, true),
        "<struct name=\"v\" type=\"T\">" + std::string(kWithName) + "  <val>258 3 4</val>\n</struct>\n");
}

TEST(WriteStructs, BytesThatMakeNoWholeStructAreNotWritten) {
    EXPECT_EQ(structText(kPair, {2, 1, 3, 4, 9, 9}), "<struct name=\"v\" type=\"T\">258 3 4</struct>\n");
    EXPECT_EQ(structText(kPair, {2, 1, 3}), "<struct name=\"v\" type=\"T\"/>\n");
}

TEST(WriteStructs, WithoutALocatorThereIsNoValueAndNoVal) {
    EXPECT_EQ(structText(kPair, {2, 1, 3, 4}, true, false),
              "<struct name=\"v\" type=\"T\">" + std::string(kWithName) + "</struct>\n");
}

TEST(WriteStructs, OfAnUnknownTypeHaveAnEmptyValBehindDisplayNames) {
    EXPECT_EQ(structText(kPair, {2, 1, 3, 4}, true, true, u"U"),
              "<struct name=\"v\" type=\"U\">" + std::string(kWithName) + "  <val/>\n</struct>\n");
    EXPECT_EQ(structText(kPair, {2, 1, 3, 4}, false, true, u"U"), "<struct name=\"v\" type=\"U\"/>\n");
}

TEST(WriteStructs, OfATypeWithoutRoomHaveAnEmptyVal) {
    EXPECT_EQ(structText("", {2, 1, 3, 4}, true),
              "<struct name=\"v\" type=\"T\">" + std::string(kWithName) + "  <val/>\n</struct>\n");
}

TEST(WriteStructs, TextFieldsRepeatTheNumberBefore) {
    EXPECT_EQ(structText("<uint8 name='a'>0</uint8><string name='s'>x</string><uint8 name='b'>0</uint8>",
                         {7, 0, 0, 0, 0, 8}),
              "<struct name=\"v\" type=\"T\">7 7 7 8</struct>\n");
}

TEST(WriteStructs, TextFieldsBeforeTheFirstNumberAreEmpty) {
    EXPECT_EQ(structText("<string name='s'/><uint8 name='b'>0</uint8>", {0, 0, 8}),
              "<struct name=\"v\" type=\"T\"> 8</struct>\n");
}

TEST(WriteStructs, RoomBehindAUriIsNotPassedOver) {
    EXPECT_EQ(structText("<uint8 name='u' uri=''/><uint8 name='b'>0</uint8>", {7, 8, 9}),
              "<struct name=\"v\" type=\"T\">7</struct>\n");
}

TEST(WriteStructs, NumberAtTheEndDoesNotReadPastTheValue) {
    EXPECT_EQ(
        structText("<string name='s'/><double name='d'>0</double>", {0, 0, 0, 0, 0, 0, 0, 0, 0xF8, 0x3F}),
        "<struct name=\"v\" type=\"T\"> 1.5</struct>\n");
}

// Types come from the host's locator, but it cannot make them up.
TEST(WriteStructs, SchemaOfSomebodyElseCountsAsNone) {
    struct Foreign : metadata::ISchema {
        WideString name() override { return u"T"; }
        metadata::IStructLayout* layout() override { return nullptr; }
    };
    struct Locator : ISchemaLocator {
        SharedPtr<metadata::ISchema> locate(WideString) override {
            return SharedPtr<metadata::ISchema>(new Foreign);
        }
        void addStore(IDataStore*) override {}
        bool removeStore(IDataStore*) override { return false; }
        void clearStores() override {}
    } locator;
    Value value(metadata::kStruct, std::vector<std::uint8_t>{1, 2});
    value.primitive.setStructType(u"T");
    EXPECT_EQ(value.text(&locator), "<struct name=\"v\" type=\"T\"/>\n");
    Document document(
        inRoot("<group name='g' class='T'><struct name='s' type='T' dim='2'>1</struct></group>"), &locator);
    EXPECT_THAT(document.bytes("g.s"), IsEmpty());
    EXPECT_EQ(document.record("g")->load(Record::field::classTextSize), 0U);
}

}  // namespace
}  // namespace norvane::platform::data::test
