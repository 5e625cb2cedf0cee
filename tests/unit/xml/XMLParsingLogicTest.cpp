// The course of a parse, whatever its elements mean.
#include <stdexcept>

#include "norvane/platform/core/xml/DiagnosingReader.h"
#include "support/LoggingStore.h"
#include "support/ThrowingStore.h"
#include "unit/xml/Documents.h"
#include "xml/XMLParsingLogic.h"

namespace norvane::platform::data::test {
namespace {

using core::io::IDataReader;
using platform::test::Extensions;
using platform::test::LoggingStore;
using platform::test::StoreFailure;
using platform::test::ThrowingStore;

// What the host's objects are called with, all in one list.
using Log = std::vector<std::string>;

struct LoggingReader : MemoryReader {
    LoggingReader(Log& calls, std::string_view bytes, bool isThere = true)
        : MemoryReader(bytes), log(calls), opens(isThere) {}

    bool open() override {
        log.push_back("open");
        return MemoryReader::open() && opens;
    }
    void close() override { log.push_back("close"); }
    std::size_t read(void* buffer, std::size_t size) override {
        if (log.empty() || log.back() != "read") log.push_back("read");
        return MemoryReader::read(buffer, size);
    }

    Log& log;
    bool opens;
};

struct LoggingReporter : IErrorReporter {
    explicit LoggingReporter(Log& calls) : log(calls) {}
    void report(WideString message) override { log.push_back("report " + narrow(message.view())); }

    Log& log;
};

// Knows no type.
struct LoggingLocator : ISchemaLocator {
    explicit LoggingLocator(Log& calls) : log(calls) {}

    SharedPtr<metadata::ISchema> locate(WideString names) override {
        log.push_back(names.value() ? "locate \"" + narrow(names.view()) + "\"" : "locate null");
        return {};
    }
    void addStore(IDataStore*) override { log.push_back("addStore"); }
    bool removeStore(IDataStore*) override { return false; }
    void clearStores() override { log.push_back("clearStores"); }

    Log& log;
};

struct FlushedStore : MemoryDataStore {
    explicit FlushedStore(Log& calls) : log(calls) {}
    void flush() override { log.push_back("flush"); }

