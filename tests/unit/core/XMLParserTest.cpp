#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "norvane/platform/core/io/MemoryReader.h"
#include "norvane/platform/core/xml/IXMLPauses.h"
#include "norvane/platform/core/xml/XMLParser.h"
#include "support/EventLog.h"

namespace norvane::platform::core::xml {
namespace {

using test::EventLog;

struct Outcome {
    bool sound;
    std::string events;
    std::string error;
    tPlace place;
};

Outcome parse(io::IDataReader& reader) {
    EventLog log;
    XMLParser parser(log, nullptr);
    const bool sound = parser.parseDocument(&reader);
    return {sound, log.text(), parser.errorText() ? parser.errorText() : "", parser.place()};
}

Outcome parse(std::string_view document) {
    io::MemoryReader reader(document);
    return parse(reader);
}

void expectRefused(std::string_view document, std::string_view error, std::string_view events = "") {
    const Outcome outcome = parse(document);

    EXPECT_FALSE(outcome.sound) << document;
    EXPECT_EQ(outcome.error, error) << document;
    EXPECT_EQ(outcome.events, events) << document;
}

void expectPlace(const tPlace& place, std::uint64_t line, std::uint64_t column, std::uint64_t byte) {
    EXPECT_EQ(place.line, line);
    EXPECT_EQ(place.column, column);
    EXPECT_EQ(place.byte, byte);
}

// Gives so many bytes at a time.
class PieceReader : public io::IDataReader {
  public:
    PieceReader(std::string_view document, std::size_t first, std::size_t next)
        : rest_(document), piece_(first), next_(next) {}
    bool open() override { return true; }
    void close() override {}
    std::size_t read(void* buffer, std::size_t size) override {
        const std::size_t count = rest_.copy(static_cast<char*>(buffer), std::min(size, piece_));
        rest_.remove_prefix(count);
        piece_ = next_;
        return count;
    }

