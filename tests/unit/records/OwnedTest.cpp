// Owning pointers to objects whose destructors may throw.
#include <gtest/gtest.h>

#include <stdexcept>
#include <type_traits>

#include "records/Owned.h"

namespace norvane::platform::test {
namespace {

using data::makeOwned;
using data::Owned;

struct Counted {
    explicit Counted(int& living) : alive(living) { ++alive; }
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;
    virtual ~Counted() noexcept(false) { --alive; }

    int& alive;
};

struct Failing : Counted {
    using Counted::Counted;
    ~Failing() noexcept(false) override { throw std::runtime_error("cannot close"); }
};

TEST(OwnedTest, ObjectGoesWithItsOwner) {
    int alive = 0;
    {
        const Owned<Counted> owner = makeOwned<Counted>(alive);
        EXPECT_EQ(alive, 1);
        EXPECT_TRUE(owner);
    }

    EXPECT_EQ(alive, 0);
}

TEST(OwnedTest, MovingHandsTheObjectOn) {
    int alive = 0;
    Owned<Failing> derived;
    Owned<Counted> first = makeOwned<Counted>(alive);
    Counted* object = first.get();

    Owned<Counted> second(std::move(first));
    Owned<Counted> third;
    third = std::move(second);

    EXPECT_EQ(third.get(), object);
    EXPECT_EQ(alive, 1);
    EXPECT_FALSE(derived);
}

TEST(OwnedTest, FailureToCloseLeavesTheOwner) {
    int alive = 0;

    EXPECT_THROW(makeOwned<Failing>(alive), std::runtime_error);

    EXPECT_EQ(alive, 0);
    static_assert(!std::is_nothrow_destructible_v<Owned<Failing>>);
}

TEST(OwnedTest, NewObjectIsKeptWhenTheOldOneFailsToClose) {
    int alive = 0;
    Owned<Counted> owner(new Failing(alive));
    Counted* next = new Counted(alive);

    EXPECT_THROW(owner.reset(next), std::runtime_error);

    EXPECT_EQ(owner.get(), next);
    EXPECT_EQ(alive, 1);
}

TEST(OwnedTest, ReleasedObjectIsTheCallers) {
    int alive = 0;
    Counted* object = nullptr;
    {
        Owned<Counted> owner = makeOwned<Counted>(alive);
        object = owner.release();
    }

    EXPECT_EQ(alive, 1);
    delete object;
}

}  // namespace
}  // namespace norvane::platform::test
