// Random documents, read and written by the library and the plain way: equal records, reports and bytes.
#include <random>

#include "support/ForwardingStore.h"
#include "support/Torture.h"
#include "support/reference/ReferenceReader.h"
#include "support/reference/ReferenceWriter.h"
#include "unit/xml/Documents.h"

namespace norvane::platform::data::test {
namespace {

using platform::test::Extensions;
using platform::test::ForwardingStore;
using platform::test::rounds;

const char* const kTypes =
    "<table name='A'><int32 name='a'>1 2 3</int32><string name='b' locale='de'>abc</string>"
    "<table name='c'><default unit='Meter' type='double'/><double name='a' units='Meter'>1.5</double>"
    "<table name='b'><int8 name='c'>7</int8></table></table><int8 name='d'><name>D</name></int8></table>"
    "<table name='B'><double name='d'>2</double><int16 name='a'>5</int16><binary "
    "name='e'>AAEC</binary></table>"
    "<table name='P'><int8 name='a'>0</int8><uint8 name='b'>0</uint8><int16 name='c'>0 0</int16><double "
    "name='d'>0</double></table>"
    "<table name='Q'><int8 name='a'>0</int8><string name='b'>x</string><int32 name='c' uri='u'/><scalar "
    "name='d'>0</scalar></table>"
    "<table name='R'><int64 name='a' uri='u'/></table><table name='S'/>";

// Makes documents that are mostly right. A small choice of names makes siblings meet.
class Generator {
  public:
    explicit Generator(std::uint32_t seed) : random_(seed) {}

    std::string document() {
        std::string text = oneIn(8) ? element(0)
                                    : "<root name='r'" + maybe(4, " version='" + token() + "'") + ">" +
                                          content(0) + "</root>";
        if (oneIn(6)) text.resize(below(static_cast<std::uint32_t>(text.size()) + 1));
        return text;
    }

  private:
    std::uint32_t below(std::uint32_t limit) {
        return std::uniform_int_distribution<std::uint32_t>(0, limit - 1)(random_);
    }
    bool oneIn(std::uint32_t n) { return below(n) == 0; }
    std::string maybe(std::uint32_t n, const std::string& text) { return oneIn(n) ? text : ""; }
    template <std::size_t N>
    std::string pick(const char* const (&choices)[N]) {
        return choices[below(N)];
    }

    std::string name() {
        static const char* const kNames[] = {
            "a", "b", "c", "d", "e", "f", "g", "h", "a.b", "", "$$$$$_____empty_key"};
        return pick(kNames);
    }
    std::string token() {
        static const char* const kTokens[] = {
            "0",           "1",   "-1",   "7",   "42",  "200",   "300",        "70000",
            "-129",        "1.5", "-.25", "1e3", "12e", "1e400", "x",          "true",
            "nan",         "inf", "0x1F", "1,5", "+3",  "007",   "4294967296", "18446744073709551615",
            "0.1234567891"};
        return pick(kTokens);
    }
    std::string blank() {
        static const char* const kBlanks[] = {" ", " ", " ", "\n", "\t", "  ", " \n "};
        return pick(kBlanks);
    }
    std::string numbers() {
        std::string text = maybe(5, blank());
        for (std::uint32_t i = below(oneIn(10) ? 40 : 6); i > 0; --i) text += token() + blank();
        return text + maybe(2, token());
    }
    std::string words() {
        static const char* const kTexts[] = {
            "", "x", " two words ", "&lt;&amp;", "AAEC/w==", "\xE2\x9D\xA4", "a\nb", "<![CDATA[<c>]]>"};
        return pick(kTexts);
    }
    std::string text() { return oneIn(3) ? words() : numbers(); }
    std::string unit() {
        static const char* const kUnits[] = {"Meter", "Inch", "Second", "Quart", "Nit", "metre", ""};
        return pick(kUnits);
    }
    std::string classText() {
        static const char* const kClasses[] = {"A", "B", "A;B", "B;A", "X", "X;A", "", "S", "A;A"};
        return pick(kClasses);
    }

    std::string subElement() {
        static const char* const kWords[] = {"double", "vec3", "string", "vector3", "mtx2x2"};
        switch (below(12)) {
            case 0:
                return "<default unit='" + unit() + "' type='" + pick(kWords) + "'/>";
            case 1:
                return oneIn(20) ? "<val>" + text() + "</val>" : "";
            case 2:
                return "<name><b>" + text() + "</b>" + text() + "</name>";
            case 3:
                return "<thing>" + text() + maybe(2, "<group/>") + "</thing>";
            default:
                return "<name" + maybe(2, " locale='" + name() + "'") + ">" + words() + "</name>";
        }
    }