  private:
    std::string_view rest_;
    std::size_t piece_;
    std::size_t next_;
};

std::string inUtf16(std::u16string_view text, bool littleEndian) {
    std::string bytes;
    for (const char16_t unit : text) {
        const char low = static_cast<char>(unit & 0xFF);
        const char high = static_cast<char>(unit >> 8);
        bytes += littleEndian ? low : high;
        bytes += littleEndian ? high : low;
    }
    return bytes;
}

TEST(XMLParserTest, GivesElementsAttributesAndTextInOrder) {
    const Outcome outcome = parse("<a x=\"1\" y='2'>t<b/>u</a>");

    EXPECT_TRUE(outcome.sound);
    EXPECT_EQ(outcome.events, "<a x=1 y=2>[t]<b></b>[u]</a>");
    EXPECT_EQ(outcome.error, "");
}

TEST(XMLParserTest, NamesKeepTheirCaseAndTheirColons) {
    EXPECT_EQ(parse("<Ns:A xmlns:Ns='u' Ns:X='1'/>").events, "<Ns:A xmlns:Ns=u Ns:X=1></Ns:A>");
}

TEST(XMLParserTest, CommentsAndInstructionsAreForwarded) {
    EXPECT_EQ(parse("<?go now?><!--one--><a><!-- two --><?stop?></a>").events,
              "<?go now?><!--one--><a><!-- two --><?stop ?></a>");
}

TEST(XMLParserTest, HeaderGivesNoCall) {
    EXPECT_EQ(parse("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<a/>").events, "<a></a>");
}

TEST(XMLParserTest, CdataIsText) { EXPECT_EQ(parse("<a>1<![CDATA[<&]]>2</a>").events, "<a>[1<&2]</a>"); }

TEST(XMLParserTest, CharacterAndPredefinedReferencesAreText) {
    EXPECT_EQ(parse("<a b='&lt;&#65;&quot;'>&amp;&gt;&apos;&#x20AC;</a>").events,
              "<a b=<A\">[&>'\xE2\x82\xAC]</a>");
}

TEST(XMLParserTest, WhiteSpaceIsVerbatimAndLineEndsAreLf) {
    EXPECT_EQ(parse("<a> \t x\r\ny\rz\n </a>").events, "<a>[ \t x\ny\nz\n ]</a>");
}

TEST(XMLParserTest, BlanksOfAttributesAreKept) {
    EXPECT_EQ(parse("<a u='  Degrees  Celsius '/>").events, "<a u=  Degrees  Celsius ></a>");
    EXPECT_EQ(parse("<a u='x\ty\nz'/>").events, "<a u=x y z></a>");
    EXPECT_EQ(parse("<a u='x&#10;y'/>").events, "<a u=x\ny></a>");
}

TEST(XMLParserTest, Utf8ByteOrderMarkIsNoText) {
    EXPECT_EQ(parse("\xEF\xBB\xBF<a>x</a>").events, "<a>[x]</a>");
}

TEST(XMLParserTest, Utf16IsReadByItsByteOrderMark) {
    for (const bool littleEndian : {true, false}) {
        const Outcome outcome = parse(inUtf16(u"\ufeff<a b='\u20ac'>\xD834\xDD1E</a>", littleEndian));

        EXPECT_TRUE(outcome.sound);
        EXPECT_EQ(outcome.events, "<a b=\xE2\x82\xAC>[\xF0\x9D\x84\x9E]</a>");
    }
}

TEST(XMLParserTest, DeclaredLatin1IsConverted) {
    EXPECT_EQ(parse("<?xml version='1.0' encoding='ISO-8859-1'?><a>\xDF</a>").events, "<a>[\xC3\x9F]</a>");
}

TEST(XMLParserTest, UnknownEncodingIsAnError) {
    expectRefused("<?xml version='1.0' encoding='EBCDIC-17'?><a/>", "unknown encoding");
}

TEST(XMLParserTest, MalformedUtf8IsAnError) {
    expectRefused("<a>\xC3</a>", "not well-formed (invalid token)", "<a>");
    expectRefused("<a>\xED\xA0\x80</a>", "not well-formed (invalid token)", "<a>");
}

TEST(XMLParserTest, ControlCharacterIsAnError) {
    expectRefused("<a>x\x01</a>", "not well-formed (invalid token)", "<a>[x]");
}

TEST(XMLParserTest, EmptyDocumentIsAnError) {
    expectRefused("", "no element found");
    expectRefused(" \n ", "no element found");
    expectRefused("<?xml version='1.0'?>", "no element found");
}

TEST(XMLParserTest, SecondDocumentElementIsAnError) {
    expectRefused("<a/><b/>", "junk after document element", "<a></a>");
}

TEST(XMLParserTest, MismatchedTagIsAnErrorAfterTheCallsBeforeIt) {
    expectRefused("<a><b>x</a>", "mismatched tag", "<a><b>[x]");
}

TEST(XMLParserTest, TwoAttributesOfOneNameAreAnError) {
    expectRefused("<a><b x='1' x='2'/></a>", "duplicate attribute", "<a>");
}

TEST(XMLParserTest, DoctypeWithoutInternalSubsetIsPassedOver) {
    EXPECT_EQ(parse("<!DOCTYPE a><a>x</a>").events, "<a>[x]</a>");
    EXPECT_TRUE(parse("<!DOCTYPE a SYSTEM 'a.dtd'><a x='&lt;1'>&amp;x</a>").sound);
    EXPECT_TRUE(parse("<!DOCTYPE a PUBLIC '-//X' 'file:///etc/passwd'><a/>").sound);
}

TEST(XMLParserTest, DoctypeWithInternalSubsetIsAnError) {
    expectRefused("<!DOCTYPE a []><a/>", "document type with an internal subset");
    expectRefused("<!DOCTYPE a SYSTEM 'a.dtd' [<!ELEMENT a ANY>]><a/>",
                  "document type with an internal subset");
    expectRefused("<!DOCTYPE a [<!ENTITY e 'x'>]><a>&e;</a>", "document type with an internal subset");
    expectRefused("<!DOCTYPE a [<!ENTITY % p SYSTEM '/etc/passwd'> %p;]><a/>",
                  "document type with an internal subset");
    expectRefused("<!DOCTYPE a [<!ENTITY e SYSTEM '/etc/passwd'>]><a>&e;</a>",
                  "document type with an internal subset");
    expectRefused("<!DOCTYPE a [<!ATTLIST a x CDATA 'd'>]><a/>", "document type with an internal subset");
}

TEST(XMLParserTest, EntityBombIsRefusedBeforeItIsRead) {
    std::string bomb = "<!DOCTYPE a [<!ENTITY e0 'ha'>";
    for (int level = 1; level < 40; ++level) {
        const std::string inner = "&e" + std::to_string(level - 1) + ";";
        bomb += "<!ENTITY e" + std::to_string(level) + " '" + inner + inner + inner + "'>";
    }
    bomb += "]><a>&e39;</a>";

    expectRefused(bomb, "document type with an internal subset");
}

TEST(XMLParserTest, UndefinedEntityIsAnError) {
    expectRefused("<a>x&e;y</a>", "undefined entity", "<a>[x]");
    expectRefused("<a b='&e;'/>", "undefined entity");
}

TEST(XMLParserTest, EntitiesThatAnUnreadDoctypeMightDeclareAreUndefined) {
    const std::string doctype = "<!DOCTYPE a SYSTEM 'a.dtd'>";
    expectRefused(doctype + "<a>x&e;y</a>", "undefined entity", "<a>[x]");
    expectRefused(doctype + "<a><b c='1&e;2'/></a>", "undefined entity", "<a>");
    expectRefused(doctype + "<a><b c='&lt;' d='&amp;&#38;&ampere;'>x</b></a>", "undefined entity", "<a>");
    expectRefused("<!DOCTYPE a PUBLIC '-//X' 'a.dtd'><a b='&e;'/>", "undefined entity");
}

TEST(XMLParserTest, EntitiesOfAttributesAreSeenInUtf16) {
    for (const bool littleEndian : {true, false}) {
        const std::u16string doctype = u"\ufeff<!DOCTYPE a SYSTEM 'a.dtd'>";
        EXPECT_EQ(parse(inUtf16(doctype + u"<a b='&e;'/>", littleEndian)).error, "undefined entity");
        // The bytes of this one hold those of "&e;".
        EXPECT_TRUE(parse(inUtf16(doctype + u"<a b='\u2665\u2626\u6526\u3b26'/>", littleEndian)).sound);
    }
}

TEST(XMLParserTest, UnfinishedDocumentIsAnErrorWhereverItIsCut) {
    const std::string document = "<?xml version='1.0'?><!--c--><a x='1'>t&amp;<b/><![CDATA[d]]>\xC3\x9F</a>";
    for (std::size_t size = 0; size < document.size(); ++size) {
        const Outcome outcome = parse(std::string_view(document).substr(0, size));
        EXPECT_FALSE(outcome.sound) << size;
        EXPECT_NE(outcome.error, "") << size;
    }
}

TEST(XMLParserTest, PiecesOfTheReaderDoNotMatter) {
    const std::string document =
        "\xEF\xBB\xBF<?xml version='1.0'?><!--c--><a x='1&lt;'>t&amp;\r\n<b/><![CDATA[d]]>\xC3\x9F</a>\r\n";
    const std::string whole = parse(document).events;
    for (std::size_t cut = 1; cut < document.size(); ++cut) {
        PieceReader reader(document, cut, document.size());
        const Outcome outcome = parse(reader);
        EXPECT_TRUE(outcome.sound) << cut;
        EXPECT_EQ(outcome.events, whole) << cut;
    }
    PieceReader bytes(document, 1, 1);
    EXPECT_EQ(parse(bytes).events, whole);
}

// Each start lets another part of the document fall on the end of what is read at once.
TEST(XMLParserTest, TextAcrossTheEndOfABufferIsWhole) {
    for (std::size_t shift = 0; shift < 60; ++shift) {
        const std::string filling((std::size_t{1} << 16) - 30 - shift, 'x');
        const std::string tail = "12 34<b c='long attribute'>&amp;\xE2\x82\xAC</b>end";
        const Outcome outcome = parse("<a>" + filling + tail + "</a>");
        EXPECT_TRUE(outcome.sound);
        EXPECT_EQ(outcome.events,
                  "<a>[" + filling + "12 34]<b c=long attribute>[&\xE2\x82\xAC]</b>[end]</a>");
    }
}

TEST(XMLParserTest, AttributeOfManyMegabytesIsReadInOnePiece) {
    const std::string value(24u << 20, 'v');
    EXPECT_EQ(parse("<a b='" + value + "'/>").events, "<a b=" + value + "></a>");
}

class DepthCounter : public XMLCallback {
  public:
    void startElement(const char*, const char* const*) override { deepest_ = std::max(deepest_, ++depth_); }
    void endElement(const char*) override { --depth_; }
    void comment(const char*) override {}
    void processingInstruction(const char*, const char*) override {}
    void characterData(const char*, int) override {}
    int depth() const { return depth_; }
    int deepest() const { return deepest_; }

