// Documents that are read into a container that is there.
#include <stdexcept>

#include "impl/ContainerImpl.h"
#include "support/LoggingStore.h"
#include "support/ThrowingStore.h"
#include "unit/xml/Documents.h"

namespace norvane::platform::data::test {
namespace {

using platform::test::LoggingStore;
using platform::test::StoreFailure;
using platform::test::ThrowingStore;
using structure::IContainerFrontEnd;

WideString wideString(std::string_view text) { return WideString(wide(text).c_str()); }

// A container "box" of some kind, below the default group.
class Target {
  public:
    explicit Target(std::uint32_t kind = structure::kGroup)
        : top(IContainerFrontEnd::toplevel(&store, wideString("top"))),
          box(top->makeContainer(kind, wideString("box"), nullptr)) {}

    std::string boxAsText() { return written(store, nullptr, Metadata::resolvePath(&store, 0, u"top.box")); }

    LoggingStore store;
    SharedPtr<IContainer> top;
    SharedPtr<IContainer> box;
};

TEST(ParseIntoContainer, ChildrenAndDisplayNamesGoToTheContainer) {
    Target target;
    EXPECT_THAT(readInto(*target.box,
                         "<group name='x'><name>X</name><int32 name='i'>1</int32><node name='n'/></group>"),
                IsEmpty());
    target.box.reset();
    EXPECT_EQ(target.boxAsText(),
              "<group name=\"box\" class=\"\">\n"
              "  <name locale=\"en-us\">X</name>\n"
              "  <int32 name=\"i\">1</int32>\n"
              "  <node name=\"n\" class=\"\"/>\n"
              "</group>\n");
}

TEST(ParseIntoContainer, HandleKnowsItsNewChildren) {
    Target target;
    readInto(*target.box, "<group name='x'><node name='n'/></group>");
    EXPECT_TRUE(target.box->contains(wideString("n")));
    EXPECT_FALSE(target.box->isEmpty());
}

TEST(ParseIntoContainer, ObjectOfTheDocumentElementIsMadeAndLeftBehind) {
    Target target;
    const std::uint64_t before = target.store.behind().recordCount();
    readInto(*target.box, "<node name='x' optional='true' class='A'/>");
    ASSERT_EQ(target.store.behind().recordCount(), before + 1);
    const Record::Snapshot orphan(&target.store, static_cast<std::uint32_t>(target.store.size() - 1));
    EXPECT_EQ(orphan->name(), u"x");
    EXPECT_EQ(orphan->load(Record::field::parent), IDataStore::BADOFF);
    EXPECT_EQ(orphan->load(Record::field::openCount), 0U);
}

TEST(ParseIntoContainer, AttributesOfTheDocumentElementDoNotReachTheContainer) {
    Target target(structure::kLink);
    readInto(*target.box, "<link name='x' optional='true' to='a.b'/>");
    target.box.reset();
    EXPECT_EQ(target.boxAsText(), "<link name=\"box\" class=\"\" to=\"\"/>\n");
    const std::uint32_t box = Metadata::resolvePath(&target.store, 0, u"top.box");
    EXPECT_EQ(Record::Snapshot(&target.store, box)->load(Record::field::flags), 0);
}

TEST(ParseIntoContainer, VersionOfARootReachesTheStoreAllTheSame) {
    Target target;
    readInto(*target.box, "<root name='x' version='9'/>");
    EXPECT_EQ(target.store.version(), 9U);
}

TEST(ParseIntoContainer, HandlerOfTheDocumentElementJudgesTheChildren) {
    Target target;
    EXPECT_THAT(
        readInto(*target.box, "<root name='x'><int32 name='i'/><node name='n'/><table name='t'/></root>"),
        ElementsAre("int32 : could not nest the element"));
    EXPECT_THAT(readInto(*target.box, "<table name='x'><int32 name='i'/><node name='m'/></table>"),
                ElementsAre("node : could not nest the element"));
    EXPECT_THAT(readInto(*target.box, "<double name='x'><int32 name='j'/></double>"),
                ElementsAre("int32 : could not nest the element"));
    target.box.reset();
    EXPECT_EQ(target.boxAsText(),
              "<group name=\"box\" class=\"\">\n"
              "  <node name=\"n\" class=\"\"/>\n"
              "  <table name=\"t\" class=\"\"/>\n"
              "  <int32 name=\"i\"/>\n"
              "</group>\n");
}

TEST(ParseIntoContainer, ValueTextMeansNothingToAContainer) {
    for (const char* element : {"double", "string", "binary", "int8"}) {
        Target target;
        const std::string document = "<" + std::string(element) + " name='x'>1 2</" + element + ">";
        EXPECT_THAT(readInto(*target.box, document), IsEmpty());
        target.box.reset();
        EXPECT_EQ(target.boxAsText(), "<group name=\"box\" class=\"\"/>\n");
    }
}

TEST(ParseIntoContainer, ValMeansNothingToAContainerAndDisplayNamesStillDo) {
    Target target;
    EXPECT_THAT(readInto(*target.box, "<double name='x'><val>1 2</val><name>X</name></double>"), IsEmpty());
    EXPECT_EQ(target.box->localisedCount(), 0U);
    target.box.reset();
    EXPECT_EQ(target.boxAsText(),
              "<group name=\"box\" class=\"\">\n  <name locale=\"en-us\">X</name>\n</group>\n");
}

TEST(ParseIntoContainer, DefaultMeansNothingToAContainer) {
    Target target;
    EXPECT_THAT(
        readInto(*target.box, "<table name='x'><default unit='Meter' type='double'/><name>X</name></table>"),
        IsEmpty());
    target.box.reset();
    EXPECT_EQ(target.boxAsText(),
              "<group name=\"box\" class=\"\">\n  <name locale=\"en-us\">X</name>\n</group>\n");
}

TEST(ParseIntoContainer, StructTextMeansNothingToAContainer) {
    Library library("<table name='T'><int8 name='i'>1</int8></table>");
    Target target;
    EXPECT_THAT(readInto(*target.box, "<struct name='x' type='T'>1</struct>", library.locator()), IsEmpty());
    target.box.reset();
    EXPECT_EQ(target.boxAsText(), "<group name=\"box\" class=\"\"/>\n");
}

TEST(ParseIntoContainer, PropertyThatIsThereIsOverridden) {
    Target target;
    readInto(*target.box, "<group name='x'><int32 name='i'>1 2</int32></group>");
    EXPECT_THAT(readInto(*target.box, "<group name='x'><int32 name='i'>3</int32><node name='i'/></group>"),
                ElementsAre("node : could not nest the element"));
    target.box.reset();
    EXPECT_EQ(target.boxAsText(),
              "<group name=\"box\" class=\"\">\n  <int32 name=\"i\">3 2</int32>\n</group>\n");
}

TEST(ParseIntoContainer, FailedDocumentElementLeavesTheContainerAlone) {
    Target target;
    EXPECT_THAT(readInto(*target.box, "<group><node name='n'/></group>"),
                ElementsAre("group : missing mandatory 'id' attribute"));
    EXPECT_THAT(readInto(*target.box, "<thing><node name='n'/></thing>"),
                ElementsAre("thing : unknown element, skipping"));
    EXPECT_TRUE(target.box->isEmpty());
}

TEST(ParseIntoContainer, ContainerStaysOpenOnceThroughoutAndAfterwards) {
    Target target;
    readInto(*target.box, "<group name='x'><node name='n'/></group>");
    const std::uint32_t box = Metadata::resolvePath(&target.store, 0, u"top.box");
    EXPECT_EQ(Record::Snapshot(&target.store, box)->load(Record::field::openCount), 1U);
}

TEST(ParseIntoContainer, DoesNotFlush) {
    Target target;
    readInto(*target.box, "<group name='x'/>");
    EXPECT_EQ(target.store.count("flush"), 0U);
}

TEST(ParseIntoContainer, DocumentThatBreaksOffLeavesTheHandleUsable) {
    Target target;
    readInto(*target.box, "<group name='x'><name>X</name><node name='n'>");
    EXPECT_TRUE(target.box->contains(wideString("n")));
    target.box.reset();
    EXPECT_EQ(target.boxAsText(),
              "<group name=\"box\" class=\"\">\n"
              "  <name locale=\"en-us\">X</name>\n"
              "  <node name=\"n\" class=\"\"/>\n"
              "</group>\n");
}

TEST(ParseIntoContainer, TargetOfAKindThatNoElementHasIsReported) {
    Target target;
    const std::uint32_t box = Metadata::resolvePath(&target.store, 0, u"top.box");
    const unsigned char list = 3;
    target.store.behind().patch(box, 0, &list, 1, true);
    EXPECT_THAT(readInto(*target.box, "<Group name='x'><node name='n'/></Group>"),
                ElementsAre("Group : could not..."));
    const unsigned char container = 4;
    target.store.behind().patch(box, 0, &container, 1, true);
    EXPECT_TRUE(target.box->isEmpty());
}

TEST(ParseIntoContainer, HandleOfSomebodyElseIsIgnored) {
    struct NotOurs : ContainerImpl::IContainer {
        WideString name() override { return {}; }
        WideString path() override { return {}; }
        IDataStore* store() override { return nullptr; }
        SharedPtr<IContainer> parent() override { return {}; }
        WideString className() override { return {}; }
        bool isEmpty() override { return true; }
        std::uint32_t kind() override { return 0; }
        bool remove(WideString) override { return false; }
        bool rename(WideString) override { return false; }
        SharedPtr<metadata::ITable> makeTable(WideString, metadata::ISchema*) override { return {}; }
        SharedPtr<metadata::IPrimitive> makePrimitive(WideString, std::uint32_t) override { return {}; }
        SharedPtr<IContainer> makeContainer(std::uint32_t, WideString, metadata::ISchema*) override {
            return {};
        }
        bool contains(WideString) override { return false; }
        SharedPtr<IContainer> find(WideString) override { return {}; }
        SharedPtr<metadata::IProperty> findProperty(WideString) override { return {}; }
        SharedPtr<metadata::IPropertyFilter> properties() override { return {}; }
        SharedPtr<structure::IContainerFilter> containers() override { return {}; }
        bool conforms(WideString, metadata::ISchema*, bool) override { return false; }
        bool conforms(metadata::ISchema*, bool) override { return false; }
        bool merge(SharedPtr<IContainer>) override { return false; }
        bool copyTo(IDataStore*, WideString) override { return false; }
        bool copy(WideString, WideString, bool) override { return false; }
        bool add(SharedPtr<IContainer>) override { return false; }
        bool add(SharedPtr<metadata::IProperty>) override { return false; }
        std::uint32_t localisedCount() override { return 0; }
        WideString localeAt(std::uint32_t) override { return {}; }
        void setLocalised(WideString, WideString) override {}
        WideString localised(WideString) override { return {}; }
    } stranger;
    EXPECT_THAT(readInto(stranger, "<x/>"), IsEmpty());
}

TEST(ParseIntoContainer, ExceptionReachesTheCallerAndTheReaderStaysOpen) {
    struct Reader : MemoryReader {
        using MemoryReader::MemoryReader;
        void close() override { closed = true; }
        bool closed = false;
    } reader("<group name='x'><node name='n'/><y/></group>");
    struct Reporter : IErrorReporter {
        void report(WideString) override { throw std::runtime_error("no more"); }
    } reporter;
    Target target;
    EXPECT_THROW(IXMLFrontEnd::parse(target.box.get(), &reader, nullptr, nullptr, &reporter),
                 std::runtime_error);
    EXPECT_FALSE(reader.closed);
    EXPECT_TRUE(target.box->contains(wideString("n")));
}

TEST(ParseIntoContainer, FailureOfTheStoreAtAnyCallReachesTheCaller) {
    std::uint64_t failures = 0;
    for (std::uint64_t n = 1;; ++n) {
        MemoryDataStore memory;
        ThrowingStore store(memory);
        SharedPtr<IContainer> top = IContainerFrontEnd::toplevel(&store, wideString("top"));
        MemoryReader reader(
            "<group name='x'><name>X</name><table name='t'><default unit='Meter' type='double'/>"
            "<double name='d' units='Meter'>1 2</double></table><node name='n'/></group>");
        store.throwAt(n);
        bool hasThrown = false;
        try {
            IXMLFrontEnd::parse(top.get(), &reader, nullptr, nullptr, nullptr);
        } catch (const StoreFailure&) {
            hasThrown = true;
        }
        EXPECT_EQ(hasThrown, store.thrown());
        store.calm();
        if (!hasThrown) break;
        ++failures;
    }
    EXPECT_GT(failures, 30U);
}

}  // namespace
}  // namespace norvane::platform::data::test
