// Every change through one handle against every question through another: an old handle knows the children
// that were there when it was opened and its own changes, whether it was asked before or not, how wide the
// set is, and whether the store shares an index of it among handles.
#include <algorithm>
#include <string>
#include <tuple>

#include "contract/Model.h"
#include "support/ForwardingStore.h"

namespace norvane::platform::test {
namespace {

std::u16string childName(int i) {
    std::u16string name = u"child";
    for (const char each : std::to_string(i)) name.push_back(static_cast<char16_t>(each));
    return name;
}

Names childNames(int width) {
    Names names;
    for (int i = 0; i < width; ++i) names.push_back(childName(i));
    return names;
}

// What is done through the one handle, and how the names in the list change by it.
struct Change {
    const char* what;
    void (*onContainer)(IContainer& container);
    void (*onTable)(ITable& table);
    Names gone;
    Names added;
};

const Change kChanges[] = {
    {"Nothing", [](IContainer&) {}, [](ITable&) {}, {}, {}},
    {"Add",
     [](IContainer& container) { container.makeContainer(kGroup, u"new", nullptr); },
     [](ITable& table) { table.makePrimitive(u"new", kInt32, 0); },
     {},
     {u"new"}},
    {"Remove",
     [](IContainer& container) { container.remove(u"child1"); },
     [](ITable& table) { table.remove(u"child1"); },
     {u"child1"},
     {}},
    {"RemoveAndAddAgain",
     [](IContainer& container) {
         container.remove(u"child1");
         container.makeContainer(kGroup, u"child1", nullptr);
     },
     [](ITable& table) {
         table.remove(u"child1");
         table.makePrimitive(u"child1", kInt32, 0);
     },
     {u"child1"},
     {u"child1"}},
    {"Rename",
     [](IContainer& container) { container.find(u"child1")->rename(u"renamed"); },
     [](ITable& table) { table.find(u"child1")->rename(u"renamed"); },
     {u"child1"},
     {u"renamed"}},
};

enum class Asked { never, once, often };

class StalenessMatrixTest : public testing::TestWithParam<std::tuple<Extensions, int, Asked, int>> {
  public:
    ~StalenessMatrixTest() noexcept override = default;

  protected:
    static Extensions extensions() { return std::get<0>(GetParam()); }
    static int width() { return std::get<1>(GetParam()); }
    static int questionsBefore() { return static_cast<int>(std::get<2>(GetParam())) * 5 / 2; }
    static const Change& change() { return kChanges[std::get<3>(GetParam())]; }

    // The list as it is after the change; a renamed child keeps its place, all others are added behind.
    static Names listed() {
        Names names = childNames(width());
        for (const auto& name : change().gone) {
            const auto place = std::find(names.begin(), names.end(), name);
            if (std::string(change().what) == "Rename")
                *place = u"renamed";
            else
                names.erase(place);
        }
        for (const auto& name : change().added)
            if (std::find(names.begin(), names.end(), name) == names.end()) names.push_back(name);
        return names;
    }
    static bool isGone(const std::u16string& name) {
        return std::find(change().gone.begin(), change().gone.end(), name) != change().gone.end();
    }
    // The name of the entity that the old handle still finds under that of its opening; empty if it is
    // removed.
    static std::u16string nameBehind(const std::u16string& name) {
        if (!isGone(name)) return name;
        return std::string(change().what) == "Rename" ? u"renamed" : u"";
    }