  private:
    int depth_ = 0;
    int deepest_ = 0;
};

TEST(XMLParserTest, HundredThousandLevelsAreRead) {
    std::string document;
    for (int level = 0; level < 100000; ++level) document += "<group>";
    for (int level = 0; level < 100000; ++level) document += "</group>";
    io::MemoryReader reader(document);
    DepthCounter counter;
    XMLParser parser(counter);

    EXPECT_TRUE(parser.parseDocument(&reader));

    EXPECT_EQ(counter.deepest(), 100000);
    EXPECT_EQ(counter.depth(), 0);
}

// Has both sides of a parse in one text.
class Pauses : public EventLog, public IXMLPauses {
  public:
    void pausing() override { add("(pausing)"); }
};

struct LoggedReader : io::MemoryReader {
    LoggedReader(std::string_view bytes, Pauses& told) : MemoryReader(bytes), log(told) {}
    std::size_t read(void* buffer, std::size_t size) override {
        log.add("(read)");
        return MemoryReader::read(buffer, size);
    }

    Pauses& log;
};

TEST(XMLParserTest, CallbackIsToldBeforeTheReaderIsAskedAndAtTheEnd) {
    Pauses log;
    LoggedReader reader("<a>1</a>", log);
    XMLParser(log).parseDocument(&reader);
    EXPECT_EQ(log.text(), "(pausing)(read)(read)<a>[1]</a>(pausing)");
}

TEST(XMLParserTest, ReaderOfThisLibraryIsAskedWithoutAWord) {
    Pauses log;
    io::MemoryReader reader("<a>1</a>");
    XMLParser(log).parseDocument(&reader);
    EXPECT_EQ(log.text(), "<a>[1]</a>(pausing)");
}

TEST(XMLParserTest, CallbackIsToldOfTheEndOfAParseThatFails) {
    struct Failing : Pauses {
        void endElement(const char*) override { throw std::runtime_error("no"); }
    } log;
    LoggedReader reader("<a></a>", log);
    XMLParser parser(log);
    EXPECT_THROW(parser.parseDocument(&reader), std::runtime_error);
    EXPECT_EQ(log.text(), "(pausing)(read)(read)<a>(pausing)");
}

TEST(XMLParserTest, WhatIsThrownInThePauseBehindTheLastEventComesOut) {
    struct Failing : Pauses {
        void pausing() override {
            if (!text().empty()) throw std::runtime_error("no");
        }
    } log;
    io::MemoryReader reader("<a></a>");
    XMLParser parser(log);
    EXPECT_THROW(parser.parseDocument(&reader), std::runtime_error);
    EXPECT_EQ(log.text(), "<a></a>");
}

// Asks for the place of each event.
class PlaceLog : public EventLog {
  public:
    void watch(const XMLParser& parser) { parser_ = &parser; }
    std::vector<tPlace> places;