    std::string value() {
        const std::string type = reference::kTypeNames[1 + below(24)];
        std::string tag = "<" + type + maybe(2, " units='" + unit() + "'") + maybe(5, " locale='en'") +
                          maybe(8, " uri='" + words() + "'") + maybe(5, " dim='" + token() + "'");
        if (tag.find("uri='<") != tag.npos || tag.find("dim='4294967296") != tag.npos) return "";
        if (tag.find("dim='") != tag.npos &&
            (tag.find("dim='-") != tag.npos || tag.find("dim='1844") != tag.npos))
            return "";
        static const char* const kStructs[] = {"P", "P", "Q", "R", "S", "X", "X;P", ""};
        if (type == "struct" && !oneIn(10)) tag += " type='" + pick(kStructs) + "'";
        if (!oneIn(25)) tag += " name='" + name() + "'";
        tag += ">" + text();
        for (std::uint32_t i = oneIn(3) ? below(4) : 0; i > 0; --i)
            tag += oneIn(3) ? subElement() : "<val>" + text() + "</val>" + maybe(3, text());
        return tag + "</" + type + ">";
    }

    std::string element(int depth) {
        static const char* const kSets[] = {"group", "node", "link", "table", "table", "root", "Group"};
        if (oneIn(2) || depth > 5) return value();
        const std::string type = pick(kSets);
        return "<" + type + maybe(4, " optional='true'") + maybe(2, " class='" + classText() + "'") +
               maybe(4, " to='a.b'") + (oneIn(25) ? "" : " name='" + name() + "'") + ">" +
               content(depth + 1) + "</" + type + ">";
    }

    std::string content(int depth) {
        std::string text = maybe(3, words());
        for (std::uint32_t i = below(9); i > 0; --i) text += oneIn(6) ? subElement() : element(depth);
        return text;
    }

    std::mt19937 random_;
};

// Tables of types, with the locator that finds them.
struct Types {
    Types() { EXPECT_THAT(read(store, inRoot(kTypes)), IsEmpty()); }

    MemoryDataStore store;
    SharedPtr<ISchemaLocator> locator = ISchemaLocator::make(&store);
};

class AgainstReference : public testing::TestWithParam<std::uint32_t> {};

TEST_P(AgainstReference, DocumentsGiveEqualRecordsReportsAndBytes) {
    Types types;
    const std::uint32_t first = GetParam() * rounds(10);
    for (std::uint32_t seed = first; seed < first + rounds(1000); ++seed) {
        const std::string document = Generator(seed).document();
        SCOPED_TRACE("seed " + std::to_string(seed) + "\n" + document);
        ISchemaLocator* locator = seed % 7 == 0 ? nullptr : types.locator.get();

        MemoryDataStore plain;
        MemoryReader reader(document);
        const std::vector<std::string> reports = reference::read(plain, reader, locator);
        MemoryDataStore fast;
        EXPECT_EQ(read(fast, document, locator), reports);
        EXPECT_EQ(recordsOf(fast), recordsOf(plain));

        MemoryDataStore behind;
        ForwardingStore bare(behind, Extensions::off);
        EXPECT_EQ(read(bare, document, locator), reports);
        EXPECT_EQ(recordsOf(behind), recordsOf(plain));

        if (fast.size() == 0) continue;
        MemoryWriter writer;
        reference::write(plain, writer, locator, 0);
        EXPECT_EQ(kHeader + written(fast, locator), writer.text());
        if (HasFailure()) return;
    }
}

// Else the comparison above would say little.
TEST(RandomDocuments, AreMostlySoundAndHoldMuch) {
    Types types;
    std::uint64_t records = 0;
    std::uint64_t reports = 0;
    int stopped = 0;
    for (std::uint32_t seed = 0; seed < 100; ++seed) {
        const std::string document = Generator(seed).document();
        MemoryReader bytes(document);
        DiagnosingReader reader(bytes);
        Reports told;
        MemoryDataStore store;
        IXMLFrontEnd::parse(&store, &reader, types.locator.get(), nullptr, &told);
        records += store.recordCount();
        reports += told.texts.size();
        if (reader.stopped()) ++stopped;
    }
    EXPECT_GT(records, 100U * 30U);
    EXPECT_GT(reports, 100U * 3U);
    EXPECT_GT(stopped, 5);
    EXPECT_LT(stopped, 35);
}

INSTANTIATE_TEST_SUITE_P(Seeds, AgainstReference, testing::Range(0U, 600U, 100U));

}  // namespace
}  // namespace norvane::platform::data::test