    ModelStore memory;
    ForwardingStore plain{memory, Extensions::off};
    IDataStore* store = extensions() == Extensions::on ? static_cast<IDataStore*>(&memory) : &plain;
    SharedPtr<IContainer> top = IContainerFrontEnd::toplevel(store, u"top");
};

std::string nameOfCase(const testing::TestParamInfo<StalenessMatrixTest::ParamType>& info) {
    static constexpr const char* kAsked[] = {"Never", "Once", "Often"};
    const std::string width = std::to_string(std::get<1>(info.param));
    return (std::get<0>(info.param) == Extensions::on ? "Shared" : "Plain") + width + "Asked" +
           kAsked[static_cast<int>(std::get<2>(info.param))] + kChanges[std::get<3>(info.param)].what;
}

// Widths: fewer children than are worth an index, more, and so many that the index is shared.
INSTANTIATE_TEST_SUITE_P(Handles, StalenessMatrixTest,
                         testing::Combine(testing::Values(Extensions::on, Extensions::off),
                                          testing::Values(3, 20, 100),
                                          testing::Values(Asked::never, Asked::once, Asked::often),
                                          testing::Range(0, static_cast<int>(std::size(kChanges)))),
                         nameOfCase);

TEST_P(StalenessMatrixTest, OldHandleOnAContainerAnswersFromItsOpening) {
    for (const auto& name : childNames(width())) top->makeContainer(kGroup, name.c_str(), nullptr);
    const auto actor = top->find(WideString());
    const auto old = top->find(WideString());
    for (int i = 0; i < questionsBefore(); ++i) EXPECT_TRUE(old->contains(u"child2"));

    change().onContainer(*actor);

    for (const auto& name : childNames(width())) {
        EXPECT_TRUE(old->contains(name.c_str()));
        const auto found = old->find(name.c_str());
        EXPECT_EQ(found ? found->name() : WideString(u""), nameBehind(name).c_str());
        EXPECT_FALSE(old->findProperty(name.c_str()));
        EXPECT_FALSE(old->makeContainer(kGroup, name.c_str(), nullptr));
    }
    EXPECT_FALSE(old->contains(u"new"));
    EXPECT_FALSE(old->contains(u"renamed"));
    EXPECT_FALSE(old->find(u"new"));
    EXPECT_FALSE(old->isEmpty());
    EXPECT_EQ(namesOf(*old->containers()), listed());
    EXPECT_EQ(namesOf(*old->properties()), Names{});
}

TEST_P(StalenessMatrixTest, NewHandleAndPathOnAContainerAnswerFromTheStore) {
    for (const auto& name : childNames(width())) top->makeContainer(kGroup, name.c_str(), nullptr);
    const auto old = top->find(WideString());
    for (int i = 0; i < questionsBefore(); ++i) EXPECT_TRUE(old->contains(u"child2"));

    change().onContainer(*old);

    const auto fresh = old->find(WideString());
    for (const auto& name : listed()) {
        EXPECT_TRUE(fresh->contains(name.c_str()));
        EXPECT_EQ(fresh->find(name.c_str())->name(), name.c_str());
        EXPECT_TRUE(IContainerFrontEnd::find(store, (u"top." + name).c_str()));
    }
    for (const auto& name : change().gone) {
        const bool isBack = std::string(change().what) == "RemoveAndAddAgain";
        EXPECT_EQ(fresh->contains(name.c_str()), isBack);
        EXPECT_EQ(bool(IContainerFrontEnd::find(store, (u"top." + name).c_str())), isBack);
    }
    EXPECT_EQ(namesOf(*fresh->containers()), listed());
}

// A change of its own comes on top of what it knows, and does not bring it up to date.
TEST_P(StalenessMatrixTest, OldHandleThatChangesSomethingItselfStaysAsOldAsItWas) {
    for (const auto& name : childNames(width())) top->makeContainer(kGroup, name.c_str(), nullptr);
    const auto actor = top->find(WideString());
    const auto old = top->find(WideString());
    for (int i = 0; i < questionsBefore(); ++i) EXPECT_TRUE(old->contains(u"child2"));

    change().onContainer(*actor);
    EXPECT_TRUE(old->makeContainer(kGroup, u"own", nullptr));
    EXPECT_TRUE(old->remove(u"child0"));

    EXPECT_TRUE(old->contains(u"own"));
    EXPECT_FALSE(old->contains(u"child0"));
    EXPECT_TRUE(old->contains(u"child1"));
    EXPECT_FALSE(old->contains(u"new"));
    EXPECT_FALSE(old->contains(u"renamed"));
    EXPECT_FALSE(actor->contains(u"own"));
    EXPECT_TRUE(actor->contains(u"child0"));
}

// The copy is made through another object on the same record, and so the handle reads its list anew.
TEST_P(StalenessMatrixTest, HandleThatIsReloadedKnowsAllThatIsThere) {
    for (const auto& name : childNames(width())) top->makeContainer(kGroup, name.c_str(), nullptr);
    const auto actor = top->find(WideString());
    const auto old = top->find(WideString());
    for (int i = 0; i < questionsBefore(); ++i) EXPECT_TRUE(old->contains(u"child2"));

    change().onContainer(*actor);
    EXPECT_TRUE(old->copy(u"child2", u"copy", false));

    for (const auto& name : listed()) EXPECT_TRUE(old->contains(name.c_str()));
    EXPECT_TRUE(old->contains(u"copy"));
    EXPECT_FALSE(actor->contains(u"copy"));
    const bool isBack = std::string(change().what) == "RemoveAndAddAgain";
    for (const auto& name : change().gone) EXPECT_EQ(old->contains(name.c_str()), isBack);
}

TEST_P(StalenessMatrixTest, OldHandleOnATableAnswersFromItsOpeningAndPositionsFromTheStore) {
    const auto made = top->makeTable(u"t", nullptr);
    for (const auto& name : childNames(width())) made->makePrimitive(name.c_str(), kInt32, 0);
    const auto first = top->findProperty(u"t");
    const auto second = top->findProperty(u"t");
    ITable* const actor = ITable::to(first.get());
    ITable* const old = ITable::to(second.get());
    for (int i = 0; i < questionsBefore(); ++i) EXPECT_TRUE(old->find(u"child2"));

    change().onTable(*actor);

    for (const auto& name : childNames(width())) {
        const auto found = old->find(name.c_str());
        EXPECT_EQ(found ? found->name() : WideString(u""), nameBehind(name).c_str());
        EXPECT_FALSE(old->makePrimitive(name.c_str(), kInt32, 0));
    }
    EXPECT_FALSE(old->find(u"new"));
    EXPECT_FALSE(old->find(u"renamed"));
    EXPECT_EQ(old->count(), static_cast<std::uint32_t>(width()));
    const Names now = listed();
    for (std::uint32_t i = 0; i < now.size(); ++i) EXPECT_EQ(old->at(i)->name(), now[i].c_str());
    EXPECT_FALSE(old->at(static_cast<std::uint32_t>(now.size())));
    EXPECT_EQ(namesOf(*old->properties()), now);
    EXPECT_EQ(ITable::to(top->findProperty(u"t").get())->count(), static_cast<std::uint32_t>(now.size()));
}

}  // namespace
}  // namespace norvane::platform::test
