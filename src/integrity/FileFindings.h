// What is wrong with a store's file, its records' meaning aside.
#pragma once

#include <string>
#include <vector>

#include "integrity/Findings.h"
#include "norvane/platform/core/storage/datastore/StoreFile.h"

namespace norvane::platform::data::integrity {

// Throws `StoreError` notFound and notReadable only.
std::vector<Finding> fileFindings(const std::string& path);

}  // namespace norvane::platform::data::integrity
