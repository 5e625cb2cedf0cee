// Stands in programs that give the offset of no record another value.
#include <gtest/gtest.h>

#include "norvane/platform/core/storage/datastore/IDataStore.h"

namespace norvane::platform::core::storage::datastore {
namespace {

TEST(OtherBadoffTest, ValueOfTheProgramIsInUse) {
    EXPECT_NE(IDataStore::BADOFF, 0xFFFFFFFFu);
    EXPECT_NE(IDataStore::BADOFF, 0u);
}

}  // namespace
}  // namespace norvane::platform::core::storage::datastore