    Log& log;
};

// Everything that a parse into a store calls, other than the store's records.
Log courseOf(std::string_view document, bool opens = true) {
    Log log;
    FlushedStore store(log);
    LoggingReader reader(log, document, opens);
    LoggingReporter reporter(log);
    LoggingLocator locator(log);
    IXMLFrontEnd::parse(&store, &reader, &locator, nullptr, &reporter);
    return log;
}

TEST(Parse, OpensReadsClosesAndFlushes) {
    EXPECT_THAT(courseOf("<?xml version='1.0'?>"), ElementsAre("open", "read", "close", "flush"));
}

TEST(Parse, ReaderThatDoesNotOpenIsNotReadButTheStoreIsFlushed) {
    EXPECT_THAT(courseOf("<root name='r'/>", false), ElementsAre("open", "flush"));
}

TEST(Parse, LocatorHearsOfEveryElementThatIsLookedAt) {
    EXPECT_THAT(courseOf("<root name='r'><group name='g' class='A;B'><name>G</name><x><group name='h'/></x>"
                         "</group></root>"),
                ElementsAre("open", "read", "locate null", "locate null", "locate \"A;B\"", "locate null",
                            "locate null", "report x : unknown element, skipping", "close", "flush"));
}

TEST(Parse, ElementInASubElementIsRefusedBeforeTheLocatorHearsOfIt) {
    EXPECT_THAT(courseOf("<root name='r'><name><group name='g'/></name></root>"),
                ElementsAre("open", "read", "locate null", "locate null",
                            "report group : cannot nest anything under a sub-element", "close", "flush"));
}

TEST(Parse, StructAsksForItsTypeWhenItBeginsAndWhenItEnds) {
    EXPECT_THAT(courseOf("<struct name='s' type='T'>1</struct>"),
                ElementsAre("open", "read", "locate null", "locate \"T\"", "locate \"\"", "close", "flush"));
}

TEST(Parse, SyntaxErrorIsNotReported) {
    EXPECT_THAT(courseOf("<group name='g'><node name='n'></group>"),
                ElementsAre("open", "read", "locate null", "locate null", "close", "flush"));
}

TEST(Parse, MissingStoreOrReaderIsNoParse) {
    Log log;
    LoggingReader reader(log, "<root name='r'/>");
    FlushedStore store(log);
    IXMLFrontEnd::parse(static_cast<IDataStore*>(nullptr), &reader, nullptr, nullptr, nullptr);
    IXMLFrontEnd::parse(&store, nullptr, nullptr, nullptr, nullptr);
    IXMLFrontEnd::parse(static_cast<IContainer*>(nullptr), &reader, nullptr, nullptr, nullptr);
    EXPECT_THAT(log, IsEmpty());
}

TEST(Parse, NeverCallsTheResolver) {
    struct Resolver : format::xml::IURIResolver {
    } resolver;
    MemoryDataStore store;
    MemoryReader reader("<group name='g'><string name='s' uri='file:a'/></group>");
    IXMLFrontEnd::parse(&store, &reader, nullptr, &resolver, nullptr);
    EXPECT_EQ(written(store),
              "<group name=\"g\" class=\"\">\n  <string name=\"s\" uri=\"file:a\"/>\n</group>\n");
}

TEST(Parse, FailuresAreSkippedJustTheSameWithoutAReporter) {
    const std::string document =
        inRoot("<x/><group/><group name='g'><root name='q'/><name><b/>G</name></group><int8 name='i'/>");
    Document reported(document);
    MemoryDataStore silent;
    MemoryReader reader(document);
    IXMLFrontEnd::parse(&silent, &reader, nullptr, nullptr, nullptr);
    EXPECT_EQ(reported.reports.size(), 5U);
    EXPECT_EQ(recordsOf(silent), recordsOf(reported.store));
}

TEST(Parse, TakesNoGuardAndFlushesOnce) {
    LoggingStore store;
    read(store, inGroup("<int8 name='i'>1</int8>"));
    EXPECT_EQ(store.count("lock"), 0U);
    EXPECT_EQ(store.count("flush"), 1U);
    EXPECT_EQ(store.calls().back().name, "flush");
}

TEST(Parse, UnknownDocumentElementIsSkippedWithAllOfTheDocument) {
    Document document("<Thing><root name='r'><x/></root></Thing>");
    EXPECT_THAT(document.reports, ElementsAre("thing : unknown element, skipping"));
    EXPECT_EQ(document.store.size(), 0U);
}

TEST(Parse, SubElementsAreNoDocumentElements) {
    for (const std::string element : {"name", "val", "default"}) {
        Document document("<" + element + " unit='Meter' type='double'/>");
        EXPECT_THAT(document.reports, ElementsAre(element + " : unknown element, skipping"));
    }
}

TEST(Parse, NothingIsSaidOfWhatStandsInASkippedElement) {
    Document document(inRoot("<x><y/><group/><name><z/></name></x><group name='g'/>"));
    EXPECT_THAT(document.reports, ElementsAre("x : unknown element, skipping"));
    EXPECT_TRUE(document.has("g"));
}

TEST(Parse, WhatStandsBeforeAndBehindASkippedElementStays) {
    Document document(inRoot("<group name='a'/><group><group name='b'/></group><group name='c'/>"));
    EXPECT_TRUE(document.has("a"));
    EXPECT_FALSE(document.has("b"));
    EXPECT_TRUE(document.has("c"));
}

TEST(Parse, NamesAreReportedAsSpeltOrLowered) {
    Document document(
        inRoot("<Group/>"                                      // as spelt
               "<GROUP name='a'><Name>x<Val/></Name></GROUP>"  // as spelt
               "<Thing/>"                                      // lowered
               "<Root name='s'/>"));                           // lowered
    EXPECT_THAT(document.reports,
                ElementsAre("Group : missing mandatory 'id' attribute",
                            "Val : cannot nest anything under a sub-element",
                            "thing : unknown element, skipping", "root : could not nest the element"));
}

TEST(Parse, NamesAreReportedAsUtf16) {
    Document document(inRoot("<gr\xC3\xB6\xC3\x9F\x65/>"));
    EXPECT_THAT(document.reports, ElementsAre("gr\xC3\xB6\xC3\x9F\x65 : unknown element, skipping"));
}

TEST(Parse, LongNameIsReportedInFullWhereItIsReportedAsSpelt) {
    const std::string name(300, 'x');
    Document document(inRoot("<name><" + name + "/></name>"));
    EXPECT_THAT(document.reports, ElementsAre(name + " : cannot nest anything under a sub-element"));
}

TEST(Parse, ElementInASubElementIsSkippedAndTheSubElementStaysOpen) {
    Document document(inRoot("<group name='g'><name>A<b>B</b>C</name></group>"));
    EXPECT_THAT(document.reports, ElementsAre("b : cannot nest anything under a sub-element"));
    EXPECT_EQ(Metadata::openItem(&document.store, document.at("g"))->localised(u"en-us"), u"ABC");
}

TEST(Parse, TextBeforeATagIsLost) {
    Document document(inRoot("<group name='g'><name>A</name></group>"));
    Document value(
        inGroup("<int32 name='i'>1<name>I</name></int32><int32 name='j'>1<val>2</val>3</int32>"
                "<string name='s'>a<name>S</name>b</string>"));
    EXPECT_THAT(value.reports, IsEmpty());
    EXPECT_THAT(value.values<int>("g.i"), IsEmpty());
    EXPECT_THAT(value.values<int>("g.j"), ElementsAre(2));
    EXPECT_EQ(value.text("g.s"), "");
}

TEST(Parse, TextOfASkippedElementJoinsWhatFollows) {
    Document document(inGroup("<int32 name='i'>1<x>3</x>2</int32>"));
    EXPECT_THAT(document.reports, ElementsAre("x : unknown element, skipping"));
    EXPECT_THAT(document.values<int>("g.i"), ElementsAre(32));
}

TEST(Parse, OwnTextIsUsedAgainByTheNextElement) {
    Document document(inGroup("<int32 name='i'><val>1</val></int32><int32 name='j'>2</int32>"));
    EXPECT_THAT(document.values<int>("g.i"), ElementsAre(1));
    EXPECT_THAT(document.values<int>("g.j"), ElementsAre(2));
}

TEST(Parse, SubElementThatWasRefusedLeavesTheTextInForce) {
    Document document(inGroup("<int32 name='i'><default unit='Meter' type='double'/>4</int32>"));
    EXPECT_EQ(document.reports.size(), 1U);
    EXPECT_THAT(document.values<int>("g.i"), ElementsAre(4));
}

TEST(Parse, DisplayNamesAreStoredAtTheEndTag) {
    Document document("<root name='r'><group name='g'><name>G</name></group>");
    EXPECT_EQ(Metadata::openItem(&document.store, document.at("g"))->localised(u"en-us"), u"G");
}

TEST(Parse, NoOpenCountIsLeftByASoundDocument) {
    Document document(
        inGroup("<name>G</name><x/><int32 name='i'>1</int32><int32 name='i'>2</int32>"
                "<table name='t'><group name='refused'/></table>"));
    EXPECT_EQ(openCounts(document.store), 0U);
}

TEST(Parse, DocumentThatBreaksOffLeavesItsOpenElementsOpenWithoutTheirDisplayNames) {
    Document document("<root name='r'><name>R</name><group name='g'><name>G</name><group name='h'/>");
    EXPECT_EQ(document.record("")->size(), 0U);
    EXPECT_EQ(Record::Snapshot(&document.store, 0)->load(Record::field::openCount), 1U);
    EXPECT_EQ(document.record("g")->load(Record::field::openCount), 1U);
    EXPECT_EQ(document.record("g.h")->load(Record::field::openCount), 0U);
    EXPECT_EQ(Record::Snapshot(&document.store, 0)->load(Record::field::locale), IDataStore::BADOFF);
    EXPECT_EQ(document.record("g")->load(Record::field::locale), IDataStore::BADOFF);
}

// Reports go to the host's own code, which sees the elements that are open.
struct CountingReporter : IErrorReporter {
    explicit CountingReporter(IDataStore& watched) : store(watched) {}
    void report(WideString) override {
        for (std::uint32_t offset = 0; offset < store.size(); ++offset) {
            const Record::Snapshot record(&store, offset);
            if (Record::isEntity(record->kind())) counts.push_back(record->load(Record::field::openCount));
        }
    }

