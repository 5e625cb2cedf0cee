#include <gtest/gtest.h>

#include <cstring>
#include <stdexcept>
#include <type_traits>
#include <utility>

#include "norvane/platform/core/memory/SharedPtr.h"

namespace norvane::platform::core::memory {
namespace {

int alive = 0;

struct Base {
    Base() { ++alive; }
    Base(const Base&) = delete;
    Base& operator=(const Base&) = delete;
    virtual ~Base() noexcept(false) { --alive; }
    int number = 7;
};

struct Face {
    virtual ~Face() noexcept(false) {}
    int faceNumber = 9;
};

struct Derived : Base, Face {};

struct FailsToClose : Base {
    ~FailsToClose() noexcept(false) override { throw std::runtime_error("cannot close"); }
};

struct Words {
    void* pointer;
    IPointerCounter* counter;
};

template <typename T>
Words wordsOf(const SharedPtr<T>& handle) {
    static_assert(sizeof(SharedPtr<T>) == sizeof(Words));
    Words words;
    std::memcpy(&words, static_cast<const void*>(&handle), sizeof words);
    return words;
}

class SharedPtrTest : public testing::Test {
  protected:
    SharedPtrTest() { alive = 0; }
    ~SharedPtrTest() override { EXPECT_EQ(alive, 0); }
};

TEST_F(SharedPtrTest, NullPointerMakesNoCounter) {
    const SharedPtr<Base> handle(static_cast<Base*>(nullptr));

    EXPECT_EQ(wordsOf(handle).pointer, nullptr);
    EXPECT_EQ(wordsOf(handle).counter, nullptr);
}

TEST_F(SharedPtrTest, DefaultAndNullptrAreNull) {
    const SharedPtr<Base> none;
    const SharedPtr<Base> null = nullptr;

    EXPECT_FALSE(none);
    EXPECT_EQ(none, null);
    EXPECT_EQ(none, nullptr);
    EXPECT_EQ(wordsOf(null).counter, nullptr);
}

TEST_F(SharedPtrTest, FreshHandleHasOneWeakAndOneStrong) {
    const SharedPtr<Base> handle(new Base);

    const Words words = wordsOf(handle);
    EXPECT_EQ(words.pointer, handle.get());
    EXPECT_EQ(words.counter->weakCount(), 1);
    EXPECT_EQ(words.counter->strongCount(), 1);
}

TEST_F(SharedPtrTest, CopySharesTheCounterAndAddsOneStrong) {
    const SharedPtr<Base> first(new Base);

    const SharedPtr<Base> second(first);

    EXPECT_EQ(second, first);
    EXPECT_EQ(wordsOf(second).counter, wordsOf(first).counter);
    EXPECT_EQ(wordsOf(first).counter->strongCount(), 2);
    EXPECT_EQ(wordsOf(first).counter->weakCount(), 1);
}

TEST_F(SharedPtrTest, LastHandleDeletesThePointee) {
    {
        const SharedPtr<Base> first(new Base);
        { const SharedPtr<Base> second(first); }
        EXPECT_EQ(alive, 1);
    }
    EXPECT_EQ(alive, 0);
}

TEST_F(SharedPtrTest, MoveLeavesNullAndCountsNothing) {
    SharedPtr<Base> from(new Base);

    const SharedPtr<Base> to(std::move(from));

    EXPECT_EQ(wordsOf(from).counter, nullptr);  // NOLINT(bugprone-use-after-move)
    EXPECT_FALSE(from);
    EXPECT_EQ(wordsOf(to).counter->strongCount(), 1);
}

TEST_F(SharedPtrTest, AssignmentReleasesWhatWasHeld) {
    SharedPtr<Base> handle(new Base);
    const SharedPtr<Base> other(new Base);

    handle = other;

    EXPECT_EQ(alive, 1);
    EXPECT_EQ(handle, other);
}

TEST_F(SharedPtrTest, AssignmentToItselfKeepsThePointee) {
    SharedPtr<Base> handle(new Base);
    const SharedPtr<Base>& same = handle;

    handle = same;

    EXPECT_EQ(alive, 1);
    EXPECT_EQ(handle->number, 7);
}

TEST_F(SharedPtrTest, MoveAssignmentReleasesWhatWasHeld) {
    SharedPtr<Base> handle(new Base);
    SharedPtr<Base> other(new Base);

    handle = std::move(other);

    EXPECT_EQ(alive, 1);
    EXPECT_FALSE(other);  // NOLINT(bugprone-use-after-move)
    EXPECT_TRUE(handle);
}

TEST_F(SharedPtrTest, DerivedConvertsToBaseImplicitly) {
    const SharedPtr<Derived> derived(new Derived);

    const SharedPtr<Face> face = derived;
    const SharedPtr<Base> base = SharedPtr<Derived>(derived);

    EXPECT_EQ(face->faceNumber, 9);
    EXPECT_EQ(face.get(), static_cast<Face*>(derived.get()));
    EXPECT_EQ(wordsOf(face).counter, wordsOf(derived).counter);
    EXPECT_EQ(wordsOf(base).counter->strongCount(), 3);
}

TEST_F(SharedPtrTest, ConversionGoesOnlyUpAndRawPointersOnlyExplicitly) {
    EXPECT_FALSE((std::is_convertible_v<SharedPtr<Base>, SharedPtr<Derived>>));
    EXPECT_FALSE((std::is_convertible_v<Base*, SharedPtr<Base>>));
    EXPECT_TRUE((std::is_constructible_v<SharedPtr<Base>, Base*>));
}

TEST_F(SharedPtrTest, FaceKeepsTheWholeObjectAlive) {
    SharedPtr<Base> whole(new Derived);
    const SharedPtr<Face> face(whole, dynamic_cast<Face*>(whole.get()));

    whole.reset();

    EXPECT_EQ(alive, 1);
    EXPECT_EQ(face->faceNumber, 9);
}

TEST_F(SharedPtrTest, FaceOfNullOrNullFaceIsNull) {
    const SharedPtr<Base> none;
    const SharedPtr<Base> some(new Base);
    Face face;

    const SharedPtr<Face> withoutOwner(none, &face);
    const SharedPtr<Face> withoutFace(some, nullptr);

    EXPECT_EQ(wordsOf(withoutOwner).pointer, nullptr);
    EXPECT_EQ(wordsOf(withoutFace).counter, nullptr);
    EXPECT_EQ(wordsOf(some).counter->strongCount(), 1);
}

TEST_F(SharedPtrTest, ResetAndSwap) {
    SharedPtr<Base> first(new Base);
    SharedPtr<Base> second;
    Base* object = first.get();

    first.swap(second);
    EXPECT_EQ(second.get(), object);
    EXPECT_FALSE(first);

    second.reset(new Base);
    EXPECT_EQ(alive, 1);
    second.reset();
    EXPECT_EQ(alive, 0);
}

TEST_F(SharedPtrTest, DestructorLetsThePointeesExceptionOut) {
    const auto drop = [] { const SharedPtr<Base> handle(new FailsToClose); };

    EXPECT_THROW(drop(), std::runtime_error);
    EXPECT_EQ(alive, 0);
}

TEST_F(SharedPtrTest, AssignmentTakesTheNewBeforeTheOldThrows) {
    SharedPtr<Base> handle(new FailsToClose);
    const SharedPtr<Base> other(new Base);

    EXPECT_THROW(handle = other, std::runtime_error);

    EXPECT_EQ(handle, other);
    EXPECT_EQ(wordsOf(other).counter->strongCount(), 2);
}

TEST_F(SharedPtrTest, ResetThatThrowsLeavesNull) {
    SharedPtr<Base> handle(new FailsToClose);

    EXPECT_THROW(handle.reset(), std::runtime_error);

    EXPECT_FALSE(handle);
    EXPECT_EQ(alive, 0);
}

class CounterTest : public SharedPtrTest {
  protected:
    CounterTest() {
        counter->addWeak();
        counter->addStrong();
        counter->addWeak();  // the test's own
    }
    ~CounterTest() override { counter->releaseWeak(); }

