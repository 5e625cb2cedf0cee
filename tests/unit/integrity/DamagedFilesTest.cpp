// Files damaged at random: whatever is sound comes back, and what is made of it is sound.
#include "support/Torture.h"
#include "unit/integrity/Files.h"
#include "unit/integrity/Random.h"

namespace norvane::platform::test {
namespace {

using data::integrity::checkFile;
using data::integrity::repair;
using data::integrity::RepairOptions;
using ::testing::IsEmpty;

constexpr std::size_t kPage = 4096;

// How many files are damaged.
std::uint32_t runs() { return static_cast<std::uint32_t>(rounds(100, 2000)); }

// A value that is found again in the file.
std::string token(Random& random) {
    std::string bytes(24, '\0');
    for (char& each : bytes) each = static_cast<char>(random.below(256));
    return bytes;
}

// A model of some hundred pages in a file, and in which page each of its small values lies.
struct Original {
    Original() {
        Random random(1);
        ModelBuilder build(store);
        store.setVersion(1);
        std::vector<Offset> sets{build.root()};
        for (int i = 0; i < 1500; ++i) {
            const std::u16string name = randomName(random, i);
            const Offset parent = random.of(sets);
            if (random.chance(12)) {
                sets.push_back(random.chance(50) ? build.container(parent, name) : build.table(parent, name));
                if (random.chance(50)) build.localise(sets.back(), u"de", u"Ding");
            } else if (random.chance(3)) {
                build.values<std::uint8_t>(parent, name, data::metadata::kUint8,
                                           std::vector<std::uint8_t>(random.below(30000), 7));
            } else {
                const std::string bytes = token(random);
                const std::vector<char> value(bytes.begin(), bytes.end());
                tokens[build.values<char>(parent, name, data::metadata::kUint8, value)] = bytes;
            }
        }
        writeFile(folder / "model.qvt", store);
        content = contentOf(folder / "model.qvt");
        for (const auto& [offset, bytes] : tokens) pages[offset] = content.find(bytes) / kPage;
        records = contentsOf(store);
    }

    Folder folder;
    MemoryDataStore store;
    std::string content;
    std::map<Offset, std::string> tokens;
    std::map<Offset, std::size_t> pages;
    Records records;
};

const Original& original() {
    static const Original model;
    return model;
}

// What was done to a file.
struct Damage {
    std::string content = original().content;
    std::set<std::size_t> pages;  // that are not as they were

    void flipBits(Random& random) {
        for (std::uint32_t count = 1 + random.below(20); count > 0; --count)
            change(random.below(content.size()), static_cast<char>(1 << random.below(8)));
    }
    void overrun(Random& random) {
        const std::size_t begin = random.below(content.size());
        const std::size_t end = std::min(content.size(), begin + 1 + random.below(3 * kPage));
        for (std::size_t at = begin; at < end; ++at) change(at, static_cast<char>(1 + random.below(255)));
    }
    void spoilHeader(Random& random) {
        for (int i = 0; i < 4; ++i) change(random.below(100), static_cast<char>(1 + random.below(255)));
    }
    void spoilPageHeader(Random& random) {
        const std::size_t page = random.below(content.size() / kPage);
        for (std::size_t at = 0; at < 12; ++at)
            change(page * kPage + at, static_cast<char>(random.below(256)));
    }
    void swapPages(Random& random) {
        const std::size_t a = random.below(content.size() / kPage), b = random.below(content.size() / kPage);
        const std::string kept = content.substr(a * kPage, kPage);
        content.replace(a * kPage, kPage, content, b * kPage, kPage);
        content.replace(b * kPage, kPage, kept);
    }
    void blankPage(Random& random) {
        const std::size_t page = random.below(content.size() / kPage);
        content.replace(page * kPage, kPage, kPage, '\0');
        pages.insert(page);
    }
    void truncate(Random& random) {
        const std::size_t end = random.below(content.size());
        for (std::size_t page = end / kPage; page <= original().content.size() / kPage; ++page)
            pages.insert(page);
        content.resize(end);
    }