    IDataStore& store;
    std::vector<std::uint32_t> counts;
};

TEST(Parse, OpenElementsAndTheRefusedOneCountAsOpenDuringAReport) {
    MemoryDataStore store;
    MemoryReader reader(
        "<root name='r'><group name='g'><int8 name='i'/><root name='refused'/></group></root>");
    CountingReporter reporter(store);
    IXMLFrontEnd::parse(&store, &reader, nullptr, nullptr, &reporter);
    EXPECT_THAT(reporter.counts, ElementsAre(1, 1, 0, 1));
    EXPECT_EQ(openCounts(store), 0U);
}

TEST(Parse, EmptyClassIsThatOfATableWithoutAName) {
    MemoryDataStore types;
    read(types, "<root name='t'><table name=''><double name='w'>1</double></table></root>", nullptr);
    const auto locator = ISchemaLocator::make(&types);
    Document document(inGroup("<group name='h' class=''/>"), locator.get());
    EXPECT_TRUE(document.has("g.h.w"));
}

// An open element goes on answering from what it knew when somebody else's code ran.
struct RenamingReporter : IErrorReporter {
    explicit RenamingReporter(IDataStore& watched) : store(watched) {}
    void report(WideString text) override {
        if (reports.empty()) renamed = structure::IContainerFrontEnd::find(&store, u"g.a")->rename(u"z");
        reports.push_back(narrow(text.view()));
    }

