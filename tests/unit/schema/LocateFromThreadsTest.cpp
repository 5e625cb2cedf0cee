// Several threads, one locator.
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "unit/schema/Types.h"

namespace norvane::platform::test {
namespace {

using data::metadata::kInt32;

constexpr int kThreads = 4;
constexpr int kTypes = 64;

std::u16string typeName(int number) {
    const std::string digits = std::to_string(number);
    return u"type" + std::u16string(digits.begin(), digits.end());
}

void onThreads(const std::function<void(int)>& work) {
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) threads.emplace_back(work, i);
    for (std::thread& thread : threads) thread.join();
}

class LocateFromThreads : public testing::Test {
  public:
    ~LocateFromThreads() noexcept override = default;

  protected:
    void SetUp() override {
        Builder build(store_);
        for (int i = 0; i < kTypes; ++i) build.primitive(build.table(0, typeName(i)), kInt32, u"n");
    }

    MemoryDataStore store_;
    SharedPtr<ISchemaLocator> locator_ = ISchemaLocator::make(&store_);
};

TEST_F(LocateFromThreads, CachedNamesNeedNoGuard) {
    std::vector<IStructLayout*> layouts;
    for (int i = 0; i < kTypes; ++i) layouts.push_back(locator_->locate(typeName(i).c_str())->layout());
    std::atomic<int> wrong = 0;

    onThreads([&](int seed) {
        for (int i = 0; i < 5000; ++i) {
            const int number = (i * 7 + seed) % kTypes;
            const std::u16string names = typeName(number) + u";" + typeName((number + 1) % kTypes);
            const auto schema = locator_->locate(names.c_str());
            const bool isRight = schema && schema->layout() == layouts[static_cast<std::size_t>(number)] &&
                                 schema->layout()->field(u"n") && layoutNames(schema).size() == 2 &&
                                 schema->name() == typeName(number).c_str();
            if (!isRight) ++wrong;
        }
    });

    EXPECT_EQ(wrong, 0);
}

// A miss changes open counts, so it runs under the store's guard, which the caller takes.
TEST_F(LocateFromThreads, MissesUnderTheCallersGuardMayRunBesideHits) {
    std::atomic<int> wrong = 0;

    onThreads([&](int seed) {
        for (int i = 0; i < kTypes; ++i) {
            const int number = (i + seed * kTypes / kThreads) % kTypes;
            const std::unique_ptr<IDataStore::Guard> guard(store_.lock());
            const auto schema = locator_->locate(typeName(number).c_str());
            if (!schema || schema->layout()->fieldCount() != 1) ++wrong;
            if (locator_->locate(u"unknown")) ++wrong;
        }
        for (int i = 0; i < 1000; ++i)
            if (!locator_->locate(typeName(seed % kTypes).c_str())) ++wrong;
    });

    EXPECT_EQ(wrong, 0);
    locator_.reset();
    for (int i = 0; i < kTypes; ++i)
        EXPECT_EQ(openCount(store_, Metadata::resolvePath(&store_, 0, typeName(i))), 0u);
}

TEST_F(LocateFromThreads, SchemasOfOneLayoutAreLetGoAnywhere) {
    const auto schema = locator_->locate(u"type0;type1");

    onThreads([&](int) {
        for (int i = 0; i < 2000; ++i) {
            const SharedPtr<ISchema> copy = schema;
            EXPECT_EQ(copy->layout(), schema->layout());
        }
    });
}

// Each thread has its own stores and takes them in and out, while hits go on in all of them.
TEST_F(LocateFromThreads, RegistrationMayRunBesideHits) {
    IStructLayout* const layout = locator_->locate(u"type0")->layout();
    std::atomic<int> wrong = 0;

    onThreads([&](int) {
        MemoryDataStore own;
        Builder(own).container(0, u"nothing");
        for (int i = 0; i < 300; ++i) {
            locator_->addStore(&own);
            if (locator_->locate(u"type0")->layout() != layout) ++wrong;
            if (!locator_->removeStore(&own)) ++wrong;
        }
    });

    EXPECT_EQ(wrong, 0);
}

}  // namespace
}  // namespace norvane::platform::test