    IPointerCounter* counter = new _Private::_Counter::_CounterImp<Base>(new Base);
};

TEST_F(CounterTest, DisposedCounterReportsZeroAndRefusesNewReferences) {
    counter->releaseStrong();

    EXPECT_EQ(alive, 0);
    EXPECT_EQ(counter->strongCount(), 0);
    EXPECT_FALSE(counter->addStrong());
    EXPECT_EQ(counter->strongCount(), 0);
    EXPECT_EQ(counter->weakCount(), 1);
}

TEST_F(CounterTest, PointeeLivesUntilTheLastStrongReference) {
    EXPECT_TRUE(counter->addStrong());
    EXPECT_EQ(counter->strongCount(), 2);

    counter->releaseStrong();
    EXPECT_EQ(alive, 1);
    counter->releaseStrong();
    EXPECT_EQ(alive, 0);
}

struct CountsItself : DefaultPointerCounterImp {
    explicit CountsItself(bool& ended) : ended_(ended) {}
    CountsItself(const CountsItself&) = delete;
    CountsItself& operator=(const CountsItself&) = delete;
    ~CountsItself() override { ended_ = true; }
    void dispose() override { throw std::runtime_error("cannot dispose"); }

  private:
    bool& ended_;
};

TEST_F(SharedPtrTest, CounterEndsWithTheLastWeakReference) {
    bool ended = false;
    IPointerCounter* counter = new CountsItself(ended);
    counter->addWeak();
    counter->addWeak();

    counter->releaseWeak();
    EXPECT_FALSE(ended);
    counter->releaseWeak();
    EXPECT_TRUE(ended);
}

TEST_F(SharedPtrTest, CounterEndsEvenIfDisposingThrows) {
    bool ended = false;
    IPointerCounter* counter = new CountsItself(ended);
    counter->addWeak();
    counter->addStrong();

    EXPECT_THROW(counter->releaseStrong(), std::runtime_error);

    EXPECT_TRUE(ended);
}

struct OwnedObject : DefaultPointerCounterImp::IOwned {
    OwnedObject() { ++alive; }
    OwnedObject(const OwnedObject&) = delete;
    OwnedObject& operator=(const OwnedObject&) = delete;
    ~OwnedObject() override { --alive; }
    void retained() override {}
};

struct OwningCounter : DefaultPointerCounterImp {
    OwningCounter() { owned_ = new OwnedObject; }
};

TEST_F(SharedPtrTest, DefaultCounterDeletesWhatItOwns) {
    IPointerCounter* counter = new OwningCounter;
    counter->addWeak();
    counter->addStrong();
    EXPECT_EQ(alive, 1);

    counter->releaseStrong();

    EXPECT_EQ(alive, 0);
}

}  // namespace
}  // namespace norvane::platform::core::memory