    IDataStore& store;
    std::vector<std::string> reports;
    bool renamed = false;
};

TEST(Parse, OpenElementRemembersItsChildrenByTheNamesThatTheyHadDuringAReport) {
    for (const std::uint32_t siblings : {2U, 30U}) {
        std::string inside = "<group name='a'/>";
        for (std::uint32_t i = 0; i < siblings; ++i) inside += "<group name='s" + std::to_string(i) + "'/>";
        inside += "<unknown/><group name='a'/><group name='z'/><group name='s1'/>";
        MemoryDataStore store;
        const std::string document = inGroup(inside);
        MemoryReader reader(document);
        RenamingReporter reporter(store);

        IXMLFrontEnd::parse(&store, &reader, nullptr, nullptr, &reporter);

        EXPECT_TRUE(reporter.renamed);
        EXPECT_EQ(reporter.reports.size(), 3U);  // the unknown one, and two whose names are taken
        Structural::Container group(&store, Metadata::resolvePath(&store, 0, u"g"));
        EXPECT_EQ(group.children().size(), siblings + 2);
        EXPECT_EQ(group.childCount(), siblings + 1);
    }
}

// Gives the open counts of a store, by the order of its records, whenever it is asked for more.
struct LookingReader : MemoryReader {
    LookingReader(std::string_view bytes, IDataStore& watched) : MemoryReader(bytes), store(watched) {}
    std::size_t read(void* buffer, std::size_t size) override {
        seen.emplace_back();
        for (std::uint32_t offset = 0; offset < store.size(); ++offset) {
            const Record::Snapshot record(&store, offset);
            if (Record::isEntity(record->kind()))
                seen.back().push_back(record->load(Record::field::openCount));
        }
        return MemoryReader::read(buffer, size);
    }

