// Which operations take the guard, and that everything they do lies inside of it.
#include <memory>

#include "contract/Operations.h"
#include "support/LoggingStore.h"

namespace norvane::platform::test {
namespace {

// The calls of an operation on a model, with the depth of guards at each.
struct Trace {
    std::size_t locks = 0;
    std::size_t callsOutside = 0;
    std::size_t calls = 0;
};

Trace traceOf(const std::vector<StoreCall>& calls) {
    Trace trace;
    std::size_t depth = 0;
    for (const StoreCall& call : calls) {
        ++trace.calls;
        if (call.name == "lock") {
            ++depth;
            ++trace.locks;
        } else if (call.name == "unlock") {
            --depth;
        } else if (depth == 0) {
            ++trace.callsOutside;
        }
    }
    EXPECT_EQ(depth, 0u);
    return trace;
}

class GuardedOperationTest : public ::testing::TestWithParam<Operation> {};

TEST_P(GuardedOperationTest, TakesTheGuardForItsWholeLength) {
    for (const Extensions extensions : {Extensions::off, Extensions::on}) {
        LoggingStore store(extensions);
        Model model(store);
        store.takeCalls();

        GetParam().run(model);

        const Trace trace = traceOf(store.takeCalls());
        if (GetParam().guarding == Guarding::whole) {
            EXPECT_GT(trace.locks, 0u);
            EXPECT_EQ(trace.callsOutside, 0u);
        } else {
            EXPECT_EQ(trace.locks, 0u);
        }
        EXPECT_EQ(store.guardsHeld(), 0);
    }
}

TEST_P(GuardedOperationTest, LeavesNothingOpen) {
    LoggingStore store;
    Model model(store);

    GetParam().run(model);
    model.closeAll();

    EXPECT_EQ(openCountsOf(store.behind()), 0u);
    EXPECT_EQ(openCountsOf(model.other), 0u);
}

// Nothing but open counts is written with the flag down, and those with the flag up change more.
TEST_P(GuardedOperationTest, OnlyOpenCountsAreWrittenUnflagged) {
    LoggingStore store;
    Model model(store);
    std::vector<std::string> before;
    for (Offset offset = 0; offset < store.behind().size(); ++offset) {
        const auto bytes = RawRecord(store.behind(), offset).bytes();
        before.emplace_back(bytes.begin(), bytes.end());
    }
    store.takeCalls();

    GetParam().run(model);

    for (const StoreCall& call : store.takeCalls()) {
        if (call.name == "append") before.resize(std::max<std::size_t>(before.size(), call.offset + 1));
        if (call.name == "append" || call.name == "write") {
            if (call.name == "write" && !call.flag) {
                std::string expected = before[call.offset];
                ASSERT_EQ(expected.size(), call.bytes.size());
                for (std::size_t i = 5; i < 9; ++i) expected[i] = call.bytes[i];
                EXPECT_EQ(expected, call.bytes);
            }
            before[call.offset] = call.bytes;
        }
        if (call.name == "extend") before[call.offset] += call.bytes;
    }
}

INSTANTIATE_TEST_SUITE_P(All, GuardedOperationTest, ::testing::ValuesIn(allOperations()), nameOf);

class GuardTest : public ::testing::Test {
  protected:
    ~GuardTest() noexcept override = default;

    LoggingStore store;
    Model model{store};
};

TEST_F(GuardTest, ReadingNothingTakesNoGuard) {
    std::int32_t target = 0;
    IPrimitive& p = model.primitive(model.p);
    store.takeCalls();

    EXPECT_FALSE(p.readValues(&target, 0, 0));

    EXPECT_TRUE(store.calls().empty());
}

TEST_F(GuardTest, StepsOfAFilterWithoutMembersTakeNoGuard) {
    auto inner = model.top->find(u"g.inner");
    const auto containers = inner->containers();
    const auto properties = inner->properties();
    const auto members = model.table(model.inner).properties();
    store.takeCalls();

    containers->next();
    containers->previous();
    properties->next();
    properties->previous();
    members->next();
    members->previous();

    EXPECT_TRUE(store.calls().empty());
}

TEST_F(GuardTest, FacetsLeadBackWithoutGuard) {
    ILink& link = model.asLink();
    IGroup* group = IGroup::to(model.g.get());
    IPrimitive& p = model.primitive(model.p);
    ITable& t = model.table(model.t);
    store.takeCalls();

    link.container();
    group->container();
    p.property();
    t.property();

    EXPECT_TRUE(store.calls().empty());
}

TEST_F(GuardTest, MemberFilterIsClosedOutsideOfTheGuard) {
    store.takeCalls();

    model.members.reset();

    const Trace trace = traceOf(store.takeCalls());
    EXPECT_EQ(trace.locks, 0u);
    EXPECT_GT(trace.callsOutside, 0u);
}

TEST_F(GuardTest, ContainerFilterIsMadeWithTheGuardTakenTwice) {
    store.takeCalls();

    const auto filter = model.top->properties();

    EXPECT_EQ(store.count("lock"), 2u);
    EXPECT_EQ(store.calls()[0].name, "lock");
    EXPECT_EQ(store.calls().back().name, "unlock");
}

TEST_F(GuardTest, ResultIsCompleteBeforeTheGuardGoes) {
    store.takeCalls();

    const auto found = model.top->find(u"x");

    const auto calls = store.takeCalls();
    EXPECT_EQ(calls.front().name, "lock");
    EXPECT_EQ(calls.back().name, "unlock");
    EXPECT_EQ(record(store.behind(), u"top/x").openCount(), 1u);
}

TEST_F(GuardTest, LookupsAmongDirectChildrenReadOneByteOnly) {
    store.takeCalls();

    model.top->contains(u"g");

    EXPECT_EQ(store.calls().size(), 2u);
    EXPECT_EQ(store.count("lock"), 1u);
    EXPECT_EQ(store.count("unlock"), 1u);
}

TEST_F(GuardTest, StepOfAFilterReadsOneBytePerChild) {
    const auto filter = model.top->containers();
    store.takeCalls();

    filter->next();

    for (const StoreCall& call : store.calls()) EXPECT_TRUE(call.name != "read" || call.size == 1) << call;
    EXPECT_EQ(store.count("read"), 1u);
    EXPECT_EQ(store.count("write"), 0u);
}

// A store whose guards show up, by name, in a list shared with other stores.
class NamedStore : private detail::OwnMemory, public ForwardingStore {
  public:
    NamedStore(std::string name, std::vector<std::string>& log)
        : ForwardingStore(memory, Extensions::off), name_(std::move(name)), log_(log) {}

