// Makes a store sound, by as few changes as can be.
#pragma once

#include <string>
#include <vector>

#include "norvane/platform/core/storage/datastore/IDataStore.h"
#include "norvane/platform/data/integrity/Integrity.h"

namespace norvane::platform::data::integrity {

struct MendOptions {
    // The root was made anew just now: what names it as its parent goes below it.
    bool isRootNew = false;
    // The group for what nothing leads to; none if empty.
    std::u16string recovered;
};

// Changes what `check` calls an error, and answers what that was. Record 0 must be there, whatever it is. A
// record that readers take for one stays, and reads as before.
std::vector<Finding> mend(IDataStore& store, const MendOptions& options);

// The bytes of a root without children.
std::string newRoot();

}  // namespace norvane::platform::data::integrity