  protected:
    void happened() override { places.push_back(parser_->place()); }

  private:
    const XMLParser* parser_ = nullptr;
};

TEST(XMLParserTest, PlaceIsThatOfTheEvent) {
    io::MemoryReader reader("<a>\n  <b x='1'>text</b>\n <!--c--></a>");
    PlaceLog log;
    XMLParser parser(log);
    log.watch(parser);
    parser.parseDocument(&reader);

    ASSERT_EQ(log.text(), "<a>[\n  ]<b x=1>[text]</b>[\n ]<!--c--></a>");
    std::vector<tPlace> tags;
    for (const tPlace& place : log.places)
        if (tags.empty() || place.byte != tags.back().byte) tags.push_back(place);
    expectPlace(log.places.front(), 1, 1, 0);
    expectPlace(log.places[3], 2, 3, 6);
    expectPlace(log.places[4], 2, 12, 15);
    expectPlace(log.places[5], 2, 16, 19);
    expectPlace(log.places.back(), 3, 10, 33);
}

TEST(XMLParserTest, ColumnsAreCharactersAndBytesAreBytes) {
    io::MemoryReader reader("<a>\xC3\x9F\xF0\x9D\x84\x9E<b/></a>");
    PlaceLog log;
    XMLParser parser(log);
    log.watch(parser);
    parser.parseDocument(&reader);

    expectPlace(log.places[2], 1, 6, 9);
}

TEST(XMLParserTest, PlaceOfAnErrorIsWhereItIsSeen) {
    expectPlace(parse("<a>\n<b>\n</c></a>").place, 3, 3, 10);
    expectPlace(parse("<a>\n x & y</a>").place, 2, 5, 8);
    expectPlace(parse("").place, 1, 1, 0);
    expectPlace(parse("<a>\n\n").place, 3, 1, 5);
    expectPlace(parse("<!DOCTYPE a []><a/>").place, 1, 13, 12);
    expectPlace(parse("<!DOCTYPE a SYSTEM 'x'>\n<a>\n <b c='&e;'/></a>").place, 3, 2, 29);
}

TEST(XMLParserTest, PlaceAfterASoundDocumentIsItsEnd) { expectPlace(parse("<a>\n</a>\n").place, 3, 1, 9); }

TEST(XMLParserTest, PlaceBeforeAnyDocumentIsTheFirst) {
    EventLog log;
    const XMLParser parser(log);

    expectPlace(parser.place(), 1, 1, 0);
    EXPECT_EQ(parser.errorText(), nullptr);
}

class Thrower : public EventLog {
  public:
    explicit Thrower(std::string_view at) : at_(at) {}

