// Every operation on a store that fails at its first call, at its second, and so on until the operation gets
// through: nothing terminates, no guard stays, nothing leaks, and no open entity counts as closed.
#include <algorithm>

#include "contract/Operations.h"
#include "support/ThrowingStore.h"

namespace norvane::platform::test {
namespace {

enum class Failing { once, fromThenOn };

class FailingOperationTest : public ::testing::TestWithParam<Operation> {
  protected:
    // Runs the operation with a failure at call n. False when it got through without one.
    bool failsAt(std::uint64_t n, Failing failing, Extensions extensions) {
        ModelStore memory;
        ThrowingStore store(memory, extensions);
        Model model(store);

        failing == Failing::once ? store.throwAt(n) : store.throwFrom(n);
        runOrFail(model);
        const bool failed = store.thrown();
        store.calm();

        EXPECT_EQ(store.guardsHeld(), 0);
        expectOpenWhereHandlesAre(model, memory);
        model.closeAll();
        EXPECT_EQ(store.guardsHeld(), 0);
        expectCountsAtRest(memory, failing);
        return failed;
    }

    void runOrFail(Model& model) {
        try {
            GetParam().run(model);
        } catch (const StoreFailure&) {
        }
    }

    // A handle whose entity went under another name is not looked for.
    static void expectOpenWhereHandlesAre(Model& model, ModelStore& memory) {
        const auto expectOpen = [&memory](auto& handle) {
            if (!handle) return;
            std::u16string path = textOf(handle->path());
            std::replace(path.begin(), path.end(), u'.', u'/');
            const Offset offset = recordAt(memory, path);
            EXPECT_TRUE(offset == noRecord() || RawRecord(memory, offset).openCount() > 0) << offset;
        };
        for (auto* each : {&model.p, &model.s, &model.st, &model.u, &model.t, &model.inner, &model.m})
            expectOpen(*each);
        for (auto* each : {&model.top, &model.g, &model.link}) expectOpen(*each);
    }

    // One failure can keep one count from going down; that is all it can do.
    static void expectCountsAtRest(ModelStore& memory, Failing failing) {
        std::uint64_t raised = 0;
        for (Offset offset = 0; offset < memory.size(); ++offset) {
            const RawRecord each(memory, offset);
            if (!each.isEntity()) continue;
            EXPECT_LT(each.openCount(), 1000u) << "the count of record " << offset << " went below 0";
            raised += each.openCount();
        }
        EXPECT_TRUE(failing == Failing::fromThenOn || raised <= 1) << raised;
    }

    void failEverywhere(Failing failing, Extensions extensions) {
        std::uint64_t n = 1;
        while (failsAt(n, failing, extensions) && !HasFailure()) ++n;
        EXPECT_FALSE(HasFailure()) << "at call " << n;
    }
};

TEST_P(FailingOperationTest, SurvivesAFailureAtEveryCall) {
    failEverywhere(Failing::once, Extensions::off);
    failEverywhere(Failing::once, Extensions::on);
}

TEST_P(FailingOperationTest, SurvivesAStoreThatFailsFromAnyCallOn) {
    failEverywhere(Failing::fromThenOn, Extensions::off);
    failEverywhere(Failing::fromThenOn, Extensions::on);
}

INSTANTIATE_TEST_SUITE_P(All, FailingOperationTest, ::testing::ValuesIn(allOperations()), nameOf);

// A store whose guards fail when they go.
class FailingUnlockStore : public ForwardingStore {
  public:
    explicit FailingUnlockStore(IDataStore& store) : ForwardingStore(store, Extensions::off) {}

    // The n-th guard to go from here fails; 0 for none.
    void failAt(std::uint64_t n) {
        left_ = n;
        hasFailed_ = false;
    }
    bool hasFailed() const { return hasFailed_; }

  protected:
    void after(const StoreCall& call) override {
        if (call.name != "unlock" || left_ == 0 || --left_ != 0) return;
        hasFailed_ = true;
        throw StoreFailure();
    }

