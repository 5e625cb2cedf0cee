// Classes, and what overrides what came from them.
#include "unit/xml/Documents.h"

namespace norvane::platform::data::test {
namespace {

constexpr std::uint8_t kUntouched = Record::kFixed | Record::kInherited;

TEST(Classes, MembersComeInAsInheritedAndFixed) {
    Library library(
        "<table name='A'><int32 name='i'>1</int32><table name='t'><int8 name='j'>2</int8></table></table>");
    Document document(inRoot("<group name='g' class='A'/>"), library.locator());
    EXPECT_EQ(document.flags("g"), 0);
    EXPECT_EQ(document.flags("g.i"), kUntouched);
    EXPECT_EQ(document.flags("g.t"), kUntouched);
    EXPECT_EQ(document.flags("g.t.j"), kUntouched);
    EXPECT_THAT(document.values<int>("g.i"), ElementsAre(1));
}

TEST(Classes, SeveralAreAppliedInTheOrderOfTheText) {
    Library library(
        "<table name='A'><int32 name='i'>1</int32></table>"
        "<group name='sub'><table name='B'><int32 name='i'>2</int32><int32 "
        "name='j'>3</int32></table></group>");
    Document document(inRoot("<group name='g' class='sub.B;X;A'/><table name='t' class='A;sub.B'/>"),
                      library.locator());
    EXPECT_EQ(Structural::Container(&document.store, document.at("g")).classText(), u"sub.B;A");
    EXPECT_EQ(Design::Table(&document.store, document.at("t")).classText(), u"A;sub.B");
    EXPECT_THAT(document.values<int>("g.i"), ElementsAre(2));
    EXPECT_THAT(document.values<int>("t.i"), ElementsAre(1));
    EXPECT_THAT(document.values<int>("t.j"), ElementsAre(3));
}

TEST(Classes, OptionalIsSetBeforeTheMembersComeAndStaysWithTheObject) {
    Library library("<table name='A'><int32 name='i'/></table>");
    Document document(inRoot("<group name='g' class='A' optional='true'/>"), library.locator());
    EXPECT_EQ(document.flags("g"), Record::kOptional);
    EXPECT_EQ(document.flags("g.i"), kUntouched);
}

TEST(Classes, ClassComesInBeforeTheTargetIsSet) {
    Library library("<table name='A'><int32 name='i'/></table>");
    Document document(inRoot("<link name='l' to='x.y' class='A'/>"), library.locator());
    const Structural::Container link(&document.store, document.at("l"));
    EXPECT_EQ(link.classText(), u"A");
    EXPECT_EQ(link.linkTarget(), u"x.y");
}

TEST(Classes, EmptyTargetIsATargetOfNoText) {
    Document document(inRoot("<link name='l' to=''/>"));
    EXPECT_EQ(document.record("l")->load(Record::field::linkTargetSize), 2U);
}

TEST(Override, ValueClearsTheMarkOnItselfAndOnItsParents) {
    Library library(
        "<table name='A'><int32 name='i'>1</int32><table name='t'><int8 name='j'>2</int8>"
        "<int8 name='k'>3</int8></table></table>");
    Document document(
        inRoot("<group name='g' class='A'><table name='t'><int8 name='j'>9</int8></table></group>"),
        library.locator());
    EXPECT_THAT(document.reports, IsEmpty());
    EXPECT_EQ(document.flags("g.t"), Record::kFixed);
    EXPECT_EQ(document.flags("g.t.j"), Record::kFixed);
    EXPECT_EQ(document.flags("g.t.k"), kUntouched);
    EXPECT_EQ(document.flags("g.i"), kUntouched);
    EXPECT_THAT(document.bytes("g.t.j"), ElementsAre(9));
}

TEST(Override, KeepsWhatLiesBehindTheNewElements) {
    Library library(
        "<table name='A'><int32 name='i'>1 2 3</int32><binary name='b'>AAECAw==</binary></table>");
    Document document(
        inRoot("<group name='g' class='A'><int32 name='i'>7 x</int32><binary name='b'>/w==</binary></group>"),
        library.locator());
    EXPECT_THAT(document.values<int>("g.i"), ElementsAre(7, 2, 3));
    EXPECT_THAT(document.bytes("g.b"), ElementsAre(255, 1, 2, 3));
}

TEST(Override, OfAnotherTypeIsRefused) {
    Library library("<table name='A'><int32 name='i'>1</int32></table>");
    Document document(inRoot("<group name='g' class='A'><int16 name='i'>2</int16><table name='i'/></group>"),
                      library.locator());
    EXPECT_THAT(document.reports,
                ElementsAre("int16 : could not nest the element", "table : could not nest the element"));
    EXPECT_EQ(document.flags("g.i"), kUntouched);
    EXPECT_THAT(document.values<int>("g.i"), ElementsAre(1));
}

TEST(Override, TableNeedsTheSameClassText) {
    Library library("<table name='A'><table name='t'/></table><table name='B'/>");
    Document document(inRoot("<group name='g' class='A'><table name='t' class='B'/></group>"
                             "<group name='h' class='A'><table name='t' class='Unknown'/></group>"),
                      library.locator());
    EXPECT_THAT(document.reports, ElementsAre("table : could not nest the element"));
    EXPECT_EQ(document.flags("g.t"), kUntouched);
    EXPECT_EQ(document.flags("h.t"), Record::kFixed);
}

TEST(Override, InATableWorksAsInAContainer) {
    Library library("<table name='A'><string name='s'>abc</string></table>");
    Document document(inRoot("<table name='t' class='A'><string name='s'>x</string></table>"),
                      library.locator());
    EXPECT_THAT(document.reports, IsEmpty());
    EXPECT_EQ(document.text("t.s"), "x|c|");
}

TEST(Override, TextThroughValIsAddedAtTheEndAndDirectTextReplacesFromTheStart) {
    Library library("<table name='A'><string name='s'>ab</string><string name='t'>ab</string></table>");
    Document document(inRoot("<group name='g' class='A'><string name='s'><val>x</val></string>"
                             "<string name='t'>x</string></group>"),
                      library.locator());
    EXPECT_EQ(document.text("g.s"), "ab|x|");
    EXPECT_EQ(document.text("g.t"), "x||");
}

TEST(Override, AttributesOfTheNewObjectAreLostWithIt) {
    Library library("<table name='A'><double name='d' units='Meter'>1</double></table>");
    Document document(inRoot("<group name='g' class='A'><double name='d' units='Second' locale='de' "
                             "dim='5'>2</double></group>"),
                      library.locator());
    EXPECT_THAT(document.values<double>("g.d"), ElementsAre(2.0));
    EXPECT_EQ(document.record("g.d")->load(Record::field::unit), 0x2001U);
    EXPECT_EQ(document.record("g.d")->load(Record::field::localeTagSize), 0U);
}

TEST(Override, UriOfTheNewObjectIsLostAndItsTextIsUsed) {
    Library library("<table name='A'><int8 name='i'>1</int8></table>");
    Document document(inRoot("<group name='g' class='A'><int8 name='i' uri='file:x'>2</int8></group>"),
                      library.locator());
    EXPECT_THAT(document.bytes("g.i"), ElementsAre(2));
    EXPECT_EQ(document.flags("g.i"), Record::kFixed);
}

TEST(Override, OfAValueBehindAUriTakesNoText) {
    Library library("<table name='A'><int8 name='i' uri='file:x'/></table>");
    Document document(inRoot("<group name='g' class='A'><int8 name='i'>2</int8></group>"), library.locator());
    EXPECT_EQ(Design::Primitive(&document.store, document.at("g.i")).uri(), u"file:x");
    EXPECT_EQ(document.flags("g.i"), Record::kFixed | Record::kHasUri);
}

TEST(Override, RecordOfTheNewObjectStaysBehindWithoutAParent) {
    Document document("<group name='g'><int8 name='i'>1</int8><int8 name='i'>2</int8></group>");
    std::vector<std::uint32_t> orphans;
    for (std::uint32_t offset = 1; offset < document.store.size(); ++offset) {
        const Record::Snapshot record(&document.store, offset);
        if (record->kind() == 1 && record->load(Record::field::parent) == IDataStore::BADOFF)
            orphans.push_back(offset);
    }
    EXPECT_EQ(orphans.size(), 1U);
    EXPECT_EQ(openCounts(document.store), 0U);
}

TEST(Override, DisplayNamesGoToTheExistingObject) {
    Library library(
        "<table name='A'><int8 name='i'><name>one</name><name "
        "locale='nl'>een</name><val>1</val></int8></table>");
    Document document(
        inRoot("<group name='g' class='A'><int8 name='i'><name>two</name><val>2</val></int8></group>"),
        library.locator());
    Owned<Metadata::Item> item = Metadata::openItem(&document.store, document.at("g.i"));
    EXPECT_EQ(item->localised(u"en-us"), u"two");
    EXPECT_EQ(item->localised(u"nl"), u"een");
    EXPECT_THAT(document.bytes("g.i"), ElementsAre(2));
}

TEST(Override, NumbersLongerThanTheInheritedLengthenTheValue) {
    Library library("<table name='A'><int8 name='i'>1</int8></table>");
    Document document(inRoot("<group name='g' class='A'><int8 name='i'>5 6 7</int8></group>"),
                      library.locator());
    EXPECT_THAT(document.bytes("g.i"), ElementsAre(5, 6, 7));
}

TEST(Override, ClassOfTheStoreThatIsReadIntoIsFoundAsSoonAsItIsThere) {
    MemoryDataStore store;
    SharedPtr<ISchemaLocator> locator = ISchemaLocator::make(&store);
    EXPECT_THAT(read(store,
                     inRoot("<group name='early' class='A'/><table name='A'><int8 name='i'>1</int8></table>"
                            "<group name='late' class='A'/>"),
                     locator.get()),
                IsEmpty());
    EXPECT_EQ(Metadata::resolvePath(&store, 0, u"early.i"), IDataStore::BADOFF);
    EXPECT_NE(Metadata::resolvePath(&store, 0, u"late.i"), IDataStore::BADOFF);
}

}  // namespace
}  // namespace norvane::platform::data::test
