// An operation that throws changes nothing.
#include "Common.h"

namespace norvane::platform::test {
namespace {

using OverlayUndoTest = OverlayTest;

TEST_F(OverlayUndoTest, AppendedRecordIsGoneAndItsOffsetIsGivenAgain) {
    append("first");

    failUnderGuard(store, [&] { append("second"); });

    EXPECT_EQ(store.recordSize(1), 0u);
    EXPECT_EQ(store.size(), 1u);
    EXPECT_EQ(append("another"), 1u);
    EXPECT_EQ(overlay.recordCount(), 2u);
}

TEST_F(OverlayUndoTest, EmptyStoreIsEmptyAgain) {
    failUnderGuard(store, [&] {
        store.setVersion(1);
        store.remove(append("gone at once"));
        append("root");
    });

    EXPECT_EQ(store.size(), 0u);
    EXPECT_EQ(store.version(), 0u);
    EXPECT_FALSE(overlay.hasChanges());
}

TEST_F(OverlayUndoTest, EveryKindOfChangeIsTakenBack) {
    const std::uint32_t written = append("written");
    const std::uint32_t extended = append("extended");
    const std::uint32_t patched = append("patched");
    const std::uint32_t longPatched = append(std::string(2000, 'p'));
    const std::uint32_t removed = append("removed");
    store.setVersion(3);

    failUnderGuard(store, [&] {
        write(written, "other bytes, more of them");
        extend(extended, " by this");
        extend(extended, " and this");
        patch(patched, 1, "AT");
        patch(longPatched, 1000, "PPPP");
        patch(longPatched, 1002, "QQQQ");
        store.remove(removed);
        store.setVersion(4);
    });

    EXPECT_EQ(bytes(written), "written");
    EXPECT_EQ(bytes(extended), "extended");
    EXPECT_EQ(bytes(patched), "patched");
    EXPECT_EQ(bytes(longPatched), std::string(2000, 'p'));
    EXPECT_EQ(bytes(removed), "removed");
    EXPECT_EQ(store.version(), 3u);
    EXPECT_EQ(overlay.recordCount(), 5u);
}

TEST_F(OverlayUndoTest, ManyChangesOfOneRecordAreTakenBackTogether) {
    const std::uint32_t record = append("as it was");

    failUnderGuard(store, [&] {
        extend(record, ", longer");
        write(record, "short");
        extend(record, " and longer");
        patch(record, 0, "S");
        store.remove(record);
    });

    EXPECT_EQ(bytes(record), "as it was");
}

TEST_F(OverlayUndoTest, OnlyTheOutermostGuardUndoes) {
    const std::uint32_t record = append("before");
    {
        const Held outer(store);
        failUnderGuard(store, [&] { write(record, "inner"); });
        EXPECT_EQ(bytes(record), "inner");
    }
    EXPECT_EQ(bytes(record), "inner");
}

TEST_F(OverlayUndoTest, GuardWithoutAnExceptionKeepsWhatWasDone) {
    const std::uint32_t record = append("before");
    {
        const Held guard(store);
        write(record, "after");
    }
    EXPECT_EQ(bytes(record), "after");
}

// A destructor that runs because of an exception may use the store, and succeed.
TEST_F(OverlayUndoTest, GuardTakenDuringAnExceptionIsJudgedByItsOwn) {
    const std::uint32_t record = append("before");
    struct WritesAtItsEnd {
        IDataStore& store;
        std::uint32_t record;
        ~WritesAtItsEnd() {
            const Held guard(store);
            store.write(record, "at the end", 10, true);
        }
    };

    try {
        const WritesAtItsEnd object{store, record};
        throw OperationFailed();
    } catch (const OperationFailed&) {
    }

    EXPECT_EQ(bytes(record), "at the end");
}

TEST_F(OverlayUndoTest, ChangesWithoutAGuardStay) {
    const std::uint32_t record = append("before");
    try {
        write(record, "after");
        throw OperationFailed();
    } catch (const OperationFailed&) {
    }
    EXPECT_EQ(bytes(record), "after");
}

TEST_F(OverlayUndoTest, WhatWasCommittedUnderTheGuardStays) {
    const std::uint32_t record = append("before");

    failUnderGuard(store, [&] {
        write(record, "committed");
        overlay.commit();
        append("not committed");
    });

    EXPECT_EQ(bytes(record), "committed");
    EXPECT_EQ(store.size(), 1u);
    EXPECT_FALSE(overlay.hasChanges());
}

TEST_F(OverlayUndoTest, CleanRecordIsCleanAgain) {
    const std::uint32_t record = append("before");
    overlay.commit();

    failUnderGuard(store, [&] { write(record, "after"); });

    EXPECT_FALSE(overlay.hasChanges());
    EXPECT_EQ(bytes(record), "before");
}

TEST_F(OverlayUndoTest, DirtyRecordIsStillToBeCommitted) {
    const std::uint32_t record = append("before");
    overlay.commit();
    write(record, "dirty");

    failUnderGuard(store, [&] { store.remove(record); });
    overlay.commit();

    EXPECT_EQ(backend.records().at(record), "dirty");
}

// Somebody has opened the entity under the guard and still has it open; or has closed it.
TEST_F(OverlayUndoTest, OpenCountStaysAsItIsNow) {
    const std::uint32_t opened = append(entity(0));
    const std::uint32_t closed = append(entity(1));

    failUnderGuard(store, [&] {
        write(opened, entity(0, "renamed to this"));
        write(opened, entity(1, "renamed to this"), false);
        patch(closed, 13, "!");
        patch(closed, 5, std::string(4, '\0'), false);
    });

    EXPECT_EQ(bytes(opened), entity(1));
    EXPECT_EQ(bytes(closed), entity(0));
}

TEST_F(OverlayUndoTest, RemovedEntityComesBackClosed) {
    const std::uint32_t record = append(entity(0));

    failUnderGuard(store, [&] {
        write(record, entity(1), false);
        store.remove(record);
    });

    EXPECT_EQ(bytes(record), entity(0));
}

TEST_F(OverlayUndoTest, OpenRecordThatWasTakenBackStaysUntilItIsClosed) {
    append("root");
    std::uint32_t made = 0;
    failUnderGuard(store, [&] {
        made = append(entity(0));
        patch(made, 5, "\x02", false);
    });

    EXPECT_EQ(bytes(made), entity(2));
    EXPECT_EQ(overlay.recordCount(), 1u);
    EXPECT_EQ(append("another"), made + 1);
    overlay.commit();
    EXPECT_FALSE(backend.records().contains(made));
    write(made, entity(1), false);
    EXPECT_EQ(bytes(made), entity(1));
    write(made, entity(0), false);
    EXPECT_EQ(store.recordSize(made), 0u);
}

TEST_F(OverlayUndoTest, LastOffsetIsFreeAgainWhenItsRecordIsClosed) {
    std::uint32_t made = 0;
    failUnderGuard(store, [&] {
        made = append(entity(0));
        write(made, entity(1), false);
    });
    EXPECT_EQ(store.size(), 1u);

    write(made, entity(0), false);

    EXPECT_EQ(store.size(), 0u);
}

TEST_F(OverlayUndoTest, ChangeStampMovesWithAnUndo) {
    const std::uint32_t record = append("before");
    std::uint64_t within = 0;

    failUnderGuard(store, [&] {
        write(record, "after");
        within = store.changeStamp();
    });

    EXPECT_NE(store.changeStamp(), within);
}

struct Listener : IDataStore::Companion {
    void changed(std::uint32_t offset, std::uint32_t position) noexcept override {
        told += std::to_string(offset) + "@" + std::to_string(position) + " ";
    }
    void changedAll() noexcept override { told += "all "; }

