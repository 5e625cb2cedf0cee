// What stands in a document and what becomes of it.
#include "unit/xml/Documents.h"

namespace norvane::platform::data::test {
namespace {

TEST(DocumentFormat, CaseOfElementNamesDoesNotMatter) {
    Document document(inRoot("<GROUP name='a'/><Group name='b'/><group name='c'/>"));
    EXPECT_THAT(document.reports, IsEmpty());
    EXPECT_EQ(document.written(),
              "<root version=\"0\" name=\"r\">\n"
              "  <group name=\"a\" class=\"\"/>\n"
              "  <group name=\"b\" class=\"\"/>\n"
              "  <group name=\"c\" class=\"\"/>\n"
              "</root>\n");
}

TEST(DocumentFormat, CaseOfSubElementNamesDoesNotMatter) {
    Document document(
        inGroup("<table name='t'><NAME>T</NAME><Default unit='Meter' type='double'/></table>"
                "<int32 name='i'><VAL>5</VAL></int32>"));
    EXPECT_THAT(document.reports, IsEmpty());
    EXPECT_EQ(Metadata::openItem(&document.store, document.at("g.t"))->localised(u"en-us"), u"T");
    EXPECT_THAT(document.values<std::int32_t>("g.i"), ElementsAre(5));
}

TEST(DocumentFormat, CaseOfAttributeNamesMatters) {
    Document document(inRoot("<group NAME='a'/>"));
    EXPECT_THAT(document.reports, ElementsAre("group : missing mandatory 'id' attribute"));
}

TEST(DocumentFormat, ElementNameOf300BytesIsJudgedByItsFirst256) {
    const std::string name(300, 'x');
    Document document(inRoot("<" + name + "/>"));
    EXPECT_THAT(document.reports, ElementsAre(std::string(256, 'x') + " : unknown element, skipping"));
}

TEST(DocumentFormat, NameCutInsideACharacterEndsInAReplacement) {
    const std::string name = std::string(255, 'x') + "\xC3\xA4";
    Document document(inRoot("<" + name + "/>"));
    EXPECT_THAT(document.reports,
                ElementsAre(std::string(255, 'x') + "\xEF\xBF\xBD : unknown element, skipping"));
}

TEST(DocumentFormat, MissingNameIsReportedAsMissingId) {
    for (const char* element : {"node", "group", "link", "table", "int32", "string", "struct"}) {
        Document document(inGroup("<" + std::string(element) + " id='a'/>"));
        EXPECT_THAT(document.reports,
                    ElementsAre(std::string(element) + " : missing mandatory 'id' attribute"));
    }
}

TEST(DocumentFormat, NothingIsMadeWithoutAName) {
    Document document(inGroup("<double/><table/><node/><struct/>"));
    EXPECT_EQ(document.store.recordCount(), 3U);  // root, its list, group
}

TEST(DocumentFormat, VersionIsNotSetByARootWithoutAName) {
    Document document("<root version='7'/>");
    EXPECT_THAT(document.reports, ElementsAre("root : missing mandatory 'id' attribute"));
    EXPECT_EQ(document.store.version(), 0U);
    EXPECT_EQ(document.store.size(), 0U);
}

TEST(DocumentFormat, EmptyNameIsAName) {
    Document document(inRoot("<group name=''/>"));
    EXPECT_THAT(document.reports, IsEmpty());
    EXPECT_EQ(document.written(),
              "<root version=\"0\" name=\"r\">\n  <group name=\"\" class=\"\"/>\n</root>\n");
}

TEST(DocumentFormat, VersionOfTheRootIsTheVersionOfTheStore) {
    EXPECT_EQ(Document("<root name='r' version='3'/>").store.version(), 3U);
    EXPECT_EQ(Document("<root version='12 and more' name='r'/>").store.version(), 12U);
    EXPECT_EQ(Document("<root name='r' version='-1'/>").store.version(), 4294967295U);
}

TEST(DocumentFormat, VersionThatIsNoNumberOrTooLargeIsSetAsZero) {
    for (const char* version : {"", "x", "99999999999"}) {
        MemoryDataStore store;
        store.setVersion(5);
        read(store, "<root name='r' version='" + std::string(version) + "'/>");
        EXPECT_EQ(store.version(), 0U) << version;
    }
}

TEST(DocumentFormat, VersionIsLeftAloneWhereNoneIsGiven) {
    MemoryDataStore store;
    store.setVersion(5);
    read(store, "<root name='r'/>");
    EXPECT_EQ(store.version(), 5U);
    Document fresh("<group name='g'/>");
    EXPECT_EQ(fresh.store.version(), 0U);
}

TEST(DocumentFormat, OptionalIsSetByExactlyTrue) {
    Document document(
        inRoot("<group name='a' optional='true'/><group name='b' optional='TRUE'/>"
               "<group name='c' optional='1'/><group name='d'/><table name='t' optional='true'/>"));
    EXPECT_EQ(document.flags("a"), Record::kOptional);
    EXPECT_EQ(document.flags("b"), 0);
    EXPECT_EQ(document.flags("c"), 0);
    EXPECT_EQ(document.flags("d"), 0);
    EXPECT_EQ(document.flags("t"), Record::kOptional);
}

TEST(DocumentFormat, OptionalIsNotReadOnValues) {
    Document document(inGroup("<int32 name='i' optional='true'/>"));
    EXPECT_EQ(document.flags("g.i"), 0);
}

TEST(DocumentFormat, ToIsReadOnLinksAlone) {
    Document document(inRoot("<link name='l' to='a.b'/><group name='g' to='a.b'/><node name='n' to='a.b'/>"));
    const auto target = [&](const char* path) {
        return narrow(Structural::Container(&document.store, document.at(path)).linkTarget());
    };
    EXPECT_EQ(target("l"), "a.b");
    EXPECT_EQ(target("g"), "");
    EXPECT_EQ(target("n"), "");
}

TEST(DocumentFormat, UnknownAttributesAreIgnored) {
    Document document(inGroup("<int32 name='i' colour='red' type='T' xml:lang='en'>4</int32>"));
    EXPECT_THAT(document.reports, IsEmpty());
    EXPECT_THAT(document.values<int>("g.i"), ElementsAre(4));
}

TEST(DocumentFormat, TypeOfAnElementThatIsNoStructDoesNotKeepItFromBeingSized) {
    Document document(inGroup("<int16 name='i' type='T' dim='2'/>"));
    EXPECT_THAT(document.bytes("g.i"), ElementsAre(0, 0, 0, 0));
}

TEST(DocumentFormat, UnitsAreStoredById) {
    Document document(
        inGroup("<double name='a' units='KiloMeter'/><double name='b' units='kilometer'/>"
                "<double name='c'/><double name='d' units=''/>"));
    EXPECT_THAT(document.reports, IsEmpty());
    EXPECT_EQ(document.record("g.a")->load(Record::field::unit), 0x2009U);
    EXPECT_EQ(document.record("g.b")->load(Record::field::unit), 0U);
    EXPECT_EQ(document.record("g.c")->load(Record::field::unit), 0U);
    EXPECT_EQ(document.record("g.d")->load(Record::field::unit), 0U);
}

TEST(DocumentFormat, LocaleOfAValueHasNoDefault) {
    Document document(inGroup("<string name='a' locale='nl-nl'>x</string><string name='b'>x</string>"));
    EXPECT_EQ(Design::Primitive(&document.store, document.at("g.a")).localeTag(), u"nl-nl");
    EXPECT_EQ(document.record("g.b")->load(Record::field::localeTagSize), 0U);
}

TEST(DocumentFormat, LocaleOfADisplayNameIsEnUsWhenNotGiven) {
    Document document(
        inRoot("<group name='g'><name>A</name><name locale='nl'>B</name><name locale=''>C</name></group>"));
    Owned<Metadata::Item> group = Metadata::openItem(&document.store, document.at("g"));
    EXPECT_EQ(group->localised(u"en-us"), u"A");
    EXPECT_EQ(group->localised(u"nl"), u"B");
    EXPECT_EQ(group->localised(u""), u"C");
    EXPECT_EQ(group->localisedCount(), 3U);
}

TEST(DocumentFormat, DisplayNameIsKeptVerbatim) {
    Document document(inRoot("<group name='g'><name>  two\n words \xE2\x9D\xA4 </name></group>"));
    EXPECT_EQ(Metadata::openItem(&document.store, document.at("g"))->localised(u"en-us"),
              u"  two\n words \u2764 ");
}

TEST(DocumentFormat, LaterDisplayNameOfALocaleReplaces) {
    Document document(inRoot("<group name='g'><name>A</name><name>B</name></group>"));
    Owned<Metadata::Item> group = Metadata::openItem(&document.store, document.at("g"));
    EXPECT_EQ(group->localisedCount(), 1U);
    EXPECT_EQ(group->localised(u"en-us"), u"B");
}

TEST(DocumentFormat, EveryKeywordElementCanHaveDisplayNames) {
    Document document(
        "<root name='r'><name>R</name><table name='t'><name>T</name></table>"
        "<link name='l'><name>L</name></link>"
        "<node name='n'><int8 name='i'><name>I</name></int8></node></root>");
    EXPECT_THAT(document.reports, IsEmpty());
    EXPECT_EQ(Metadata::Root(&document.store, 0).localised(u"en-us"), u"R");
    EXPECT_EQ(Metadata::openItem(&document.store, document.at("t"))->localised(u"en-us"), u"T");
    EXPECT_EQ(Metadata::openItem(&document.store, document.at("l"))->localised(u"en-us"), u"L");
    EXPECT_EQ(Metadata::openItem(&document.store, document.at("n.i"))->localised(u"en-us"), u"I");
}

TEST(DocumentFormat, ValUnderAContainerIsTakenAndEndsAllSubElementsOfThatKeyword) {
    for (const std::string element : {"node", "group", "link"}) {
        Document document(inRoot("<" + element + " name='a'><val>5</val><name>A</name></" + element + ">" +
                                 "<" + element + " name='b'><name>B</name></" + element +
                                 ">"
                                 "<table name='t'><name>T</name></table>"));
        EXPECT_THAT(document.reports,
                    ElementsAre("name : unknown element, skipping", "name : unknown element, skipping"));
        EXPECT_EQ(Metadata::openItem(&document.store, document.at("a"))->localisedCount(), 0U);
        EXPECT_EQ(Metadata::openItem(&document.store, document.at("b"))->localisedCount(), 0U);
        EXPECT_EQ(Metadata::openItem(&document.store, document.at("t"))->localisedCount(), 1U);
    }
}

TEST(DocumentFormat, ValUnderTheRootEndsItsSubElements) {
    Document document(inRoot("<val/><name>R</name><group name='g'><name>G</name></group>"));
    EXPECT_THAT(document.reports, ElementsAre("name : unknown element, skipping"));
    EXPECT_EQ(Metadata::openItem(&document.store, document.at("g"))->localisedCount(), 1U);
}

TEST(DocumentFormat, ValUnderATableIsUnknown) {
    Document document(inRoot("<table name='t'><val>5</val><name>T</name></table>"));
    EXPECT_THAT(document.reports, ElementsAre("val : unknown element, skipping"));
    EXPECT_EQ(Metadata::openItem(&document.store, document.at("t"))->localisedCount(), 1U);
}

TEST(DocumentFormat, DefaultBelongsToTablesAlone) {
    Document document(
        inGroup("<default unit='Meter' type='double'/>"
                "<int8 name='i'><default unit='Meter' type='double'/></int8>"));
    EXPECT_THAT(document.reports,
                ElementsAre("default : unknown element, skipping", "default : unknown element, skipping"));
}

TEST(DocumentFormat, DefaultDeclaresTypeAndUnitOfADimension) {
    Document document(
        inRoot("<table name='t'><default unit='Meter' type='vec3'/><default unit='Second' type='int32'>"
               "ignored</default></table>"));
    EXPECT_THAT(document.reports, IsEmpty());
    const Design::Table table(&document.store, document.at("t"));
    EXPECT_THAT(table.defaultKeys(), ElementsAre(0x2000, 0x2C000));
    EXPECT_EQ(table.defaultUnit(0x2000), 0x2001U);
    EXPECT_EQ(table.defaultType(0x2000), 19U);
    EXPECT_EQ(table.defaultType(0x2C000), 12U);
}

TEST(DocumentFormat, DefaultWithoutUnitOrTypeIsUnknown) {
    Document document(
        inRoot("<table name='t'><default unit='Meter'/><default type='double'/><default/>"
               "<default unit='Meter' type='double'/></table>"));
    EXPECT_THAT(document.reports,
                ElementsAre("default : unknown element, skipping", "default : unknown element, skipping",
                            "default : unknown element, skipping"));
    EXPECT_THAT(Design::Table(&document.store, document.at("t")).defaultKeys(), ElementsAre(0x2000));
}

TEST(DocumentFormat, DefaultOfAnUnknownTypeEndsAllSubElementsOfTables) {
    Document document(
        inRoot("<table name='t'><default unit='Meter' type='vector3'/><name>T</name></table>"
               "<table name='u'><default unit='Meter' type='double'/><name>U</name></table>"
               "<group name='g'><name>G</name></group>"));
    EXPECT_THAT(document.reports,
                ElementsAre("name : unknown element, skipping", "default : unknown element, skipping",
                            "name : unknown element, skipping"));
    EXPECT_THAT(Design::Table(&document.store, document.at("t")).defaultKeys(), IsEmpty());
    EXPECT_THAT(Design::Table(&document.store, document.at("u")).defaultKeys(), IsEmpty());
    EXPECT_EQ(Metadata::openItem(&document.store, document.at("g"))->localisedCount(), 1U);
}

TEST(DocumentFormat, StructIsNoTypeOfADefault) {
    Document document(inRoot("<table name='t'><default unit='Meter' type='struct'/><name>T</name></table>"));
    EXPECT_THAT(document.reports, ElementsAre("name : unknown element, skipping"));
}

TEST(DocumentFormat, DefaultOfAnUnknownUnitAddsNothingAndHarmsNothing) {
    Document document(inRoot("<table name='t'><default unit='meter' type='double'/><name>T</name></table>"));
    EXPECT_THAT(document.reports, IsEmpty());
    EXPECT_THAT(Design::Table(&document.store, document.at("t")).defaultKeys(), IsEmpty());
    EXPECT_EQ(Metadata::openItem(&document.store, document.at("t"))->localisedCount(), 1U);
}

TEST(DocumentFormat, ShortTypeWordsAreNoElements) {
    Document document(inGroup("<vec3 name='v'>1 2 3</vec3><mtx2x2 name='m'/>"));
    EXPECT_THAT(document.reports,
                ElementsAre("vec3 : unknown element, skipping", "mtx2x2 : unknown element, skipping"));
}

TEST(DocumentFormat, ElementsThatMayNotStandWhereTheyStandAreMadeAndRefused) {
    const struct {
        const char* content;
        const char* refused;
    } cases[] = {
        {"<root name='x'/>", "root"},
        {"<Double name='x'/>", "double"},
        {"<group name='g'><root name='x'/></group>", "root"},
        {"<table name='t'><group name='x'/></table>", "group"},
        {"<table name='t'><Node name='x'/></table>", "node"},
        {"<table name='t'><root name='x'/></table>", "root"},
        {"<group name='g'><int8 name='i'><int8 name='x'/></int8></group>", "int8"},
        {"<group name='g'><int8 name='i'><table name='x'/></int8></group>", "table"},
        {"<group name='g'><int8 name='i'><node name='x'/></int8></group>", "node"},
    };
    for (const auto& each : cases) {
        Document document(inRoot(each.content));
        EXPECT_THAT(document.reports,
                    ElementsAre(std::string(each.refused) + " : could not nest the element"))
            << each.content;
        EXPECT_EQ(document.written().find("name=\"x\""), std::string::npos) << each.content;
    }
}

TEST(DocumentFormat, RefusedElementLeavesItsRecordWithoutAParent) {
    Document document(inRoot("<int32 name='x'>5</int32>"));
    ASSERT_EQ(document.store.recordCount(), 2U);
    const Record::Snapshot orphan(&document.store, 1);
    EXPECT_EQ(orphan->name(), u"x");
    EXPECT_EQ(orphan->load(Record::field::parent), IDataStore::BADOFF);
    EXPECT_EQ(orphan->load(Record::field::openCount), 0U);
}

TEST(DocumentFormat, SecondContainerOfANameIsRefusedWhateverItsKind) {
    Document document(
        inRoot("<group name='a'><int32 name='i'>1</int32></group><node name='a'/>"
               "<group name='a'><int32 name='i'>2</int32></group>"));
    EXPECT_THAT(document.reports,
                ElementsAre("node : could not nest the element", "group : could not nest the element"));
    EXPECT_THAT(document.values<int>("a.i"), ElementsAre(1));
}

TEST(DocumentFormat, ContainerWithTheNameOfAPropertyIsRefused) {
    Document document(inGroup("<int32 name='a'/><node name='a'/><node name='b'/><int32 name='b'/>"));
    EXPECT_THAT(document.reports,
                ElementsAre("node : could not nest the element", "int32 : could not nest the element"));
}

TEST(DocumentFormat, SecondTableUnderTheRootIsRefused) {
    Document document(inRoot("<table name='t'/><table name='t'/>"));
    EXPECT_THAT(document.reports, ElementsAre("table : could not nest the element"));
}

TEST(DocumentFormat, ValueWithANameThatIsThereOverrides) {
    Document document(
        inGroup("<int32 name='i'>1 2 3</int32><int32 name='i'>7</int32>"
                "<table name='t'><int8 name='j'>1</int8></table>"
                "<table name='t'><int8 name='j'>2</int8><int8 name='k'>3</int8></table>"));
    EXPECT_THAT(document.reports, IsEmpty());
    EXPECT_THAT(document.values<int>("g.i"), ElementsAre(7, 2, 3));
    EXPECT_THAT(document.bytes("g.t.j"), ElementsAre(2));
    EXPECT_THAT(document.bytes("g.t.k"), ElementsAre(3));
}

TEST(DocumentFormat, FirstElementCanBeAnyKeyword) {
    for (const std::string element : {"node", "group", "link", "table", "string", "double"}) {
        Document document("<" + element + " name='top'><name>T</name></" + element + ">");
        EXPECT_THAT(document.reports, IsEmpty()) << element;
        const Record::Snapshot top(&document.store, 0);
        EXPECT_EQ(top->name(), u"top") << element;
        EXPECT_EQ(top->load(Record::field::parent), IDataStore::BADOFF) << element;
        EXPECT_EQ(document.written().substr(0, element.size() + 1), "<" + element);
    }
}

TEST(DocumentFormat, RootInAStoreWithRecordsIsOneMoreThatNothingLeadsTo) {
    Document document(inRoot("<group name='a'/>"));
    const auto first = static_cast<std::uint32_t>(document.store.size());
    EXPECT_THAT(read(document.store, "<root name='s'><group name='b'/></root>"), IsEmpty());
    EXPECT_EQ(Record::kindOf(&document.store, first), 0);
    EXPECT_FALSE(document.has("b"));
    EXPECT_EQ(written(document.store, nullptr, first),
              "<root version=\"0\" name=\"s\">\n  <group name=\"b\" class=\"\"/>\n</root>\n");
}

TEST(DocumentFormat, ReadsAndWritesTheWorkedExample) {
    Library library(
        "<table name='Camera'><double name='exposure' units='Meter'>1</double><int8 "
        "name='iso'>2</int8></table>"
        "<table name='Light'><scalar name='power'>3</scalar></table>"
        "<table name='Pose'><vector3 name='at'>0 0 0</vector3><double name='turn'>0</double></table>");
    const std::string text =
        "<root version=\"1\" name=\"root\">\n"
        "  <group name=\"scene\" class=\"Camera;Light\">\n"
        "    <name locale=\"en-us\">My scene</name>\n"
        "    <double name=\"exposure\" units=\"Meter\">0.5</double>\n"
        "    <table name=\"limits\" class=\"\">\n"
        "      <default unit=\"Kilogram\" type=\"scalar\"/>\n"
        "      <int32 name=\"steps\">1 2 3</int32>\n"
        "    </table>\n"
        "    <struct name=\"pose\" type=\"Pose\">1 2 3 0.25</struct>\n"
        "    <string name=\"two\">\n"
        "      <val>a</val>\n"
        "      <val>b</val>\n"
        "    </string>\n"
        "  </group>\n"
        "</root>\n";
    Document document(text, library.locator());
    EXPECT_THAT(document.reports, IsEmpty());
    EXPECT_EQ(document.written(library.locator()), text);
    EXPECT_EQ(document.flags("scene.iso"), Record::kFixed | Record::kInherited);
    EXPECT_EQ(document.flags("scene.exposure"), Record::kFixed);
}

TEST(DocumentFormat, UnknownClassIsIgnored) {
    Library library("<table name='A'><int8 name='i'/></table>");
    Document document(inRoot("<group name='g' class='B'/><table name='t' class='B'/>"), library.locator());
    EXPECT_THAT(document.reports, IsEmpty());
    EXPECT_EQ(document.record("g")->load(Record::field::classTextSize), 0U);
    EXPECT_EQ(document.record("t")->load(Record::field::tableClassSize), 0U);
}

TEST(DocumentFormat, ClassIsIgnoredWithoutALocator) {
    Document document(inRoot("<group name='g' class='A'/>"));
    EXPECT_THAT(document.reports, IsEmpty());
    EXPECT_EQ(document.record("g")->load(Record::field::classTextSize), 0U);
}

TEST(DocumentFormat, ContainerFromAClassIsNotOverridden) {
    // A table holds no containers, so that a class can only be made to by hand.
    Library library("<table name='A'/>");
    {
        Document& types = library.document();
        Structural::Container inner(&types.store, structure::kNode, u"n");
        Design::Table(&types.store, types.at("A")).addChild(inner.offset());
    }
    Document document(inRoot("<group name='g' class='A'><node name='n'/></group>"), library.locator());
    EXPECT_THAT(document.reports, ElementsAre("node : could not nest the element"));
    EXPECT_EQ(document.flags("g.n"), Record::kFixed | Record::kInherited);
}

TEST(DocumentFormat, DocumentWithoutElementsMakesNothing) {
    Document document("<?xml version='1.0'?>\n<!-- nothing -->\n");
    EXPECT_THAT(document.reports, IsEmpty());
    EXPECT_EQ(document.store.size(), 0U);
}

TEST(DocumentFormat, CommentsAndInstructionsMeanNothing) {
    Document document(
        "<?xml version='1.0'?><!-- a --><root name='r'><?b c?><group name='g'>"
        "<int32 name='i'>1<!-- 2 -->3<?d 4?></int32></group></root>");
    EXPECT_THAT(document.reports, IsEmpty());
    EXPECT_THAT(document.values<int>("g.i"), ElementsAre(13));
}

}  // namespace
}  // namespace norvane::platform::data::test