    IDataStore& store;
    std::vector<std::vector<std::uint32_t>> seen;
};

TEST(Parse, ReaderSeesWhatIsOpenBetweenTwoPiecesOfTheDocument) {
    std::string numbers = "1";
    while (numbers.size() < (1u << 16)) numbers += " 1";
    const std::string document = inGroup("<int8 name='done'>1</int8><int8 name='i'>" + numbers + "</int8>");
    MemoryDataStore store;
    LookingReader reader(document, store);
    IXMLFrontEnd::parse(&store, &reader, nullptr, nullptr, nullptr);
    ASSERT_GE(reader.seen.size(), 2U);
    EXPECT_THAT(reader.seen[1], AnyOf(IsEmpty(), ElementsAre(1, 1, 0, 1)));
    EXPECT_THAT(reader.seen.back(), ElementsAre(1, 1, 0, 1));
    EXPECT_EQ(openCounts(store), 0U);
    const std::uint32_t i = Metadata::resolvePath(&store, 0, u"g.i");
    EXPECT_EQ(Design::Primitive(&store, i).count(), (numbers.size() + 1) / 2);
}

TEST(Parse, LocatorOfTheHostSeesTheOpenElements) {
    struct Looking : ISchemaLocator {
        explicit Looking(IDataStore& watched) : store(watched) {}
        SharedPtr<metadata::ISchema> locate(WideString) override {
            counts.push_back(openCounts(store));
            return {};
        }
        void addStore(IDataStore*) override {}
        bool removeStore(IDataStore*) override { return false; }
        void clearStores() override {}

        IDataStore& store;
        std::vector<std::uint32_t> counts;
    };
    MemoryDataStore store;
    Looking locator(store);
    MemoryReader reader("<root name='r'><group name='g'><group name='h'/></group></root>");
    IXMLFrontEnd::parse(&store, &reader, &locator, nullptr, nullptr);
    EXPECT_THAT(locator.counts, ElementsAre(0, 1, 2));
}

TEST(Parse, ReporterMayReadAnotherDocument) {
    struct Nested : IErrorReporter {
        void report(WideString) override {
            reports = read(other, inGroup("<INT32 name='i'>1 2 3</INT32><Q/>"));
        }
        MemoryDataStore other;
        std::vector<std::string> reports;
    } nested;
    MemoryDataStore store;
    const std::string document = inGroup("<int32 name='i'>1<X/>2</int32><int32 name='j'>3</int32>");
    MemoryReader reader(document);
    IXMLFrontEnd::parse(&store, &reader, nullptr, nullptr, &nested);
    EXPECT_THAT(nested.reports, ElementsAre("q : unknown element, skipping"));
    const std::uint32_t j = Metadata::resolvePath(&store, 0, u"g.j");
    int value = 0;
    EXPECT_EQ(Design::Primitive(&store, j).readValues(&value, 0, 1), 1U);
    EXPECT_EQ(value, 3);
}

struct ThrowingReporter : IErrorReporter {
    void report(WideString) override { throw std::runtime_error("no more"); }
};

TEST(Parse, ExceptionOfTheReporterEndsTheParseIntoAStoreInSilence) {
    Log log;
    FlushedStore store(log);
    const std::string document = inRoot("<group name='a'/><x/><group name='b'/>");
    LoggingReader reader(log, document);
    ThrowingReporter reporter;
    IXMLFrontEnd::parse(&store, &reader, nullptr, nullptr, &reporter);
    EXPECT_THAT(log, ElementsAre("open", "read", "flush"));
    EXPECT_NE(Metadata::resolvePath(&store, 0, u"a"), IDataStore::BADOFF);
    EXPECT_EQ(Metadata::resolvePath(&store, 0, u"b"), IDataStore::BADOFF);
    EXPECT_EQ(Record::Snapshot(&store, 0)->load(Record::field::openCount), 1U);
}

TEST(Parse, ExceptionOfTheReaderEndsTheParseIntoAStoreInSilence) {
    struct BrokenReader : MemoryReader {
        using MemoryReader::MemoryReader;
        std::size_t read(void*, std::size_t) override { throw std::runtime_error("broken"); }
    } reader("<root name='r'/>");
    LoggingStore store;
    IXMLFrontEnd::parse(&store, &reader, nullptr, nullptr, nullptr);
    EXPECT_EQ(store.calls().size(), 1U);
    EXPECT_EQ(store.count("flush"), 1U);
}

TEST(Parse, ExceptionFromOpeningTheReaderIsCaughtToo) {
    struct BrokenReader : MemoryReader {
        using MemoryReader::MemoryReader;
        bool open() override { throw std::runtime_error("broken"); }
    } reader("<root name='r'/>");
    LoggingStore store;
    IXMLFrontEnd::parse(&store, &reader, nullptr, nullptr, nullptr);
    EXPECT_EQ(store.count("flush"), 1U);
}

TEST(Parse, FailedFlushReachesTheHost) {
    MemoryDataStore memory;
    ThrowingStore store(memory);
    store.throwAt(1);
    MemoryReader reader("");
    EXPECT_THROW(IXMLFrontEnd::parse(&store, &reader, nullptr, nullptr, nullptr), StoreFailure);
}

const char* const kRichDocument =
    "<root name='r' version='2'><name>R</name><x/><table name='t' optional='true'><default unit='Meter' "
    "type='double'/>"
    "<name>T</name><double name='d' units='Meter' locale='de'><name>D</name><val>1 x 3</val></double></table>"
    "<group name='g' class='A'><int16 name='i'>4</int16><string name='s'><val>a</val><val>b</val></string>"
    "<binary name='b'>AAECAw==</binary><struct name='p' type='P'>1 2</struct><link name='l' "
    "to='g'/></group></root>";

TEST(Parse, FailureOfTheStoreAtAnyCallEndsTheParseInSilence) {
    std::uint64_t failures = 0;
    for (std::uint64_t n = 1;; ++n) {
        MemoryDataStore memory;
        ThrowingStore store(memory);
        MemoryReader reader(kRichDocument);
        store.throwAt(n);
        try {
            IXMLFrontEnd::parse(&store, &reader, nullptr, nullptr, nullptr);
        } catch (const StoreFailure&) {
            EXPECT_EQ(store.calls(), n) << "only the flush may throw, and it comes last";
        }
        EXPECT_EQ(store.guardsHeld(), 0);
        if (!store.thrown()) break;
        ++failures;
    }
    EXPECT_GT(failures, 100U);
}

TEST(Parse, DocumentCutAtEveryByteKeepsWhatCameBefore) {
    const std::string document = kRichDocument;
    for (std::size_t length = 0; length < document.size(); ++length) {
        MemoryDataStore store;
        MemoryReader reader(std::string_view(document).substr(0, length));
        core::xml::DiagnosingReader diagnosing(reader);
        IXMLFrontEnd::parse(&store, &diagnosing, nullptr, nullptr, nullptr);
        EXPECT_TRUE(diagnosing.stopped()) << length;
        if (store.size() == 0) continue;
        EXPECT_EQ(written(store).substr(0, 5), "<root") << length;
    }
}

TEST(Parse, EveryByteReplacedByAnotherIsSurvived) {
    const std::string original = kRichDocument;
    for (std::size_t i = 0; i < original.size(); ++i) {
        for (const char each : {'<', '>', '&', '"', '\0', '\xFF', 'x'}) {
            std::string document = original;
            document[i] = each;
            MemoryDataStore store;
            read(store, document);
            if (store.size() != 0) written(store);
        }
    }
}

TEST(Parse, ValueThatNoRecordTakesLeavesItsElementWithoutAValue) {
    MemoryDataStore store(MemoryDataStore::Options{64});
    const std::string document = inGroup("<int32 name='i'>1 2 3 4 5 6</int32>");
    MemoryReader reader(document);
    IXMLFrontEnd::parse(&store, &reader, nullptr, nullptr, nullptr);
    const std::uint32_t i = Metadata::resolvePath(&store, 0, u"g.i");
    ASSERT_NE(i, IDataStore::BADOFF);
    EXPECT_EQ(Design::Primitive(&store, i).valueSize(), 0U);
}

// The logic by itself, as a parser of another make might drive it.
class Driven {
  public:
    explicit Driven(ISchemaLocator* locator = nullptr) : logic(&store, nullptr, locator, &reports) {}

