#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "support/FaultyVfs.h"
#include "support/Torture.h"
#include "unit/filestore/Backends.h"

namespace norvane::platform::core::storage::datastore {
namespace {

using Code = StoreError::Code;
using test::FaultyVfs;
using Fault = FaultyVfs::Fault;

struct Case {
    const char* name;
    Fault fault;
    bool forGood;

    friend std::ostream& operator<<(std::ostream& out, const Case& chosen) { return out << chosen.name; }
};

class FaultsTest : public testing::TestWithParam<Case> {
  protected:
    FaultsTest() : vfs_(FaultyVfs::install()) {
        options_.walLimit = 40000;
        options_.partSize = 8192;
        const auto writer = openWriter(folder_ / "prepared.qvt", options_);
        Batch batch;
        for (std::uint32_t offset = 0; offset < 60; ++offset)
            batch[offset] = std::to_string(offset) + std::string(300, 'p');
        batch[7] = std::string(30000, 'q');
        commit(*writer, prepared_, batch);
    }
    ~FaultsTest() override { vfs_.heal(); }

    void prepare(const std::string& name) {
        std::filesystem::copy_file(folder_ / "prepared.qvt", folder_ / name,
                                   std::filesystem::copy_options::overwrite_existing);
    }

    // Calls the step with ever later calls failing, until it gets through without one. In the short form the
    // calls are shared out among the kinds of failures.
    template <class Step>
    void forEveryCall(Step&& step) {
        const auto each = static_cast<std::uint64_t>(test::rounds(3, 1));
        for (std::uint64_t call = 1 + static_cast<std::uint64_t>(GetParam().fault) % each;; call += each) {
            ASSERT_LT(call, 3000u);
            SCOPED_TRACE(call);
            if (!step(call) || HasFatalFailure()) break;
        }
    }
    void arm(std::uint64_t call) { vfs_.failAt(call, GetParam().fault, GetParam().forGood); }

    // Only what a failing disk can be called.
    static bool isNamed(std::optional<Code> code) {
        return !code || *code == Code::diskFull || *code == Code::notWritable || *code == Code::notReadable ||
               *code == Code::damaged;
    }