  private:
    std::uint64_t left_ = 0;
    bool hasFailed_ = false;
};

// The result of an operation is complete when its guard goes: it must not be lost with the guard's exception.
TEST_P(FailingOperationTest, LosesNoResultWhenAGuardFails) {
    for (std::uint64_t n = 1;; ++n) {
        ModelStore memory;
        FailingUnlockStore store(memory);
        Model model(store);

        store.failAt(n);
        runOrFail(model);
        const bool failed = store.hasFailed();
        store.failAt(0);

        EXPECT_EQ(store.guardsHeld(), 0);
        model.closeAll();
        EXPECT_EQ(openCountsOf(memory), 0u) << "at guard " << n;
        if (!failed || HasFailure()) break;
    }
}

class FailingStoreTest : public StoreTest {
  protected:
    ~FailingStoreTest() noexcept override = default;

    ThrowingStore failing{store};
};

TEST_F(FailingStoreTest, FailureReachesTheHostUnchanged) {
    const auto top = IContainerFrontEnd::toplevel(&failing, u"top");
    failing.throwAt(2);

    EXPECT_THROW(top->makePrimitive(u"p", kInt32), StoreFailure);

    failing.calm();
    EXPECT_TRUE(top->makePrimitive(u"p", kInt32));
}

TEST_F(FailingStoreTest, FailureOfClosingReachesTheHost) {
    auto top = IContainerFrontEnd::toplevel(&failing, u"top");
    failing.throwAt(2);

    EXPECT_THROW(top.reset(), StoreFailure);

    EXPECT_FALSE(top);
    EXPECT_EQ(failing.guardsHeld(), 0);
}

// While another exception is under way, that one must win; two would end the program.
TEST_F(FailingStoreTest, FailureOfClosingIsKeptBackWhileAnotherExceptionIsUnderWay) {
    struct HostFailure {};

    for (std::uint64_t n = 1; n <= 4; ++n) {
        failing.calm();
        const auto work = [this, n] {
            const auto top = IContainerFrontEnd::toplevel(&failing, u"top");
            const auto made = top->makePrimitive(std::u16string(n, u'p').c_str(), kInt32);
            made->property()->setLocalised(u"en", u"text");
            failing.throwFrom(n);
            throw HostFailure();
        };

        EXPECT_THROW(work(), HostFailure);
        EXPECT_EQ(failing.guardsHeld(), 0);
    }
}

// A handle that is made and goes inside a destructor, while an exception is under way, is none of that
// exception's.
TEST_F(FailingStoreTest, FailureInsideADestructorDuringUnwindingReachesItsCaller) {
    struct Asks {
        ThrowingStore& store;
        bool& caught;
        ~Asks() {
            try {
                auto top = IContainerFrontEnd::toplevel(&store, u"top");
                store.throwAt(2);
                top.reset();
            } catch (const StoreFailure&) {
                caught = true;
            }
        }
    };
    bool caught = false;

    const auto work = [&] {
        const Asks asks{failing, caught};
        throw 1;
    };

    EXPECT_THROW(work(), int);
    EXPECT_TRUE(caught);
}

// Without its guard a handle does not touch the store: its count stays raised, and its memory goes.
TEST_F(FailingStoreTest, HandleThatGetsNoGuardLeavesTheStoreAlone) {
    auto top = IContainerFrontEnd::toplevel(&failing, u"top");
    top->setLocalised(u"en", u"text");
    const auto before = contentsOf(store);
    failing.throwAt(1);

    EXPECT_THROW(top.reset(), StoreFailure);

    EXPECT_EQ(failing.calls(), 1u);
    EXPECT_EQ(contentsOf(store), before);
}

TEST_F(FailingStoreTest, ToplevelCanBeAskedAgainAfterAFailure) {
    for (std::uint64_t n = 1; n < 8; ++n) {
        failing.throwAt(n);
        EXPECT_THROW(IContainerFrontEnd::toplevel(&failing, u"top"), StoreFailure) << n;
        failing.calm();
        EXPECT_TRUE(IContainerFrontEnd::toplevel(&failing, u"top")) << n;
        EXPECT_EQ(failing.guardsHeld(), 0);
    }
}

}  // namespace
}  // namespace norvane::platform::test