  private:
    void change(std::size_t at, char bits) {
        if (bits == 0) return;
        content[at] = static_cast<char>(content[at] ^ bits);
        pages.insert(at / kPage);
    }
};

Damage damageOf(std::uint32_t seed) {
    Random random(seed);
    Damage damage;
    switch (seed % 7) {
        case 0:
            damage.flipBits(random);
            break;
        case 1:
            damage.overrun(random);
            break;
        case 2:
            damage.spoilHeader(random);
            break;
        case 3:
            damage.spoilPageHeader(random);
            break;
        case 4:
            damage.swapPages(random);
            break;
        case 5:
            damage.blankPage(random);
            break;
        default:
            damage.truncate(random);
    }
    return damage;
}

std::vector<std::string> errorsIn(const std::string& path) {
    std::vector<std::string> words = wordsOf(checkFile(path).findings);
    std::erase_if(words, [](const std::string& each) { return each.rfind("error", 0) != 0; });
    return words;
}

std::string valueOf(const std::string& record) {
    const RecordBytes bytes(record);
    const auto value = bytes.view().section(data::Record::field::valueSize);
    return std::string(reinterpret_cast<const char*>(value.begin), value.size);
}

// Records that lie in pages that are as they were, wherever those are now.
std::vector<Offset> recordsOfSoundPages(const Damage& damage) {
    std::vector<Offset> offsets;
    for (const auto& [offset, page] : original().pages)
        if (damage.pages.count(page) == 0) offsets.push_back(offset);
    return offsets;
}

// Whole entities in a repaired file that no root is above.
std::size_t leftOut(const std::string& path) {
    std::size_t count = 0;
    FileDataStore store(path);
    for (const Finding& each : data::integrity::check(store).findings)
        count += each.code == "unreachable" && recordAt(store, each.offset).view().isWholeChild();
    return count;
}

class DamagedFiles : public ::testing::TestWithParam<std::uint32_t> {
  protected:
    // Each of ten cases takes its share of the files.
    template <class Run>
    void forEachFile(Run run) {
        for (std::uint32_t seed = GetParam(); seed < runs() && !HasFatalFailure(); seed += 10) {
            SCOPED_TRACE("file " + std::to_string(seed));
            const Folder folder;
            const Damage damage = damageOf(seed);
            setContent(folder / "in", damage.content);
            run(folder / "in", folder / "out", damage);
        }
    }

    static RepairOptions options(bool salvage) {
        RepairOptions options;
        options.salvage = salvage;
        options.recovered = "recovered";
        return options;
    }
};

TEST_P(DamagedFiles, AreNamedOrReadAsTheyWere) {
    forEachFile([](const std::string& in, const std::string&, const Damage& damage) {
        const Report found = checkFile(in);
        ASSERT_EQ(contentOf(in), damage.content);
        if (!found.isSound()) return;
        ASSERT_EQ(recordsIn(in), original().records);
    });
}

// A file is damaged beyond what its order leads to only if it says so.
TEST_P(DamagedFiles, ComeBackAsFarAsTheirOrderLeads) {
    forEachFile([](const std::string& in, const std::string& out, const Damage&) {
        Records sound;
        const std::string refusal = refusalOf([&] { sound = recordsIn(in); });
        ASSERT_EQ(refusalOf([&] { repair(in, out, options(false)); }), sound.empty() ? "damaged" : "none")
            << refusal;
        if (sound.empty()) return;
        ASSERT_THAT(errorsIn(out), IsEmpty());
        const Records saved = recordsIn(out);
        for (const auto& [offset, bytes] : sound) {
            ASSERT_EQ(bytes, original().records.at(offset)) << "record " << offset;
            ASSERT_EQ(saved.count(offset), 1u) << "record " << offset;
            if (original().tokens.count(offset) != 0) {
                ASSERT_EQ(valueOf(saved.at(offset)), valueOf(bytes));
            }
        }
        ASSERT_EQ(leftOut(out), 0u);
    });
}

TEST_P(DamagedFiles, GiveAllOfTheirSoundPagesToSalvage) {
    forEachFile([](const std::string& in, const std::string& out, const Damage& damage) {
        const std::string refusal = refusalOf([&] { repair(in, out, options(true)); });
        if (refusal != "none") {
            ASSERT_EQ(refusal, "damaged");
            ASSERT_THAT(recordsOfSoundPages(damage), IsEmpty());
            return;
        }
        ASSERT_THAT(errorsIn(out), IsEmpty());
        const Records saved = recordsIn(out);
        for (const Offset offset : recordsOfSoundPages(damage)) {
            ASSERT_EQ(saved.count(offset), 1u) << "record " << offset;
            ASSERT_EQ(valueOf(saved.at(offset)), original().tokens.at(offset)) << "record " << offset;
        }
        ASSERT_EQ(leftOut(out), 0u);
    });
}

INSTANTIATE_TEST_SUITE_P(EachTenth, DamagedFiles, ::testing::Range(0u, 10u));

}  // namespace
}  // namespace norvane::platform::test
