// Models in files on a disk that fails: at its first call, at its second, and so on, over every operation of
// the public model with its commit, and over the reading of real documents. The file holds the state before
// or the state after, and the same commit goes through when the disk is well again.
#include <algorithm>
#include <fstream>
#include <iterator>
#include <thread>

#include "contract/Operations.h"
#include "norvane/platform/core/io/MemoryReader.h"
#include "norvane/platform/core/storage/datastore/FileDataStore.h"
#include "norvane/platform/data/format/xml/IXMLFrontEnd.h"
#include "support/FaultyVfs.h"
#include "support/Folder.h"
#include "support/Torture.h"

namespace norvane::platform::test {
namespace {

using core::storage::datastore::FileDataStore;
using core::storage::datastore::StoreError;
using Fault = FaultyVfs::Fault;

constexpr Fault kFaults[] = {Fault::inputOutput, Fault::noSpace, Fault::interrupted, Fault::shortWrite};

class FailingDisk : public ::testing::Test {
  protected:
    ~FailingDisk() noexcept override { disk.heal(); }

    Contents fileContents() const {
        FileDataStore::Options options;
        options.access = FileDataStore::Access::readOnly;
        FileDataStore reader(path, options);
        return closedContentsOf(reader);
    }

    // Commits on the failing disk, then again when it is well.
    void commitTwice(FileDataStore& store, const Contents& before) {
        bool hasFailed = false;
        try {
            store.commit();
        } catch (const StoreError&) {
            hasFailed = true;
        }
        disk.heal();
        const Contents after = closedContentsOf(store);
        const Contents found = fileContents();
        EXPECT_TRUE(found == after || (hasFailed && found == before));
        store.commit();
        EXPECT_TRUE(fileContents() == after);
        std::thread([&store] { delete store.lock(); }).join();
    }

    FaultyVfs& disk = FaultyVfs::install();
    const Folder folder;
    const std::string path = folder / "model.qvt";
};

class FailingDiskOperationTest : public FailingDisk, public ::testing::WithParamInterface<Operation> {
  protected:
    // With the given call of the disk failing. False when there are not that many.
    bool commitsWithFailure(std::uint64_t call) {
        std::filesystem::remove(path);
        FileDataStore store(path);
        Model model(store);
        store.commit();
        const Contents before = closedContentsOf(store);

        disk.failAt(call, kFaults[call % std::size(kFaults)]);
        GetParam().run(model);
        const bool isChanged = store.hasChanges();
        commitTwice(store, before);
        const bool wasReached = disk.callCount() >= call;

        model.closeAll();
        EXPECT_EQ(openCountsOf(store), 0u);
        return isChanged && wasReached;
    }
};

// In the short form, each operation takes some calls and another one others.
TEST_P(FailingDiskOperationTest, CommitsAllOfItOrNothing) {
    static std::uint64_t turn = 0;
    const auto step = static_cast<std::uint64_t>(rounds(13, 1));
    for (std::uint64_t call = 1 + turn++ % step; commitsWithFailure(call) && !HasFailure(); call += step) {
    }
}

INSTANTIATE_TEST_SUITE_P(All, FailingDiskOperationTest, ::testing::ValuesIn(allOperations()),
                         [](const auto& each) { return each.param.name + std::to_string(each.index); });

class FailingDiskImportTest : public FailingDisk, public ::testing::WithParamInterface<const char*> {
  protected:
    static void read(IDataStore& store, const std::string& name) {
        std::ifstream file(std::string(QVT_DOCUMENTS) + "/" + name, std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(file), {}};
        ASSERT_FALSE(bytes.empty());
        const SharedPtr<ISchemaLocator> locator(ISchemaLocator::make(&store));
        core::io::MemoryReader reader{std::string_view(bytes)};
        data::format::xml::IXMLFrontEnd::parse(&store, &reader, locator.get(), nullptr, nullptr);
    }

    // A commit that has failed is tried again; a document that could not be read whole is read anew.
    static void finish(FileDataStore& store, const Contents& before) {
        try {
            store.commit();
        } catch (const StoreError&) {
            store.rollback();
            EXPECT_TRUE(closedContentsOf(store) == before);
            EXPECT_EQ(openCountsOf(store), 0u);
            read(store, GetParam());
        }
        EXPECT_FALSE(store.hasChanges());
    }
};

TEST_P(FailingDiskImportTest, CommitsAllOfItOrNothing) {
    FileDataStore store(path);
    read(store, "pump.lib.xml");
    const Contents before = fileContents();
    store.close();
    std::filesystem::rename(path, folder / "prepared.qvt");

    std::uint64_t tries = 0;
    for (std::uint64_t call = 1;; call += static_cast<std::uint64_t>(rounds(17, 1)), ++tries) {
        std::filesystem::copy_file(folder / "prepared.qvt", path,
                                   std::filesystem::copy_options::overwrite_existing);
        FileDataStore again(path);
        disk.failAt(call, kFaults[tries % std::size(kFaults)]);
        try {
            read(again, GetParam());
        } catch (const StoreError&) {  // of the commit at its end
        }
        const bool wasReached = disk.callCount() >= call;
        disk.heal();
        const Contents found = fileContents();
        finish(again, before);
        EXPECT_TRUE(found == before || found == fileContents());
        EXPECT_EQ(openCountsOf(again), 0u);
        if (!wasReached || HasFailure()) break;
    }
    EXPECT_GT(tries, 3u);
}

INSTANTIATE_TEST_SUITE_P(Documents, FailingDiskImportTest,
                         ::testing::Values("ifc-small.xml", "gltf-small.xml"),
                         [](const auto& each) { return each.index == 0 ? "Buildings" : "Scenes"; });

}  // namespace
}  // namespace norvane::platform::test