    void start(const char* name, std::vector<const char*> attributes = {}) {
        attributes.push_back(nullptr);
        logic.startElement(name, attributes.data());
    }
    void end() { logic.endElement(nullptr); }
    void text(std::string_view piece) { logic.characterData(piece.data(), static_cast<int>(piece.size())); }

    MemoryDataStore store;
    Reports reports;
    XMLParsingLogic logic;
};

TEST(XMLParsingLogic, TextMayComeInPieces) {
    Driven driven;
    driven.start("int32", {"name", "i"});
    driven.text("1");
    driven.text("");
    driven.text("2 ");
    driven.text("3");
    driven.end();
    EXPECT_EQ(written(driven.store), "<int32 name=\"i\">12 3</int32>\n");
}

TEST(XMLParsingLogic, FirstOfTwoAttributesOfANameCounts) {
    Driven driven;
    driven.start("int32", {"name", "a", "name", "b", "units", "Meter", "units", "Second"});
    driven.end();
    EXPECT_EQ(written(driven.store), "<int32 name=\"a\" units=\"Meter\"/>\n");
}

TEST(XMLParsingLogic, FirstOfTwoAttributesOfAValueInAGroupCounts) {
    Driven driven;
    driven.start("group", {"name", "g"});
    driven.start("int32",
                 {"name", "a", "name", "b", "units", "Meter", "units", "Second", "dim", "2", "dim", "3"});
    driven.end();
    driven.start("int32", {"name", nullptr, "name", "c"});
    driven.end();
    driven.end();
    EXPECT_THAT(driven.reports.texts, ElementsAre("int32 : missing mandatory 'id' attribute"));
    EXPECT_EQ(written(driven.store),
              "<group name=\"g\" class=\"\">\n  <int32 name=\"a\" units=\"Meter\">0 0</int32>\n</group>\n");
}

TEST(XMLParsingLogic, AttributeWithANullValueIsNone) {
    Driven driven;
    driven.start("group", {"name", nullptr});
    driven.end();
    driven.start("group", {"optional", nullptr, "name", "g", "class", nullptr});
    driven.end();
    EXPECT_THAT(driven.reports.texts, ElementsAre("group : missing mandatory 'id' attribute"));
    EXPECT_EQ(written(driven.store), "<group name=\"g\" class=\"\"/>\n");
}

TEST(XMLParsingLogic, NullValueOfTheFirstOfTwoAttributesCounts) {
    Driven driven;
    driven.start("group", {"name", nullptr, "name", "g"});
    EXPECT_THAT(driven.reports.texts, ElementsAre("group : missing mandatory 'id' attribute"));
}

TEST(XMLParsingLogic, TagWithoutAnArrayOfAttributesHasNone) {
    Driven driven;
    driven.logic.startElement("group", nullptr);
    EXPECT_THAT(driven.reports.texts, ElementsAre("group : missing mandatory 'id' attribute"));
}

TEST(XMLParsingLogic, EndOfAnElementThatWasNotStartedIsIgnored) {
    Driven driven;
    driven.end();
    driven.start("group", {"name", "g"});
    driven.end();
    driven.end();
    EXPECT_EQ(written(driven.store), "<group name=\"g\" class=\"\"/>\n");
}

TEST(XMLParsingLogic, ReservedWordsAreElementsLikeAnyOther) {
    Driven driven;
    driven.start("$$$$$_____empty_key");
    driven.end();
    driven.start("$$$$$_____deleted_key");
    driven.end();
    EXPECT_THAT(driven.reports.texts, ElementsAre("$$$$$_____empty_key : unknown element, skipping",
                                                  "$$$$$_____deleted_key : unknown element, skipping"));
}

TEST(XMLParsingLogic, SkippingEndsWithTheElementThatItBeganWith) {
    Driven driven;
    driven.start("group", {"name", "g"});
    driven.start("x");
    driven.start("x");
    driven.end();
    driven.start("group", {"name", "skipped"});
    driven.end();
    driven.end();
    driven.start("group", {"name", "h"});
    driven.end();
    driven.end();
    EXPECT_EQ(written(driven.store),
              "<group name=\"g\" class=\"\">\n  <group name=\"h\" class=\"\"/>\n</group>\n");
}

}  // namespace
}  // namespace norvane::platform::data::test
