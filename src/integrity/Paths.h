// The dotted paths of what findings are about.
#pragma once

#include <string>

#include "integrity/Findings.h"
#include "integrity/Tree.h"

namespace norvane::platform::data::integrity {

// A path longer than this many bytes has its middle left out, or else findings in a deep tree would take
// memory in proportion to its depth each.
inline constexpr std::size_t kLongestPath = 1024;

// Fills in the path of each finding that is about an entity below the root, or about a record that belongs to
// one. Reads the names of those and of what stands above them, once each.
void fillPaths(IDataStore& store, const Tree& tree, std::vector<Finding>& findings);

std::string utf8Of(std::u16string_view name);
// The name of an entity in UTF-8; empty if the store does not give it.
std::string nameOf(IDataStore& store, std::uint32_t offset);

// The path, its middle left out if it is too long.
std::string shortened(const std::string& path);

}  // namespace norvane::platform::data::integrity
