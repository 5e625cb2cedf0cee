// What reaches the backend, and when.
#include "Common.h"

namespace norvane::platform::test {
namespace {

using OverlayCommitTest = OverlayTest;
using Code = StoreError::Code;

TEST_F(OverlayCommitTest, CommitHandsDownWhatChangedAndNothingElse) {
    for (const char* each : {"zero", "one", "two", "three"}) append(each);
    overlay.commit();

    write(2, "changed");
    store.remove(1);
    append("four");
    overlay.commit();

    EXPECT_EQ(backend.lastChanged(), (std::set<std::uint32_t>{1, 2, 4}));
    EXPECT_EQ(backend.records(),
              (MemoryBackend::Records{{0, "zero"}, {2, "changed"}, {3, "three"}, {4, "four"}}));
    EXPECT_EQ(backend.meta().next, 5u);
    EXPECT_EQ(backend.meta().recordCount, 4u);
    EXPECT_EQ(overlay.revision(), 2u);
}

TEST_F(OverlayCommitTest, NothingIsCommittedWhereNothingChanged) {
    append("record");
    overlay.commit();

    overlay.commit();
    store.flush();

    EXPECT_EQ(backend.commits(), 1u);
}

TEST_F(OverlayCommitTest, OffsetThatWasGivenOutIsKeptByACommit) {
    store.remove(append("gone at once"));
    EXPECT_TRUE(overlay.hasChanges());

    overlay.commit();

    EXPECT_EQ(backend.meta().next, 1u);
    OverlayStore reopened(backend);
    EXPECT_EQ(reopened.append("x", 1), 1u);
}

TEST_F(OverlayCommitTest, VersionIsCommitted) {
    store.setVersion(7);
    overlay.commit();

    OverlayStore reopened(backend);
    EXPECT_EQ(reopened.version(), 7u);
}

TEST_F(OverlayCommitTest, OpenCountIsNoChangeAndNeverReachesTheBackend) {
    const std::uint32_t record = append(entity(0));
    overlay.commit();

    write(record, entity(3), false);
    EXPECT_FALSE(overlay.hasChanges());
    patch(record, 13, "!");
    overlay.commit();

    EXPECT_EQ(backend.records().at(record), entity(0, "loca!e,flags"));
    EXPECT_EQ(bytes(record), entity(3, "loca!e,flags"));
}

TEST_F(OverlayCommitTest, OpenCountWithTheFlagIsNotStoredEither) {
    const std::uint32_t record = append(entity(5));

    overlay.commit();

    EXPECT_EQ(backend.records().at(record), entity(0));
    EXPECT_EQ(bytes(record), entity(5));
}

TEST_F(OverlayCommitTest, OnlyEntitiesHaveOpenCounts) {
    const std::string list(
        "\x03"
        "0123456789",
        11);
    const std::uint32_t record = append(list);
    overlay.commit();

    write(record,
          std::string("\x03"
                      "0123abcd89",
                      11),
          false);

    EXPECT_TRUE(overlay.hasChanges());
    overlay.commit();
    EXPECT_EQ(backend.records().at(record), std::string("\x03"
                                                        "0123abcd89",
                                                        11));
}

TEST_F(OverlayCommitTest, WriteWithoutTheFlagThatChangesMoreIsCommitted) {
    const std::uint32_t record = append(entity(0, "before"));
    overlay.commit();

    write(record, entity(0, "behind"), false);

    EXPECT_TRUE(overlay.hasChanges());
    overlay.commit();
    EXPECT_EQ(backend.records().at(record), entity(0, "behind"));
}

TEST_F(OverlayCommitTest, CountThatWasLeftInTheBackendIsNobodys) {
    backend.put(0, entity(4));
    backend.refresh();
    OverlayStore reopened(backend);

    EXPECT_EQ(bytesOf(reopened, 0), entity(0));
}

TEST_F(OverlayCommitTest, FailedCommitCanBeTriedAgain) {
    const std::uint32_t record = append("record");
    backend.failAll();
    EXPECT_EQ(codeOf([&] { overlay.commit(); }), Code::diskFull);
    EXPECT_EQ(codeOf([&] { store.flush(); }), Code::diskFull);
    EXPECT_TRUE(overlay.hasChanges());
    extend(record, "s");

    backend.calm();
    overlay.commit();

    EXPECT_EQ(backend.records(), (MemoryBackend::Records{{0, "records"}}));
}

TEST_F(OverlayCommitTest, FlushTellsTheFirstFailureAgain) {
    append("committed");
    overlay.commit();
    write(0, "half done");
    char byte = 0;
    EXPECT_THROW(store.read(99, &byte, kWholeRecord), std::out_of_range);
    EXPECT_THROW(store.extend(98, "x", 1), std::out_of_range);

    EXPECT_THROW(store.flush(), std::out_of_range);
    EXPECT_THROW(overlay.commit(), std::out_of_range);
    EXPECT_THROW(overlay.close(), std::out_of_range);
    EXPECT_EQ(backend.commits(), 1u);

    overlay.rollback();
    EXPECT_EQ(bytes(0), "committed");
    write(0, "whole");
    store.flush();
    EXPECT_EQ(backend.records().at(0), "whole");
}

TEST_F(OverlayCommitTest, FailureOfAnOperationThatWasUndoneIsOver) {
    append("record");
    try {
        const Held guard(store);
        write(0, "half done");
        store.extend(99, "x", 1);
    } catch (const std::out_of_range&) {
    }

    overlay.commit();

    EXPECT_EQ(backend.records().at(0), "record");
}

// Somebody has passed over the exception, and what it left half done is still there.
TEST_F(OverlayCommitTest, FailureThatWasSwallowedUnderTheGuardIsKept) {
    append("record");
    {
        const Held guard(store);
        write(0, "half done");
        try {
            store.extend(99, "x", 1);
        } catch (const std::out_of_range&) {
        }
    }

    EXPECT_THROW(store.flush(), std::out_of_range);
}

TEST_F(OverlayCommitTest, RollbackBringsBackTheLastCommit) {
    for (const char* each : {"written", "extended", "removed"}) append(each);
    store.setVersion(1);
    overlay.commit();
    write(0, "other");
    extend(1, "!");
    store.remove(2);
    append("new");
    store.remove(append("new and gone"));
    store.setVersion(2);

    overlay.rollback();

    EXPECT_EQ(bytes(0), "written");
    EXPECT_EQ(bytes(1), "extended");
    EXPECT_EQ(bytes(2), "removed");
    EXPECT_EQ(store.size(), 3u);
    EXPECT_EQ(store.version(), 1u);
    EXPECT_EQ(overlay.recordCount(), 3u);
    EXPECT_FALSE(overlay.hasChanges());
    EXPECT_EQ(append("next"), 3u);
}

TEST_F(OverlayCommitTest, RollbackOfTheFirstModelLeavesAnEmptyStore) {
    append("root");
    store.remove(append("gone"));
    append("more");

    overlay.rollback();

    EXPECT_EQ(store.size(), 0u);
    EXPECT_EQ(append("root"), 0u);
}

TEST_F(OverlayCommitTest, RollbackKeepsOpenCountsAndReadsOpenEntitiesAtOnce) {
    append(entity(0));
    write(0, entity(2), false);
    overlay.commit();
    write(0, entity(2, "changed while open"));

    overlay.rollback();
    backend.failAll();

    EXPECT_EQ(bytes(0), entity(2));
    write(0, entity(1), false);
    EXPECT_EQ(bytes(0), entity(1));
}

TEST_F(OverlayCommitTest, RollbackForgetsHandlesMadeSinceTheCommit) {
    append(entity(0));
    append(entity(0));
    write(0, entity(1), false);
    overlay.commit();
    write(0, entity(3), false);
    write(1, entity(1), false);
    overlay.rollback();
    EXPECT_EQ(bytes(0), entity(1));
    EXPECT_EQ(bytes(1), entity(0));

    // Dropping one of those does no harm.
    write(1, entity(0xFFFFFFFFu), false);

    EXPECT_EQ(bytes(1), entity(0));
}

TEST_F(OverlayCommitTest, RollbackCountsNoHandleThatWasClosed) {
    append(entity(0));
    write(0, entity(2), false);
    overlay.commit();
    write(0, entity(1), false);

    overlay.rollback();

    EXPECT_EQ(bytes(0), entity(1));
}

TEST_F(OverlayCommitTest, HandlesFromBeforeATransactionAreStillCountedAfterIt) {
    append(entity(0));
    overlay.commit();
    write(0, entity(1), false);
    overlay.beginTransaction();
    write(0, entity(2), false);

    overlay.rollback();
    overlay.endTransaction();

    EXPECT_EQ(bytes(0), entity(1));
}

TEST_F(OverlayCommitTest, RollbackTakesNewEntitiesAwayEvenIfTheyAreOpen) {
    append(entity(0));
    write(0, entity(1), false);
    failUnderGuard(store, [&] { write(append(entity(0)), entity(1), false); });

    overlay.rollback();

    EXPECT_EQ(store.size(), 0u);
    EXPECT_FALSE(overlay.hasChanges());
    EXPECT_EQ(append("root"), 0u);
}

TEST_F(OverlayCommitTest, RollbackReadsWhatBelongsToOpenEntities) {
    const std::string names("\x05names", 6);
    const std::string other("\x05other", 6);
    const std::string locale("\x01\0\0\0", 4);
    append(entity(0, locale + "flags"));
    append(names);
    overlay.commit();
    write(0, entity(1, locale + "flags"), false);
    write(1, other);

    overlay.rollback();
    backend.failAll();

    EXPECT_EQ(bytes(1), names);
}

TEST_F(OverlayCommitTest, RollbackThatCannotReadChangesNothing) {
    append(entity(0));
    write(0, entity(1), false);
    overlay.commit();
    write(0, entity(1, "changed"));
    append("new");
    backend.failAll();

    EXPECT_EQ(codeOf([&] { overlay.rollback(); }), Code::notReadable);

    EXPECT_EQ(bytes(0), entity(1, "changed"));
    EXPECT_EQ(bytes(1), "new");
    backend.calm();
    overlay.rollback();
    EXPECT_EQ(bytes(0), entity(1));
}

TEST_F(OverlayCommitTest, TransactionKeepsFlushFromCommitting) {
    overlay.beginTransaction();
    append("record");
    store.flush();
    EXPECT_EQ(backend.commits(), 0u);
    EXPECT_EQ(codeOf([&] { overlay.beginTransaction(); }), Code::wrongState);
    EXPECT_EQ(codeOf([&] { overlay.close(); }), Code::wrongState);

    EXPECT_EQ(codeOf([&] { overlay.commit(); }), Code::wrongState);
    EXPECT_EQ(backend.commits(), 0u);

    overlay.commitTransaction();

    EXPECT_EQ(backend.commits(), 1u);
}

TEST_F(OverlayCommitTest, TransactionLeavesAloneWhatWasThereBefore) {
    append("before");
    overlay.beginTransaction();
    append("within");

    overlay.rollback();

    EXPECT_EQ(bytes(0), "before");
    EXPECT_EQ(backend.records().size(), 1u);
}

// A handle that was on it may close what it finds there.
TEST_F(OverlayCommitTest, OffsetThatWasOpenAtARollbackIsNotGivenAgain) {
    append("root");
    append(entity(0));
    append(entity(0));
    write(1, entity(1), false);

    overlay.rollback();

    EXPECT_EQ(store.size(), 0u);
    EXPECT_EQ(append("root"), 0u);
    EXPECT_EQ(append("next"), 2u);
    overlay.commit();
    EXPECT_EQ(store.recordSize(1), 0u);
    EXPECT_EQ(backend.meta().next, 3u);
}

TEST_F(OverlayCommitTest, StoreIsEmptyAfterASecondRollbackToo) {
    append(entity(0));
    append(entity(0));
    write(1, entity(1), false);
    overlay.rollback();
    append("root");
    append("next");
    store.recordSize(1);

    overlay.rollback();

    EXPECT_EQ(store.size(), 0u);
}

// Its destruction must not meet a failing disk.
TEST_F(OverlayCommitTest, EntityWhoseHandlesWereForgottenStaysInMemory) {
    OverlayOptions options;
    options.memoryLimit = 10;
    OverlayStore cramped(backend, options);
    for (int index = 0; index < 3; ++index) cramped.append(entity(0).data(), sizeOf(entity(0)));
    cramped.overlay.commit();
    cramped.write(0, entity(1).data(), sizeOf(entity(1)), false);
    cramped.overlay.rollback();
    bytesOf(cramped, 1);
    bytesOf(cramped, 2);
    backend.failAll();

    EXPECT_EQ(bytesOf(cramped, 0), entity(0));
}

TEST_F(OverlayCommitTest, RollbackToAnotherRevisionIsRefused) {
    append("record");
    overlay.commit();
    write(0, "changed");
    backend.put(1, "somebody else's");

    EXPECT_EQ(codeOf([&] { overlay.rollback(); }), Code::fenced);
}

TEST_F(OverlayCommitTest, ReleaseThatChangesNothingDoesNotTryAFailedCommitAgain) {
    OverlayOptions options;
    options.commitsAtRelease = true;
    OverlayStore eager(backend, options);
    backend.failAll();
    const auto appendUnderGuard = [&] {
        const Held guard(eager);
        eager.append("record", 6);
    };
    EXPECT_EQ(codeOf(appendUnderGuard), Code::diskFull);

    EXPECT_NO_THROW(const Held guard(eager));
}

TEST_F(OverlayCommitTest, FlushTellsOfFailuresWithinATransactionToo) {
    overlay.beginTransaction();
    EXPECT_THROW(extend(0, "x"), std::out_of_range);

    EXPECT_THROW(store.flush(), std::out_of_range);
}

TEST_F(OverlayCommitTest, PolicyCommitsAtTheReleaseOfTheOutermostGuard) {
    OverlayOptions options;
    options.commitsAtRelease = true;
    OverlayStore eager(backend, options);
    {
        const Held outer(eager);
        {
            const Held inner(eager);
            eager.append("record", 6);
        }
        EXPECT_EQ(backend.commits(), 0u);
    }
    EXPECT_EQ(backend.commits(), 1u);
    failUnderGuard(eager, [&] { eager.append("more", 4); });
    EXPECT_EQ(backend.commits(), 1u);
    eager.overlay.beginTransaction();
    {
        const Held guard(eager);
        eager.append("more", 4);
    }
    EXPECT_EQ(backend.commits(), 1u);
}

TEST_F(OverlayCommitTest, PolicyThatCannotCommitTellsAtTheRelease) {
    OverlayOptions options;
    options.commitsAtRelease = true;
    OverlayStore eager(backend, options);
    backend.failAll();
    const auto appendUnderGuard = [&] {
        const Held guard(eager);
        eager.append("record", 6);
    };

    EXPECT_EQ(codeOf(appendUnderGuard), Code::diskFull);

    // The guard is free, and nothing is lost.
    backend.calm();
    std::thread([&] { const Held guard(eager); }).join();
    eager.overlay.commit();
    EXPECT_EQ(backend.records().at(0), "record");
}

TEST_F(OverlayCommitTest, PolicyWaitsForItsInterval) {
    OverlayOptions options;
    options.commitsAtRelease = true;
    options.commitInterval = std::chrono::hours(1);
    OverlayStore patient(backend, options);
    {
        const Held guard(patient);
        patient.append("record", 6);
    }
    EXPECT_EQ(backend.commits(), 0u);
}

TEST_F(OverlayCommitTest, StoreForReadingTakesOpenCountsOnly) {
    backend.put(0, entity(0));
    backend.refresh();
    OverlayOptions options;
    options.isReadOnly = true;
    OverlayStore reading(backend, options);

    reading.write(0, entity(1).data(), sizeOf(entity(1)), false);
    EXPECT_TRUE(reading.patch(0, 5, "\x02", 1, false));
    EXPECT_EQ(bytesOf(reading, 0), entity(2));
    const auto refused = [](auto step) { EXPECT_EQ(codeOf(step), Code::readOnly); };
    refused([&] { reading.append("x", 1); });
    refused([&] { reading.write(0, "x", 1, true); });
    refused([&] { reading.write(0, "x", 1, false); });
    refused([&] { reading.write(0, entity(3).data(), sizeOf(entity(3)), true); });
    refused([&] { reading.patch(0, 0, "x", 1, false); });
    refused([&] { reading.extend(0, "x", 1); });
    refused([&] { reading.remove(0); });
    refused([&] { reading.setVersion(9); });
    EXPECT_EQ(bytesOf(reading, 0), entity(2));
    EXPECT_FALSE(reading.overlay.hasChanges());
}

TEST_F(OverlayCommitTest, ReaderSeesAnotherRevisionAfterRefresh) {
    backend.put(0, entity(0));
    backend.refresh();
    OverlayOptions options;
    options.isReadOnly = true;
    OverlayStore reading(backend, options);
    EXPECT_EQ(bytesOf(reading, 0), entity(0));
    EXPECT_FALSE(reading.overlay.refresh());
    backend.put(0, entity(0, "newer"));
    backend.put(1, "added");
    reading.write(0, entity(1).data(), sizeOf(entity(1)), false);
    EXPECT_EQ(codeOf([&] { reading.overlay.refresh(); }), Code::wrongState);
    reading.write(0, entity(0).data(), sizeOf(entity(0)), false);

    EXPECT_TRUE(reading.overlay.refresh());

    EXPECT_EQ(bytesOf(reading, 0), entity(0, "newer"));
    EXPECT_EQ(bytesOf(reading, 1), "added");
    EXPECT_EQ(reading.overlay.recordCount(), 2u);
}

TEST_F(OverlayCommitTest, ClosedStoreLetsHandlesGoAndRefusesAllElse) {
    append(entity(1));
    overlay.close();

    EXPECT_EQ(backend.records().at(0), entity(0));
    write(0, entity(0), false);
    EXPECT_EQ(codeOf([&] { append("x"); }), Code::closed);
    EXPECT_EQ(codeOf([&] { overlay.commit(); }), Code::closed);
    EXPECT_EQ(codeOf([&] { overlay.rollback(); }), Code::closed);
    overlay.close();
    store.flush();
    EXPECT_EQ(backend.commits(), 1u);
}

}  // namespace
}  // namespace norvane::platform::test
