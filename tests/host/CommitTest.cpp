#include <gtest/gtest.h>

#include <filesystem>
#include <stdexcept>
#include <string>

#include "qvt/file.hpp"
#include "qvt/qvt.hpp"
#include "support/Folder.h"

namespace {

class HostCommit : public testing::Test {
  protected:
    // What another one finds in the file now.
    bool isInFile(const char* name) {
        qvt::FileStore::Options options;
        options.access = qvt::FileStore::Access::readOnly;
        qvt::FileStore reader(path, options);
        return static_cast<bool>(qvt::find(reader, name));
    }

    norvane::platform::test::Folder folder;
    std::string path = (folder.path() / "model.qvt").string();
    qvt::FileStore store{path};
};

TEST_F(HostCommit, WorkComesIntoTheFileAsOne) {
    EXPECT_TRUE(qvt::commit(store, [&] {
        qvt::top(store, "a");
        store.flush();
        EXPECT_FALSE(isInFile("a")) << "not before its end";
        qvt::top(store, "b");
    }));
    EXPECT_TRUE(isInFile("a"));
    EXPECT_TRUE(isInFile("b"));
    EXPECT_FALSE(store.hasChanges());
}

TEST_F(HostCommit, WorkThatIsNotKeptHasNotBeen) {
    EXPECT_TRUE(qvt::commit(store, [&] { qvt::top(store, "a"); }));
    EXPECT_FALSE(qvt::commit(store, [&] {
        qvt::top(store, "a").make("x", 1);
        qvt::top(store, "b");
        return false;
    }));
    EXPECT_FALSE(qvt::find(store, "a")["x"]);
    EXPECT_FALSE(qvt::find(store, "b"));
    EXPECT_FALSE(store.hasChanges());
}

TEST_F(HostCommit, WhatWasChangedBeforeStaysWhenWorkIsNotKept) {
    qvt::top(store, "a");
    EXPECT_FALSE(qvt::commit(store, [&] {
        qvt::top(store, "b");
        return false;
    }));
    EXPECT_TRUE(isInFile("a"));
    EXPECT_FALSE(isInFile("b"));
}

TEST_F(HostCommit, WorkThatThrowsHasNotBeen) {
    EXPECT_TRUE(qvt::commit(store, [&] { qvt::top(store, "a"); }));
    const auto work = [&] {
        qvt::top(store, "b").make("x", 1);
        throw std::runtime_error("no");
    };
    EXPECT_THROW(qvt::commit(store, work), std::runtime_error);
    EXPECT_FALSE(qvt::find(store, "b"));
    EXPECT_TRUE(qvt::commit(store, [&] { return static_cast<bool>(qvt::top(store, "c")); }))
        << "and it goes on";
    EXPECT_TRUE(isInFile("c"));
    EXPECT_FALSE(isInFile("b"));
}

TEST_F(HostCommit, BrokenDocumentLeavesTheStoreAsItWas) {
    EXPECT_TRUE(qvt::commit(store, [&] { qvt::top(store, "a"); }));
    EXPECT_FALSE(qvt::commit(store, [&] {
        return static_cast<bool>(qvt::importText(qvt::top(store, "a"), "<group name='g'><group name='b'>"));
    }));
    EXPECT_FALSE(qvt::find(store, "a.b"));
}

}  // namespace
