// Where in a document something is wrong, as a host can learn it.
#include "norvane/platform/core/xml/DiagnosingReader.h"
#include "unit/xml/Documents.h"

namespace norvane::platform::data::test {
namespace {

using core::xml::tPlace;

std::string asText(const tPlace& place) {
    return std::to_string(place.line) + ":" + std::to_string(place.column) + " @" +
           std::to_string(place.byte);
}

// Puts the place, with its byte, in front of each report.
struct FullyPlacedReports : IErrorReporter {
    explicit FullyPlacedReports(const DiagnosingReader& asked) : reader(asked) {}
    void report(WideString message) override {
        texts.push_back(asText(reader.place()) + " " + narrow(message.view()));
    }

    const DiagnosingReader& reader;
    std::vector<std::string> texts;
};

// The reports with their places, then where and why the parse has stopped.
std::vector<std::string> placesIn(std::string_view document) {
    MemoryDataStore store;
    MemoryReader bytes(document);
    DiagnosingReader reader(bytes);
    FullyPlacedReports reports(reader);
    IXMLFrontEnd::parse(&store, &reader, nullptr, nullptr, &reports);
    if (reader.stopped())
        reports.texts.push_back(asText(reader.stopPlace()) + " stopped: " + reader.stopText());
    return reports.texts;
}

TEST(Places, EveryReportHasTheOneOfItsStartTag) {
    EXPECT_THAT(placesIn("<root name='r'>\n"
                         "  <group/>\n"
                         "  <group name='g'>\n"
                         "    <thing a='1'\n"
                         "           b='2'/> <int8 name='i'><name>I<b/></name></int8>\n"
                         "    <group name='x'/><group name='x'/>\n"
                         "  </group>\n"
                         "</root>\n"),
                ElementsAre("2:3 @18 group : missing mandatory 'id' attribute",
                            "4:5 @50 thing : unknown element, skipping",
                            "5:42 @104 b : cannot nest anything under a sub-element",
                            "6:22 @144 group : could not nest the element"));
}

TEST(Places, ColumnsCountCharactersAndBytesCountBytes) {
    EXPECT_THAT(placesIn("<root name='\xE2\x9D\xA4\xC3\xA4'><x/></root>"),
                ElementsAre("1:17 @19 x : unknown element, skipping"));
}

TEST(Places, SyntaxErrorIsLearntFromTheReader) {
    EXPECT_THAT(placesIn("<root name='r'>\n<x/>\n<group name='g'></root>"),
                ElementsAre("2:1 @16 x : unknown element, skipping", "3:19 @39 stopped: mismatched tag"));
    EXPECT_THAT(placesIn("<root name='r'>"), ElementsAre("1:16 @15 stopped: no element found"));
    EXPECT_THAT(placesIn(""), ElementsAre("1:1 @0 stopped: no element found"));
}

TEST(Places, DuplicateAttributeIsASyntaxError) {
    EXPECT_THAT(placesIn("<root name='r'><group name='a' name='b'/></root>"),
                ElementsAre("1:32 @31 stopped: duplicate attribute"));
}

TEST(Places, EntitiesAndTheirDeclarationsAreErrors) {
    EXPECT_THAT(placesIn("<!DOCTYPE r [<!ENTITY a 'aaaaaaaaaa'><!ENTITY b '&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;'>]>"
                         "<root name='&b;'/>"),
                ElementsAre(testing::EndsWith("stopped: document type with an internal subset")));
    EXPECT_THAT(placesIn("<!DOCTYPE r SYSTEM 'file:///etc/passwd'><root name='r'><group name='&x;'/></root>"),
                ElementsAre(testing::EndsWith("stopped: undefined entity")));
    EXPECT_THAT(placesIn("<root name='r'><group name='g'><string name='s'>&x;</string></group></root>"),
                ElementsAre(testing::EndsWith("stopped: undefined entity")));
}

TEST(Places, DoctypeWithoutASubsetIsPassedOver) {
    EXPECT_THAT(placesIn("<!DOCTYPE root><root name='r'/>"), IsEmpty());
}

TEST(Places, ParseIntoAContainerTellsThemToo) {
    MemoryDataStore store;
    const SharedPtr<IContainer> top = structure::IContainerFrontEnd::toplevel(&store, WideString(u"top"));
    MemoryReader bytes("<group name='g'>\n <x/>\n <group>");
    DiagnosingReader reader(bytes);
    FullyPlacedReports reports(reader);
    IXMLFrontEnd::parse(top.get(), &reader, nullptr, nullptr, &reports);
    EXPECT_THAT(reports.texts, ElementsAre("2:2 @18 x : unknown element, skipping",
                                           "3:2 @24 group : missing mandatory 'id' attribute"));
    EXPECT_EQ(asText(reader.stopPlace()), "3:9 @31");
}

TEST(Places, DocumentInUtf16HasThemInItsOwnBytes) {
    std::string document = "\xFF\xFE";
    for (const char each : std::string_view("<root name='r'>\n <x/></root>")) document.append({each, '\0'});
    EXPECT_THAT(placesIn(document), ElementsAre("2:2 @36 x : unknown element, skipping"));
}

}  // namespace
}  // namespace norvane::platform::data::test