  protected:
    void happened() override {
        if (text().ends_with(at_)) throw std::runtime_error("the callback has failed");
    }

  private:
    std::string at_;
};

TEST(XMLParserTest, ExceptionOfAnyCallbackEndsTheParseAndComesOut) {
    for (const char* at : {"<b x=1>", "</b>", "[t]", "<!--c-->", "<?p i?>"}) {
        io::MemoryReader reader("<a><b x='1'>t</b><!--c--><?p i?><d/></a>");
        Thrower thrower(at);
        XMLParser parser(thrower);

        EXPECT_THROW(parser.parseDocument(&reader), std::runtime_error) << at;

        EXPECT_TRUE(thrower.text().ends_with(at)) << thrower.text();
        EXPECT_EQ(parser.errorText(), nullptr);
    }
}

TEST(XMLParserTest, NothingIsCalledAfterAnException) {
    io::MemoryReader reader("<a><b/>x</a>");
    Thrower thrower("<b>");
    XMLParser parser(thrower);

    EXPECT_THROW(parser.parseDocument(&reader), std::runtime_error);

    EXPECT_EQ(thrower.text(), "<a><b>");
    expectPlace(parser.place(), 1, 4, 3);
}

class FailingReader : public PieceReader {
  public:
    FailingReader() : PieceReader("<a><b/>", 4, 3) {}
    std::size_t read(void* buffer, std::size_t size) override {
        const std::size_t count = PieceReader::read(buffer, size);
        if (count == 0) throw std::runtime_error("the reader has failed");
        return count;
    }
};

TEST(XMLParserTest, ExceptionOfTheReaderComesOut) {
    FailingReader reader;
    EventLog log;
    XMLParser parser(log);

    EXPECT_THROW(parser.parseDocument(&reader), std::runtime_error);

    EXPECT_EQ(parser.errorText(), nullptr);
}

TEST(XMLParserTest, ParserReadsOneDocumentAfterAnother) {
    EventLog log;
    XMLParser parser(log);
    io::MemoryReader bad("<a><b></a>");
    io::MemoryReader good("<c/>");

    EXPECT_FALSE(parser.parseDocument(&bad));
    EXPECT_TRUE(parser.parseDocument(&good));

    EXPECT_EQ(log.text(), "<a><b><c></c>");
    EXPECT_EQ(parser.errorText(), nullptr);
}

TEST(XMLParserTest, NullReaderGivesFalse) {
    EventLog log;
    XMLParser parser(log);

    EXPECT_FALSE(parser.parseDocument(nullptr));
}

// Parses a document of its own at each start tag.
class Nester : public EventLog {
  public:
    XMLParser* parser = nullptr;
    bool inner = true;

  protected:
    void happened() override {
        io::MemoryReader reader("<inner/>");
        inner = parser->parseDocument(&reader);
    }
};

TEST(XMLParserTest, ParserDoesNotReadTwoDocumentsAtOnce) {
    Nester nester;
    XMLParser parser(nester);
    nester.parser = &parser;
    io::MemoryReader reader("<outer/>");

    EXPECT_TRUE(parser.parseDocument(&reader));

    EXPECT_FALSE(nester.inner);
    EXPECT_EQ(nester.text(), "<outer></outer>");
}

}  // namespace
}  // namespace norvane::platform::core::xml
