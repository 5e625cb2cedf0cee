// Files: what is said of them, and what is made of them.
#include "unit/integrity/Files.h"

namespace norvane::platform::test {
namespace {

using data::integrity::checkFile;
using data::integrity::repair;
using data::integrity::RepairOptions;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

// The small store in a file, and where it is repaired to.
class Repair : public SmallStore {
  protected:
    ~Repair() noexcept override = default;

    void save() { writeFile(in, store); }
    void damage(const std::string& bytes) {
        std::string content = contentOf(in);
        const std::size_t at = content.find(bytes);
        ASSERT_NE(at, content.npos);
        content[at] = static_cast<char>(content[at] ^ 0x40);
        setContent(in, content);
    }
    std::vector<std::string> repaired(const RepairOptions& options = {}) {
        report = repair(in, out, options);
        EXPECT_THAT(errorsIn(out), IsEmpty());
        return wordsOf(report.findings);
    }
    static std::vector<std::string> errorsIn(const std::string& path) {
        std::vector<std::string> words = wordsOf(checkFile(path).findings);
        std::erase_if(words, [](const std::string& each) { return each.rfind("error", 0) != 0; });
        return words;
    }

    Folder folder;
    std::string in = folder / "in.qvt", out = folder / "out.qvt";
    Report report;
};

TEST_F(Repair, CheckSaysNothingOfASoundFile) {
    save();
    const Report found = checkFile(in);
    EXPECT_THAT(wordsOf(found.findings), IsEmpty());
    EXPECT_EQ(found.recordCount, 8u);
    EXPECT_THAT(filesIn(folder), ElementsAre("in.qvt"));
}

TEST_F(Repair, CheckNamesARecordOfAnotherSumOnce) {
    save();
    damage(recordAt(store, kP).part(0, 18));
    EXPECT_THAT(wordsOf(checkFile(in).findings), ElementsAre("error child-kind 2 g", "error record 4"));
}

TEST_F(Repair, CheckNamesWhatIsWrongInSoundBytes) {
    set(kP, 1, u32(kT));
    save();
    EXPECT_THAT(wordsOf(checkFile(in).findings), ElementsAre("error parent 4 g.p"));
}

TEST_F(Repair, CheckNamesAFileThatIsNoStore) {
    setContent(in, "no store at all");
    EXPECT_THAT(wordsOf(checkFile(in).findings), Contains("error identity"));
}

TEST_F(Repair, CheckRefusesOnlyWhatIsNotThere) {
    EXPECT_EQ(refusalOf([&] { checkFile(in); }), "notFound");
}

TEST_F(Repair, GivesTheSameOfASoundFile) {
    save();
    EXPECT_THAT(repaired(), IsEmpty());
    EXPECT_EQ(recordsIn(out), contentsOf(store));
    EXPECT_EQ(report.recordCount, 8u);
    EXPECT_EQ(FileDataStore(out).version(), 1u);
    EXPECT_EQ(FileDataStore(out).size(), store.size());
    EXPECT_THAT(filesIn(folder), UnorderedElementsAre("in.qvt", "out.qvt"));
}

TEST_F(Repair, GivesTheSameBySalvage) {
    save();
    RepairOptions options;
    options.salvage = true;
    EXPECT_THAT(repaired(options), IsEmpty());
    EXPECT_EQ(recordsIn(out), contentsOf(store));
}

TEST_F(Repair, MakesAnEmptyStoreOfAnEmptyOne) {
    MemoryDataStore empty;
    writeFile(in, empty);
    EXPECT_THAT(repaired(), IsEmpty());
    EXPECT_EQ(FileDataStore(out).size(), 0u);
}

TEST_F(Repair, KeepsTheVersion) {
    store.setVersion(7);
    save();
    repaired();
    EXPECT_EQ(FileDataStore(out).version(), 7u);
}

TEST_F(Repair, KeepsTheOffsetsOfRemovedRecordsUnused) {
    store.remove(add(u8(3)));
    save();
    repaired();
    FileDataStore made(out);
    EXPECT_EQ(appendTo(made, listOf({})), 9u);
}

TEST_F(Repair, TellsWhatTheFileHasLost) {
    save();
    damage(recordAt(store, kP).part(0, 18));

    EXPECT_THAT(repaired(), ElementsAre("error child-dangling 2 g", "error record 4"));

    EXPECT_THAT(report.findings[1].text, HasSubstr("left out"));
    Records expected = contentsOf(store);
    expected.erase(kP);
    expected[kOfG] = listOf({kT}).bytes();
    EXPECT_EQ(recordsIn(out), expected);
}

TEST_F(Repair, MakesALostRootAnewWithAllThatStoodBelowIt) {
    add(primitiveRecord(none(), 12, u"loose"));
    save();
    damage(recordAt(store, kRoot).bytes());

    EXPECT_THAT(repaired(), ElementsAre("error root-missing 0", "error record 0", "note relisted 0"));

    EXPECT_EQ(namesIn(out), "root(g(p t))");
}

TEST_F(Repair, PutsWhatNothingLeadsToBelowAGroup) {
    add(primitiveRecord(none(), 12, u"loose"));
    save();
    RepairOptions options;
    options.recovered = "found \xC3\xA9";

    EXPECT_THAT(repaired(options), ElementsAre("note recovered 8 found \xC3\xA9.loose"));

    EXPECT_EQ(namesIn(out), "m(g(p t) found \xC3\xA9(loose))");
}

TEST_F(Repair, NeverWritesOverAFile) {
    save();
    setContent(out, "mine");
    EXPECT_EQ(refusalOf([&] { repair(in, out, {}); }), "exists");
    EXPECT_EQ(refusalOf([&] { repair(in, in, {}); }), "exists");
    EXPECT_EQ(contentOf(out), "mine");
    EXPECT_THAT(filesIn(folder), UnorderedElementsAre("in.qvt", "out.qvt"));
}

TEST_F(Repair, LeavesNothingWhereItFails) {
    EXPECT_EQ(refusalOf([&] { repair(in, out, {}); }), "notFound");
    setContent(in, std::string(100000, 'x'));
    EXPECT_EQ(refusalOf([&] { repair(in, out, {}); }), "damaged");
    EXPECT_EQ(refusalOf([&] { repair(in, folder / "none" + "/out.qvt", {}); }), "notWritable");
    EXPECT_THAT(filesIn(folder), ElementsAre("in.qvt"));
}

TEST_F(Repair, LeavesTheDamagedFileAsItIs) {
    set(kP, 1, u32(kT));
    save();
    damage(recordAt(store, kT).part(0, 18));
    const std::string before = contentOf(in);
    repaired();
    EXPECT_EQ(contentOf(in), before);
    EXPECT_THAT(filesIn(folder), UnorderedElementsAre("in.qvt", "out.qvt"));
}

TEST_F(Repair, SavesAPageThatStandsInPlaceOfTheFirst) {
    for (int i = 0; i < 2000; ++i) add(primitiveRecord(none(), 12, u"p"));
    const std::uint32_t last = add(primitiveRecord(none(), 12, u"the very last"));
    save();
    std::string content = contentOf(in);
    const std::size_t page = content.find(recordAt(store, last).bytes()) / 4096 * 4096;
    std::swap_ranges(content.begin(), content.begin() + 4096,
                     content.begin() + static_cast<std::ptrdiff_t>(page));
    setContent(in, content);
    RepairOptions options;
    options.salvage = true;

    repaired(options);

    EXPECT_EQ(recordsIn(out), contentsOf(store));
}

TEST_F(Repair, SavesWhatIsLeftOfAFileCutInTheMiddle) {
    for (int i = 0; i < 2000; ++i)
        addTo(kTop, add(primitiveRecord(kRoot, 12, u"p" + std::u16string(1, char16_t(0x400 + i)))));
    save();
    const std::string whole = contentOf(in);
    setContent(in, whole.substr(0, whole.size() / 2));
    const std::size_t left = recordsIn(in, StoreFile::Search::byPage).size();
    RepairOptions options;
    options.salvage = true;
    options.recovered = "recovered";

    repaired(options);

    EXPECT_GT(left, 500u);
    EXPECT_GE(report.recordCount, left);
    EXPECT_FALSE(report.isSound());
}

}  // namespace
}  // namespace norvane::platform::test