  protected:
    void after(const StoreCall& call) override {
        if (call.name == "lock" || call.name == "unlock") log_.push_back(call.name + " " + name_);
    }

  private:
    std::string name_;
    std::vector<std::string>& log_;
};

class TwoStoresTest : public ::testing::Test {
  protected:
    ~TwoStoresTest() noexcept override = default;

    // Guards of the handles that the operation makes and drops come behind its own.
    std::vector<std::string> guardsOf(const std::function<void()>& operation) {
        log.clear();
        operation();
        return std::exchange(log, {});
    }

    using Guards = std::vector<std::string>;
    Guards log;
    NamedStore here{"here", log};
    NamedStore there{"there", log};
    SharedPtr<IContainer> a = IContainerFrontEnd::toplevel(&here, u"a");
    SharedPtr<IContainer> b = IContainerFrontEnd::toplevel(&there, u"b");
};

TEST_F(TwoStoresTest, CopyToTakesTheDestinationsGuardFirst) {
    EXPECT_EQ(guardsOf([this] { a->copyTo(&there, u"b.copy"); }),
              (Guards{"lock there", "lock here", "unlock here", "unlock there"}));
}

TEST_F(TwoStoresTest, CopyToWithoutAParentTakesTheDestinationsGuardOnly) {
    EXPECT_EQ(guardsOf([this] { a->copyTo(&there, u"missing.copy"); }),
              (Guards{"lock there", "unlock there"}));
}

TEST_F(TwoStoresTest, CopyToItsOwnStoreTakesTheGuardTwice) {
    EXPECT_EQ(guardsOf([this] { a->copyTo(&here, u"a.copy"); }),
              (Guards{"lock here", "lock here", "unlock here", "unlock here"}));
}

TEST_F(TwoStoresTest, MergeTakesItsOwnGuardOnly) {
    b->makePrimitive(u"p", kInt32);

    EXPECT_EQ(guardsOf([this] { a->merge(b); }), (Guards{"lock here", "unlock here"}));
}

// The item is asked for its name through its own operation.
TEST_F(TwoStoresTest, AddTakesTheItemsGuardForItsNameInsideItsOwn) {
    EXPECT_EQ(guardsOf([this] { a->add(b); }),
              (Guards{"lock here", "lock there", "unlock there", "unlock here"}));
}

TEST_F(TwoStoresTest, ResolveTakesTheLinksGuardFirst) {
    const auto made = a->makeContainer(kLink, u"l", nullptr);
    ILink* link = ILink::to(made.get());
    link->setTarget(u"missing");

    EXPECT_EQ(guardsOf([&] { link->resolve(&there); }),
              (Guards{"lock here", "lock there", "unlock there", "unlock here"}));
    EXPECT_EQ(guardsOf([&] { link->resolve(&here); }),
              (Guards{"lock here", "lock here", "unlock here", "unlock here"}));
    EXPECT_EQ(guardsOf([&] { link->resolve(nullptr); }), (Guards{"lock here", "unlock here"}));
}

TEST_F(TwoStoresTest, ResolveWithoutATargetTakesItsOwnGuardOnly) {
    const auto made = a->makeContainer(kLink, u"l", nullptr);
    ILink* link = ILink::to(made.get());

    EXPECT_EQ(guardsOf([&] { link->resolve(&there); }), (Guards{"lock here", "unlock here"}));
}

TEST_F(TwoStoresTest, ApplyingAClassTakesTheClassStoresGuardInside) {
    b->makeTable(u"T", nullptr)->makePrimitive(u"m", kInt32, 0);
    const auto locator = ISchemaLocator::make(&there);
    const auto schema = locator->locate(u"b.T");
    SharedPtr<IContainer> made;
    SharedPtr<ITable> table;

    EXPECT_EQ(guardsOf([&] { made = a->makeContainer(kGroup, u"g", schema.get()); }),
              (Guards{"lock here", "lock there", "unlock there", "unlock here"}));
    EXPECT_EQ(guardsOf([&] { table = a->makeTable(u"t", schema.get()); }),
              (Guards{"lock here", "unlock here"}));
}

// A store that needs no guard gives none.
class GuardlessStore : private detail::OwnMemory, public ForwardingStore {
  public:
    GuardlessStore() : ForwardingStore(memory, Extensions::off) {}
    Guard* lock() override { return nullptr; }
    IDataStore& behind() { return memory; }
};

TEST(GuardlessStoreTest, EveryOperationWorksWithoutAGuard) {
    for (const Operation& operation : allOperations()) {
        GuardlessStore store;
        Model model(store);
        operation.run(model);
        model.closeAll();
        EXPECT_EQ(openCountsOf(store.behind()), 0u) << operation.name;
    }
}

}  // namespace
}  // namespace norvane::platform::test
