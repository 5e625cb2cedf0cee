// Every operation of the public model on a store whose disk fails at its first look, at its second, and so
// on until the operation gets through: each time the store is as before or as after, all handles can go while
// the disk is still failing, no count stays up, and the guard is free.
#include <algorithm>
#include <thread>

#include "contract/Operations.h"
#include "norvane/platform/core/io/MemoryReader.h"
#include "norvane/platform/data/format/xml/IXMLFrontEnd.h"
#include "support/MemoryBackend.h"

namespace norvane::platform::test {
namespace {

// Hardly any memory: what is not open has to be fetched for each operation.
OverlayOptions forgetful() {
    OverlayOptions options;
    options.memoryLimit = 100;
    return options;
}

void expectGuardIsFree(IDataStore& store) {
    std::thread([&store] { delete store.lock(); }).join();
}

class FailingBackendTest : public ::testing::TestWithParam<Operation> {
  protected:
    // What the operation makes of a model that is not disturbed.
    static Contents resultOf(const Operation& operation) {
        MemoryBackend backend;
        OverlayStore store(backend);
        Model model(store);
        operation.run(model);
        Contents contents = closedContentsOf(store);
        model.closeAll();
        return contents;
    }

    // With a failure at the n-th look at the disk. False when it got through without one.
    bool failsAt(std::uint64_t n, const Contents& after) {
        MemoryBackend backend;
        OverlayStore store(backend, forgetful());
        Model model(store);
        store.overlay.commit();
        const Contents before = closedContentsOf(store);

        bool hasFailed = false;
        backend.failAt(n);
        try {
            GetParam().run(model);
        } catch (const StoreError&) {
            hasFailed = true;
        }
        backend.calm();
        const Contents found = closedContentsOf(store);
        backend.failAll();
        model.closeAll();
        backend.calm();

        EXPECT_TRUE(found == before || found == after);
        EXPECT_TRUE(!hasFailed || found == before);
        expectGuardIsFree(store);
        EXPECT_EQ(openCountsOf(store), 0u);
        if (hasFailed) store.overlay.commit();
        return hasFailed;
    }
};

TEST_P(FailingBackendTest, LeavesTheStoreAsBeforeOrAsAfter) {
    const Contents after = resultOf(GetParam());
    std::uint64_t n = 1;
    while (failsAt(n, after) && !HasFailure()) ++n;
    EXPECT_FALSE(HasFailure()) << "at look " << n;
    EXPECT_TRUE(GetParam().name != "copyDotted" || n > 5) << "hardly anything was fetched: " << n;
}

INSTANTIATE_TEST_SUITE_P(All, FailingBackendTest, ::testing::ValuesIn(allOperations()),
                         [](const auto& each) { return each.param.name + std::to_string(each.index); });

// Documents are read without a guard, and the reader of documents passes over what a store throws.
class FailingImportTest : public ::testing::Test {
  protected:
    ~FailingImportTest() noexcept override = default;

    static void parse(IDataStore& store, const char* document) {
        const SharedPtr<ISchemaLocator> locator(ISchemaLocator::make(&store));
        core::io::MemoryReader reader{std::string_view(document)};
        data::format::xml::IXMLFrontEnd::parse(&store, &reader, locator.get(), nullptr, nullptr);
    }

    static constexpr const char* kFirst =
        "<root name=\"plant\"><group name=\"lib\"><table name=\"Pump\"><double name=\"flow\" "
        "unit=\"m\">1</double>"
        "<table name=\"inner\"><string name=\"s\">text</string></table></table></group>"
        "<group name=\"a\"><int name=\"i\">1</int></group></root>";
    static constexpr const char* kSecond =
        "<root name=\"plant\"><group name=\"b\" class=\"lib.Pump\"><double name=\"flow\">2</double></group>"
        "<group name=\"c\" class=\"lib.Pump\"><name locale=\"en\">third</name></group></root>";
};

TEST_F(FailingImportTest, HalfADocumentIsNeverCommitted) {
    std::uint64_t failures = 0;
    for (std::uint64_t n = 1;; ++n) {
        MemoryBackend backend;
        OverlayStore store(backend, forgetful());
        parse(store, kFirst);
        ASSERT_EQ(backend.commits(), 1u);
        const auto before = backend.records();
        openCountsOf(store);  // leaves nothing of the document in memory

        bool hasFailed = false;
        backend.failAt(n);
        try {
            parse(store, kSecond);
            store.flush();
        } catch (const StoreError&) {
            hasFailed = true;
        }
        backend.calm();

        if (!hasFailed) {
            EXPECT_EQ(backend.commits(), 2u);
            break;
        }
        ++failures;
        EXPECT_EQ(backend.records(), before) << "at look " << n;
        store.overlay.rollback();
        EXPECT_EQ(openCountsOf(store), 0u) << "at look " << n;
        EXPECT_FALSE(store.overlay.hasChanges());
        parse(store, kSecond);
        EXPECT_EQ(backend.commits(), 2u);
        expectGuardIsFree(store);
        if (HasFailure()) break;
    }
    EXPECT_GT(failures, 5u);
}

}  // namespace
}  // namespace norvane::platform::test
