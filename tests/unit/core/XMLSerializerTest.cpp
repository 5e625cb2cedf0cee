#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <stdexcept>
#include <string>

#include "norvane/platform/core/io/MemoryReader.h"
#include "norvane/platform/core/io/MemoryWriter.h"
#include "norvane/platform/core/xml/XMLParser.h"
#include "norvane/platform/core/xml/XMLSerializer.h"
#include "support/EventLog.h"

namespace norvane::platform::core::xml {
namespace {

// The text that some calls give.
std::string written(const std::function<void(XMLSerializer&)>& calls) {
    QVTUUID identifier;
    XMLSerializer serializer(identifier);
    io::MemoryWriter writer;
    writer.open();
    serializer.attach(&writer);
    calls(serializer);
    serializer.detach();
    return writer.text();
}

std::string asText(std::u16string_view text) {
    const std::string document = written([&](XMLSerializer& out) {
        out.startElement(u"a", nullptr);
        out.addCharacterData(text.data(), text.size());
        out.endElement(false);
    });
    return document.substr(3, document.size() - 8);
}

std::string asAttribute(const std::u16string& value) {
    const std::string document = written([&](XMLSerializer& out) {
        out.startElement(u"a", nullptr);
        out.addAttribute(u"v", value.c_str(), nullptr);
        out.endElement(false);
    });
    return document.substr(6, document.size() - 10);
}

TEST(XMLSerializerTest, HeaderAlone) {
    EXPECT_EQ(written([](XMLSerializer& out) { out.emitXMLHeader(); }),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n");
}

TEST(XMLSerializerTest, ElementsOfElementsStandOnLinesOfTheirOwn) {
    const std::string document = written([](XMLSerializer& out) {
        out.emitXMLHeader();
        out.startElement(u"root", nullptr);
        out.addAttribute(u"version", u"1", nullptr);
        out.addAttribute(u"name", u"r", nullptr);
        out.startElement(u"group", nullptr);
        out.startElement(u"double", nullptr);
        out.addCharacterData(u"1");
        out.endElement(false);
        out.startElement(u"node", nullptr);
        out.endElement(false);
        out.endElement(false);
        out.endElement(false);
    });

    EXPECT_EQ(document,
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<root version=\"1\" name=\"r\">\n"
              "  <group>\n"
              "    <double>1</double>\n"
              "    <node/>\n"
              "  </group>\n"
              "</root>\n");
}

TEST(XMLSerializerTest, ElementWithTextIsLeftAlone) {
    const std::string document = written([](XMLSerializer& out) {
        out.startElement(u"a", nullptr);
        out.addCharacterData(u"x");
        out.startElement(u"b", nullptr);
        out.endElement(false);
        out.addCharacterData(u"y");
        out.endElement(false);
    });

    EXPECT_EQ(document, "<a>x<b/>y</a>\n");
}

TEST(XMLSerializerTest, SeveralPiecesMakeOneRunOfText) {
    const std::string document = written([](XMLSerializer& out) {
        out.startElement(u"a", nullptr);
        out.addCharacterData(u"1");
        out.addPlainText(" ");
        out.addCharacterData(u"2 and more", 1);
        out.addPlainText(" 3.5e-7");
        out.endElement(false);
    });

    EXPECT_EQ(document, "<a>1 2 3.5e-7</a>\n");
}

TEST(XMLSerializerTest, EmptyTextLeavesNoTrace) {
    const std::string document = written([](XMLSerializer& out) {
        out.startElement(u"a", nullptr);
        out.addCharacterData(u"");
        out.addCharacterData(nullptr);
        out.addCharacterData(nullptr, 3);
        out.addPlainText("");
        out.startElement(u"b", nullptr);
        out.endElement(false);
        out.addCharacterData(u"");
        out.endElement(false);
    });

    EXPECT_EQ(document, "<a>\n  <b/>\n</a>\n");
}

TEST(XMLSerializerTest, NullAttributeIsWrittenAsAnEmptyOne) {
    const std::string document = written([](XMLSerializer& out) {
        out.startElement(u"link", nullptr);
        out.addAttribute(u"to", nullptr, nullptr);
        out.addAttribute(u"class", u"", nullptr);
        out.endElement(false);
    });

    EXPECT_EQ(document, "<link to=\"\" class=\"\"/>\n");
}

TEST(XMLSerializerTest, TextEscapesWhatWouldBeRead) {
    EXPECT_EQ(asText(u"a & b < c > d \" ' ]]>"), "a &amp; b &lt; c &gt; d \" ' ]]&gt;");
    EXPECT_EQ(asText(u"tab\tline\nreturn\r"), "tab\tline\nreturn&#13;");
}

TEST(XMLSerializerTest, AttributesEscapeWhatWouldBeReadAsABlank) {
    EXPECT_EQ(asAttribute(u"a & b < c > d \" '"), "a &amp; b &lt; c &gt; d &quot; '");
    EXPECT_EQ(asAttribute(u"tab\tline\nreturn\r"), "tab&#9;line&#10;return&#13;");
}

TEST(XMLSerializerTest, EachWidthOfCharacterIsUtf8) {
    EXPECT_EQ(asText(u"\x7F\u0080\u07ff\u0800\ufffd\ue000"),
              "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBD\xEE\x80\x80");
    EXPECT_EQ(asText(u"\xD800\xDC00\xDBFF\xDFFF"), "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF");
}

TEST(XMLSerializerTest, ForbiddenCharactersAreReplaced) {
    const std::string replacement = "\xEF\xBF\xBD";
    for (char16_t control = 0; control < 0x20; ++control) {
        if (control == u'\t' || control == u'\n' || control == u'\r') continue;
        EXPECT_EQ(asText(std::u16string(1, control)), replacement);
    }
    EXPECT_EQ(asText(u"\xFFFE\xFFFF"), replacement + replacement);
    EXPECT_EQ(asAttribute(u"\x01\xFFFF"), replacement + replacement);
}

TEST(XMLSerializerTest, LoneSurrogatesAreReplaced) {
    const std::string replacement = "\xEF\xBF\xBD";
    EXPECT_EQ(asText(u"a\xD834"), "a" + replacement);
    EXPECT_EQ(asText(u"\xDD1E"
                     u"a"),
              replacement + "a");
    EXPECT_EQ(asText(u"\xD834\xD834\xDD1E"), replacement + "\xF0\x9D\x84\x9E");
    EXPECT_EQ(asAttribute(u"\xD834"), replacement);
    EXPECT_EQ(asAttribute(u"\xD834x"), replacement + "x");
}

TEST(XMLSerializerTest, PairAcrossTwoPiecesIsOneCharacter) {
    const std::string document = written([](XMLSerializer& out) {
        out.startElement(u"a", nullptr);
        out.addCharacterData(u"x\xD834");
        out.addCharacterData(u"");
        out.addCharacterData(u"\xDD1Ey");
        out.endElement(false);
    });

    EXPECT_EQ(document, "<a>x\xF0\x9D\x84\x9Ey</a>\n");
}

TEST(XMLSerializerTest, HalfAPairBeforeAnythingElseIsReplaced) {
    const auto withHalf = [](const std::function<void(XMLSerializer&)>& next) {
        return written([&](XMLSerializer& out) {
            out.startElement(u"a", nullptr);
            out.addCharacterData(u"\xD834");
            next(out);
            out.endElement(false);
        });
    };
    const std::string replacement = "\xEF\xBF\xBD";

    EXPECT_EQ(withHalf([](XMLSerializer&) {}), "<a>" + replacement + "</a>\n");
    EXPECT_EQ(withHalf([](XMLSerializer& out) { out.addCharacterData(u"x"); }),
              "<a>" + replacement + "x</a>\n");
    EXPECT_EQ(withHalf([](XMLSerializer& out) { out.addPlainText("1"); }), "<a>" + replacement + "1</a>\n");
    EXPECT_EQ(withHalf([](XMLSerializer& out) {
                  out.startElement(u"b", nullptr);
                  out.endElement(false);
              }),
              "<a>" + replacement + "<b/></a>\n");
}

TEST(XMLSerializerTest, NamesAreUtf8) {
    const std::string document = written([](XMLSerializer& out) {
        out.startElement(u"gr\u00f6\u00dfe", nullptr);
        out.addAttribute(u"\u20ac", u"1", nullptr);
        out.addCharacterData(u"x");
        out.endElement(false);
    });

    EXPECT_EQ(document,
              "<gr\xC3\xB6\xC3\x9F"
              "e \xE2\x82\xAC=\"1\">x</gr\xC3\xB6\xC3\x9F"
              "e>\n");
}

TEST(XMLSerializerTest, AttributeAfterContentAndSurplusEndAreIgnored) {
    const std::string document = written([](XMLSerializer& out) {
        out.endElement(false);
        out.addAttribute(u"x", u"1", nullptr);
        out.startElement(u"a", nullptr);
        out.addCharacterData(u"x");
        out.addAttribute(u"x", u"1", nullptr);
        out.endElement(false);
        out.endElement(false);
    });

    EXPECT_EQ(document, "<a>x</a>\n");
}

TEST(XMLSerializerTest, LongTextOfWideCharactersIsWhole) {
    std::u16string text;
    std::string expected;
    for (int index = 0; index < 50000; ++index) {
        text += u"\xD834\xDD1E\u20ac<x";
        expected += "\xF0\x9D\x84\x9E\xE2\x82\xAC&lt;x";
    }
    EXPECT_EQ(asText(text), expected);
    EXPECT_EQ(asText(text.substr(1)), "\xEF\xBF\xBD" + expected.substr(4));
    EXPECT_EQ(asAttribute(text), expected);
}

TEST(XMLSerializerTest, DeepDocumentIsNotMadeOfBlanks) {
    constexpr int kDepth = 100000;
    const std::string document = written([](XMLSerializer& out) {
        for (int level = 0; level < kDepth; ++level) out.startElement(u"g", nullptr);
        for (int level = 0; level < kDepth; ++level) out.endElement(false);
    });

    EXPECT_LT(document.size(), kDepth * 200u);
    EXPECT_NE(document.find("\n" + std::string(80, ' ') + "<g>\n" + std::string(80, ' ') + "<g>"),
              std::string::npos);
    EXPECT_EQ(document.find("\n" + std::string(81, ' ')), std::string::npos);
}

TEST(XMLSerializerTest, OutputIsReadBackAsItWas) {
    const std::string document = written([](XMLSerializer& out) {
        out.emitXMLHeader();
        out.startElement(u"a", nullptr);
        out.addAttribute(u"v", u" \t\n\r<&>\"' ", nullptr);
        out.addCharacterData(u" \t\n\r<&>\"' ]]>");
        out.endElement(false);
    });
    io::MemoryReader reader(document);
    test::EventLog log;
    XMLParser parser(log);

    ASSERT_TRUE(parser.parseDocument(&reader));

    EXPECT_EQ(log.text(), "<a v= \t\n\r<&>\"' >[ \t\n\r<&>\"' ]]>]</a>");
}

// Takes a few bytes at a time, and at some point none.
class Reluctant : public io::IDataWriter {
  public:
    explicit Reluctant(std::size_t most) : most_(most) {}
    bool open() override { return true; }
    void close() override {}
    std::size_t write(const void* buffer, std::size_t size) override {
        ++calls;
        const std::size_t count = std::min({size, std::size_t{7}, most_ - text.size()});
        text.append(static_cast<const char*>(buffer), count);
        return count;
    }
    std::string text;
    int calls = 0;

  private:
    std::size_t most_;
};

void writeLong(XMLSerializer& out) {
    out.startElement(u"a", nullptr);
    for (int index = 0; index < 20000; ++index) out.addCharacterData(u"0123456789");
    out.endElement(false);
}

TEST(XMLSerializerTest, ShortWritesAreRepeated) {
    QVTUUID identifier;
    XMLSerializer serializer(identifier);
    Reluctant writer(1u << 30);
    serializer.attach(&writer);
    writeLong(serializer);

    serializer.detach();

    EXPECT_EQ(writer.text, written(writeLong));
}

TEST(XMLSerializerTest, WriterThatTakesNothingEndsTheOutput) {
    QVTUUID identifier;
    XMLSerializer serializer(identifier);
    Reluctant writer(100);
    serializer.attach(&writer);

    EXPECT_THROW(writeLong(serializer), std::runtime_error);
    const int calls = writer.calls;
    writeLong(serializer);
    serializer.detach();

    EXPECT_EQ(writer.calls, calls);
    EXPECT_EQ(writer.text.size(), 100u);
}

TEST(XMLSerializerTest, DetachTellsThatTheRestIsNotTaken) {
    QVTUUID identifier;
    XMLSerializer serializer(identifier);
    Reluctant writer(0);
    serializer.attach(&writer);
    serializer.emitXMLHeader();

    EXPECT_THROW(serializer.detach(), std::runtime_error);
}

TEST(XMLSerializerTest, DestructionWithoutDetachWritesNothing) {
    Reluctant writer(1u << 30);
    {
        QVTUUID identifier;
        XMLSerializer serializer(identifier);
        serializer.attach(&writer);
        serializer.emitXMLHeader();
    }
    EXPECT_EQ(writer.calls, 0);
}

TEST(XMLSerializerTest, AttachBeginsANewDocument) {
    QVTUUID identifier;
    XMLSerializer serializer(identifier);
    io::MemoryWriter first;
    io::MemoryWriter second;
    serializer.attach(&first);
    serializer.startElement(u"open", nullptr);
    serializer.detach();

    serializer.attach(&second);
    serializer.startElement(u"a", nullptr);
    serializer.endElement(false);
    serializer.detach();

    EXPECT_EQ(first.text(), "<open");
    EXPECT_EQ(second.text(), "<a/>\n");
}

TEST(XMLSerializerTest, WithoutAWriterOutputIsDropped) {
    QVTUUID identifier;
    XMLSerializer serializer(identifier);

    writeLong(serializer);
    serializer.detach();
    serializer.attach(nullptr);
    writeLong(serializer);
    serializer.detach();
}

}  // namespace
}  // namespace norvane::platform::core::xml
