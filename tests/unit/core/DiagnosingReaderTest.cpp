#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "norvane/platform/core/io/MemoryReader.h"
#include "norvane/platform/core/xml/DiagnosingReader.h"
#include "norvane/platform/core/xml/XMLParser.h"
#include "support/EventLog.h"

namespace norvane::platform::core::xml {
namespace {

// Asks the reader, and not the parser, as the code of a host does.
class Asker : public test::EventLog {
  public:
    explicit Asker(const DiagnosingReader& reader) : reader_(reader) {}
    std::vector<std::uint64_t> bytes;
    std::string failAt;

  protected:
    void happened() override {
        bytes.push_back(reader_.place().byte);
        if (!failAt.empty() && text().ends_with(failAt)) throw std::runtime_error("the callback has failed");
    }

  private:
    const DiagnosingReader& reader_;
};

bool parse(DiagnosingReader& reader, Asker& asker) {
    EXPECT_TRUE(reader.open());
    XMLParser parser(asker);
    return parser.parseDocument(&reader);
}

TEST(DiagnosingReaderTest, KnowsThePlaceDuringTheParse) {
    io::MemoryReader document("<a><b>x</b></a>");
    DiagnosingReader reader(document);
    Asker asker(reader);

    EXPECT_TRUE(parse(reader, asker));

    EXPECT_EQ(asker.bytes, (std::vector<std::uint64_t>{0, 3, 6, 7, 11}));
    EXPECT_FALSE(reader.stopped());
}

TEST(DiagnosingReaderTest, KnowsTheLastPlaceWhenTheParserIsGone) {
    io::MemoryReader document("<a>\n</a>");
    DiagnosingReader reader(document);
    Asker asker(reader);
    parse(reader, asker);

    EXPECT_EQ(reader.place().line, 2u);
    EXPECT_EQ(reader.place().column, 5u);
    EXPECT_EQ(reader.place().byte, 8u);
}

TEST(DiagnosingReaderTest, TellsAnErrorInTheDocument) {
    io::MemoryReader document("<a>\n<b></a>");
    DiagnosingReader reader(document);
    Asker asker(reader);

    EXPECT_FALSE(parse(reader, asker));

    EXPECT_TRUE(reader.stopped());
    EXPECT_EQ(reader.stopText(), "mismatched tag");
    EXPECT_EQ(reader.stopPlace().line, 2u);
    EXPECT_EQ(reader.stopPlace().column, 6u);
    EXPECT_EQ(reader.stopPlace().byte, 9u);
}

TEST(DiagnosingReaderTest, TellsAnExceptionOfTheCallback) {
    io::MemoryReader document("<a>\n<b/></a>");
    DiagnosingReader reader(document);
    Asker asker(reader);
    asker.failAt = "<b>";

    EXPECT_THROW(parse(reader, asker), std::runtime_error);

    EXPECT_TRUE(reader.stopped());
    EXPECT_EQ(reader.stopText(), "the callback has failed");
    EXPECT_EQ(reader.stopPlace().line, 2u);
    EXPECT_EQ(reader.place().byte, 4u);
}

TEST(DiagnosingReaderTest, OpeningForgetsTheParseBefore) {
    io::MemoryReader document("<a>");
    DiagnosingReader reader(document);
    Asker asker(reader);
    parse(reader, asker);
    ASSERT_TRUE(reader.stopped());

    reader.open();

    EXPECT_FALSE(reader.stopped());
    EXPECT_EQ(reader.stopText(), "");
    EXPECT_EQ(reader.place().byte, 0u);
}

class Unreadable : public io::IDataReader {
  public:
    bool open() override { return false; }
    void close() override { closed = true; }
    std::size_t read(void*, std::size_t) override { throw 17; }
    bool closed = false;
};

TEST(DiagnosingReaderTest, OpenAndCloseAreTheOtherReaders) {
    Unreadable unreadable;
    DiagnosingReader reader(unreadable);

    EXPECT_FALSE(reader.open());
    reader.close();

    EXPECT_TRUE(unreadable.closed);
}

TEST(DiagnosingReaderTest, TellsAnExceptionOfTheReaderOfAnyType) {
    Unreadable unreadable;
    DiagnosingReader reader(unreadable);
    Asker asker(reader);
    XMLParser parser(asker);

    EXPECT_THROW(parser.parseDocument(&reader), int);

    EXPECT_TRUE(reader.stopped());
    EXPECT_EQ(reader.stopText(), "unknown exception");
}

class Listener : public io::MemoryReader, public IXMLParseListener {
  public:
    explicit Listener(std::string_view document) : MemoryReader(document) {}
    ~Listener() noexcept override {}
    void parsing(const XMLParser& parser) override {
        calls += "parsing ";
        EXPECT_EQ(parser.place().byte, 0u);
        if (failAt == "parsing") throw std::runtime_error("the listener has failed");
    }
    void stopped(const tPlace&, const char* text) override {
        calls += std::string("stopped:") + text + " ";
        if (failAt == "stopped") throw std::logic_error("the listener has failed");
    }
    void finished() override { calls += "finished "; }
    std::string calls;
    std::string failAt;
};

TEST(IXMLParseListenerTest, HearsTheCourseOfASoundParse) {
    Listener listener("<a/>");
    test::EventLog log;
    XMLParser parser(log);

    parser.parseDocument(&listener);

    EXPECT_EQ(listener.calls, "parsing finished ");
}

TEST(IXMLParseListenerTest, HearsOfTheErrorOnce) {
    Listener listener("<a><b></a></b>");
    test::EventLog log;
    XMLParser parser(log);

    parser.parseDocument(&listener);

    EXPECT_EQ(listener.calls, "parsing stopped:mismatched tag finished ");
}

TEST(IXMLParseListenerTest, HearsTheEndEvenIfItThrowsItself) {
    for (const char* failAt : {"parsing", "stopped"}) {
        Listener listener("<a>");
        listener.failAt = failAt;
        test::EventLog log;
        XMLParser parser(log);

        EXPECT_ANY_THROW(parser.parseDocument(&listener));

        EXPECT_TRUE(listener.calls.ends_with(std::string("finished "))) << listener.calls;
        io::MemoryReader again("<a/>");
        EXPECT_TRUE(parser.parseDocument(&again));
    }
}

}  // namespace
}  // namespace norvane::platform::core::xml
