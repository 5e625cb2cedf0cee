// Opening by what a record is, and walking paths.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "model/Set.h"

namespace norvane::platform::data::Metadata {

// A primitive, table or container by the record's kind byte; null for every other record.
Owned<Item> openItem(IDataStore* store, std::uint32_t offset, Opening opening = Opening::handle);

// A root, table or container by the record's kind byte; null for every other record. Record 0 is opened so:
// it is not a root when a document without one was read into an empty store.
Owned<Set> openSet(IDataStore* store, std::uint32_t offset, Opening opening = Opening::handle);

// The values of a list record; empty for BADOFF and for a record that is no list.
std::vector<std::uint32_t> listedChildren(IDataStore* store, std::uint32_t listOffset);

// The first child of that name in the set's stored list, or BADOFF. Keeps nothing but what the store shares.
std::uint32_t findChild(IDataStore* store, std::uint32_t setOffset, std::u16string_view name);

// The same in a list record; BADOFF where there is none.
std::uint32_t findListed(IDataStore* store, std::uint32_t listOffset, std::u16string_view name);

// Walks from the record at `start` through children named by the path's parts (cut at every "."; an empty
// part is a name too). BADOFF when a name is missing. A walk that meets a primitive ends there: with exactly
// one part left it gives the primitive itself, with more it gives BADOFF, so callers look at the kind they
// get.
std::uint32_t resolvePath(IDataStore* store, std::uint32_t start, std::u16string_view path);

}  // namespace norvane::platform::data::Metadata