    std::string told;
};

std::unique_ptr<IDataStore::Companion> makeListener() { return std::make_unique<Listener>(); }

TEST_F(OverlayUndoTest, CompanionHearsOfEveryChangeThatIsNoBookkeeping) {
    append(entity(0));
    auto& listener = static_cast<Listener&>(*store.companion(makeListener));

    append("second");
    extend(1, "more");
    write(0, entity(0, "other"));
    patch(0, 11, "x");
    write(0, entity(1, "otxer"), false);
    patch(0, 5, std::string(1, '\0'), false);
    store.remove(1);

    EXPECT_EQ(listener.told, "1@0 1@6 0@0 0@11 1@0 ");
    EXPECT_EQ(store.companion(makeListener), &listener);
}

TEST_F(OverlayUndoTest, CompanionHearsThatChangesWereTakenBack) {
    append("record");
    overlay.commit();
    auto& listener = static_cast<Listener&>(*store.companion(makeListener));

    failUnderGuard(store, [&] { patch(0, 1, "x"); });
    EXPECT_EQ(listener.told, "0@1 all ");
    patch(0, 2, "x");
    overlay.rollback();

    EXPECT_EQ(listener.told, "0@1 all 0@2 all ");
}

}  // namespace
}  // namespace norvane::platform::test
