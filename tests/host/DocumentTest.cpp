#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <stop_token>
#include <string>

#include "qvt/qvt.hpp"
#include "support/Folder.h"

namespace {

using testing::IsEmpty;
using testing::SizeIs;

std::string contents(const std::string& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

class HostDocument : public testing::Test {
  protected:
    std::string path(const std::string& name) { return (folder.path() / name).string(); }
    std::string written(const std::string& name, const std::string& text) {
        std::ofstream(path(name)) << text;
        return path(name);
    }

    norvane::platform::test::Folder folder;
    qvt::MemoryStore store;
};

TEST_F(HostDocument, GivesBackWhatItHasRead) {
    const std::string text =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<root version=\"1\" name=\"r\">\n"
        "  <group name=\"g\" class=\"\">\n    <double name=\"x\">1.5</double>\n  </group>\n</root>\n";
    const auto read = qvt::importDocument(store, written("a.xml", text));
    EXPECT_TRUE(read);
    EXPECT_THAT(read.reports, IsEmpty());
    EXPECT_EQ(qvt::find(store, "g")["x"].value<double>(), 1.5);
    EXPECT_EQ(qvt::exportText(store), text);
    EXPECT_TRUE(qvt::exportDocument(store, path("b.xml")));
    EXPECT_EQ(contents(path("b.xml")), text);
}

TEST_F(HostDocument, ReportHasPlaceElementAndWords) {
    const std::string file =
        written("a.xml", "<root name='r'>\n  <vec3 name='v'/>\n  <group name='g'/></root>");
    const auto read = qvt::importDocument(store, file);
    EXPECT_TRUE(read);
    ASSERT_THAT(read.reports, SizeIs(1));
    EXPECT_EQ(read.reports[0].line, 2u);
    EXPECT_EQ(read.reports[0].column, 3u);
    EXPECT_EQ(read.reports[0].element, "vec3");
    EXPECT_EQ(read.reports[0].words, "unknown element, skipping");
    EXPECT_EQ(read.reports[0].text(), file + ":2:3: error: vec3 : unknown element, skipping");
    EXPECT_TRUE(qvt::find(store, "g"));
}

TEST_F(HostDocument, EndOfABrokenDocumentIsTold) {
    const auto read = qvt::importText(store, "<root name='r'>\n<group name='g'></root>");
    ASSERT_FALSE(read);
    EXPECT_EQ(read.end->text(), "<document>:2:19: error: mismatched tag");
    EXPECT_FALSE(read.cancelled);
}

TEST_F(HostDocument, FileThatIsNotThereIsTold) {
    const auto read = qvt::importDocument(store, path("none.xml"));
    ASSERT_FALSE(read);
    EXPECT_EQ(read.end->text(), path("none.xml") + ": error: No such file or directory");
}

TEST_F(HostDocument, GoesIntoAContainer) {
    const qvt::Container hall = qvt::top(store, "hall");
    EXPECT_TRUE(qvt::importText(hall, "<group name='other'><int32 name='n'>3</int32></group>"));
    EXPECT_EQ(hall.name(), "hall");
    EXPECT_EQ(hall["n"].value<int>(), 3);
    EXPECT_TRUE(
        qvt::importDocument(hall, written("b.xml", "<group name='o'><int32 name='m'>4</int32></group>")));
    EXPECT_EQ(hall["m"].value<int>(), 4);
    EXPECT_FALSE(qvt::importText(qvt::Container(), "<group name='g'/>"));
}

TEST_F(HostDocument, ClassesAreLookedUpWhereTheOptionsSay) {
    qvt::MemoryStore library;
    ASSERT_TRUE(
        qvt::importText(library, "<root name='l'><table name='T'><int32 name='n'>1</int32></table></root>"));
    const qvt::Classes classes(library);
    const std::string text = "<root name='r'><group name='g' class='T'/></root>";
    EXPECT_TRUE(qvt::importText(store, text, {.classes = &classes}));
    EXPECT_EQ(qvt::find(store, "g")["n"].value<int>(), 1);
}

TEST_F(HostDocument, ProgressEndsAtTheWhole) {
    const std::string text = "<root name='r'/>";
    std::uint64_t done = 0, whole = 0;
    const auto note = [&](std::uint64_t now, std::uint64_t all) { done = now, whole = all; };
    EXPECT_TRUE(qvt::importDocument(store, written("a.xml", text), {.progress = note}));
    EXPECT_EQ(done, text.size());
    EXPECT_EQ(whole, text.size());
    EXPECT_TRUE(qvt::exportDocument(store, path("b.xml"), {.progress = note}));
    EXPECT_EQ(done, contents(path("b.xml")).size());
}

TEST_F(HostDocument, StopTokenEndsReading) {
    std::stop_source source;
    source.request_stop();
    const auto read = qvt::importText(store, "<root name='r'/>", {.stop = source.get_token()});
    EXPECT_FALSE(read);
    EXPECT_TRUE(read.cancelled);
    EXPECT_EQ(read.end->words, "cancelled");
}

TEST_F(HostDocument, StoppedWritingLeavesTheOldFile) {
    const std::string file = written("a.xml", "old");
    qvt::top(store, "g");
    std::stop_source source;
    source.request_stop();
    const auto result = qvt::exportDocument(store, file, {.stop = source.get_token()});
    EXPECT_FALSE(result);
    EXPECT_TRUE(result.cancelled);
    EXPECT_EQ(contents(file), "old");
}

TEST_F(HostDocument, FailureToWriteIsTold) {
    qvt::top(store, "g");
    const auto result = qvt::exportDocument(store, path("no/such/folder.xml"));
    EXPECT_FALSE(result);
    EXPECT_EQ(result.error, "No such file or directory");
}

}  // namespace