    const Folder folder_;
    FaultyVfs& vfs_;
    FileDataStore::Options options_;
    Revision prepared_;
    const Batch first_{{3, "three"}, {60, std::string(9000, 'r')}, {7, std::nullopt}};
    const Batch second_{{3, std::nullopt}, {8, std::string(50000, 's')}, {61, ""}};
};

TEST_P(FaultsTest, ACommitThatFailsHasChangedNothingAndSucceedsWhenItIsTriedAgain) {
    forEveryCall([&](std::uint64_t call) {
        prepare("model.qvt");
        Revision revision = prepared_;
        const auto writer = openWriter(folder_ / "model.qvt", options_);
        commit(*writer, revision, first_);
        const Revision before = revision;

        arm(call);
        const auto code = codeOfFailure([&] { commit(*writer, revision, second_); });
        const bool hasFailed = vfs_.heal();

        EXPECT_TRUE(isNamed(code));
        if (code) {
            EXPECT_EQ(revisionOf(*writer), before);
            EXPECT_EQ(revisionOf(*openReader(folder_ / "model.qvt")), before);
            commit(*writer, revision, second_);
        }
        EXPECT_EQ(revisionOf(*writer), revision);
        commit(*writer, revision, {{62, "and on"}});
        writer->close();
        EXPECT_EQ(revisionOf(*openReader(folder_ / "model.qvt")), revision);
        EXPECT_TRUE(StoreFile::check(folder_ / "model.qvt").empty());
        return hasFailed;
    });
}

// On a disk that does not even take the attempt back, it may have come through.
TEST_P(FaultsTest, AWriterThatEndsAfterAFailedCommitLeavesWhatWasCommitted) {
    forEveryCall([&](std::uint64_t call) {
        prepare("model.qvt");
        Revision revision = prepared_;
        auto writer = openWriter(folder_ / "model.qvt", options_);
        commit(*writer, revision, first_);

        arm(call);
        codeOfFailure([&] { commit(*writer, revision, second_); });
        writer.reset();
        const bool hasFailed = vfs_.heal();

        const Revision left = revisionOf(*openWriter(folder_ / "model.qvt"));
        if (!GetParam().forGood || left.meta.revision == revision.meta.revision)
            EXPECT_EQ(left, revision);
        else
            EXPECT_EQ(left, revision.with(second_));
        return hasFailed;
    });
}

TEST_P(FaultsTest, OpeningAndClosingChangeNothing) {
    Revision revision = prepared_;
    const auto writer = openWriter(folder_ / "prepared.qvt");
    commit(*writer, revision, first_);
    forEveryCall([&](std::uint64_t call) {
        prepare("model.qvt");
        std::filesystem::copy_file(folder_ / "prepared.qvt-wal", folder_ / "model.qvt-wal",
                                   std::filesystem::copy_options::overwrite_existing);

        arm(call);
        const auto code = codeOfFailure([&] { openWriter(folder_ / "model.qvt")->close(); });
        const bool hasFailed = vfs_.heal();

        EXPECT_TRUE(isNamed(code));
        EXPECT_EQ(revisionOf(*openWriter(folder_ / "model.qvt")), revision);
        return hasFailed;
    });
}

TEST_P(FaultsTest, ReadingSaysWhatIsThereOrFails) {
    prepare("model.qvt");
    forEveryCall([&](std::uint64_t call) {
        arm(call);
        const auto code = codeOfFailure([&] {
            const auto reader = openReader(folder_ / "model.qvt");
            EXPECT_EQ(revisionOf(*reader), prepared_);
            reader->refresh();
        });
        const bool hasFailed = vfs_.heal();

        EXPECT_TRUE(isNamed(code));
        EXPECT_EQ(revisionOf(*openReader(folder_ / "model.qvt")), prepared_);
        return hasFailed;
    });
}

TEST_P(FaultsTest, ARefreshThatFailsMixesNoRevisions) {
    prepare("model.qvt");
    Revision revision = prepared_;
    const auto writer = openWriter(folder_ / "model.qvt", options_);
    forEveryCall([&](std::uint64_t call) {
        const auto reader = openReader(folder_ / "model.qvt");
        const Revision before = revision;
        commit(*writer, revision, {{1, "call " + std::to_string(call)}});

        arm(call);
        bool isAnother = false;
        const auto code = codeOfFailure([&] { isAnother = reader->refresh(); });
        const bool hasFailed = vfs_.heal();

        EXPECT_TRUE(isNamed(code));
        EXPECT_EQ(isAnother, !code);
        EXPECT_EQ(reader->meta(), code ? before.meta : revision.meta);
        if (code) {
            EXPECT_EQ(codeOfFailure([&] { loaded(*reader, 1); }), Code::notReadable);
            EXPECT_TRUE(reader->refresh());
        }
        EXPECT_EQ(revisionOf(*reader), revision);
        return hasFailed;
    });
}

TEST_P(FaultsTest, AFileComesIntoBeingWholeOrNotAtAll) {
    forEveryCall([&](std::uint64_t call) {
        Folder empty;
        arm(call);
        const auto code = codeOfFailure([&] { openWriter(empty / "model.qvt"); });
        const bool hasFailed = vfs_.heal();

        EXPECT_TRUE(isNamed(code));
        if (std::filesystem::exists(empty / "model.qvt")) {
            EXPECT_EQ(revisionOf(*openWriter(empty / "model.qvt")), Revision());
        } else {
            EXPECT_TRUE(std::filesystem::is_empty(empty.path()));
        }
        return hasFailed;
    });
}

TEST_P(FaultsTest, CompactingThatFailsChangesNothing) {
    forEveryCall([&](std::uint64_t call) {
        prepare("model.qvt");
        Revision revision = prepared_;
        const auto writer = openWriter(folder_ / "model.qvt", options_);
        commit(*writer, revision, first_);

        arm(call);
        const auto code = codeOfFailure([&] { writer->compact(); });
        const bool hasFailed = vfs_.heal();

        EXPECT_TRUE(isNamed(code));
        EXPECT_EQ(revisionOf(*writer), revision);
        commit(*writer, revision, second_);
        writer->close();
        EXPECT_EQ(revisionOf(*openReader(folder_ / "model.qvt")), revision);
        return hasFailed;
    });
}

INSTANTIATE_TEST_SUITE_P(EachCall, FaultsTest,
                         testing::Values(Case{"InputOutput", Fault::inputOutput, false},
                                         Case{"InputOutputForGood", Fault::inputOutput, true},
                                         Case{"NoSpace", Fault::noSpace, false},
                                         Case{"NoSpaceForGood", Fault::noSpace, true},
                                         Case{"Interrupted", Fault::interrupted, false},
                                         Case{"ShortWrite", Fault::shortWrite, false}),
                         [](const auto& chosen) { return chosen.param.name; });

}  // namespace
}  // namespace norvane::platform::core::storage::datastore
