// What is done to an entity with all below it. Nothing here recurses: a document may be nested as deep as
// memory allows. In a damaged store an entity can stand below itself or in two lists; no walk enters it
// twice.
#pragma once

#include <cstdint>

#include "records/Records.h"

namespace norvane::platform::data::Metadata {

// Whether no object is open on the entity or on anything below it.
bool isSubtreeClosed(IDataStore* store, std::uint32_t offset);

// Removes all that the entity refers to: localised strings, children, defaults. The record itself stays as it
// is, and is the caller's to change or remove.
void eraseSubtree(IDataStore* store, std::uint32_t offset);

// Removes the children that the owner's list record names, with all below them, and then the list itself.
void eraseListedChildren(IDataStore* store, std::uint32_t owner, std::uint32_t listOffset);

// What a copy gets that the source does not have.
struct CloneChanges {
    bool setsParent = false;
    std::uint32_t parent = 0;
    std::uint8_t addedFlags = 0;  // for the entity and all below it
};

// The records that an entity refers to.
struct Satellites {
    std::uint32_t locale = IDataStore::BADOFF;
    std::uint32_t list = IDataStore::BADOFF;
    std::uint32_t defaults = IDataStore::BADOFF;
};

// Copies the entity with all below it; gives the copy's offset, BADOFF when there is no primitive, table or
// container to copy. Appends in the order entity, localised strings, list, children, defaults.
std::uint32_t cloneSubtree(IDataStore* source, std::uint32_t offset, IDataStore* target,
                           const CloneChanges& changes = {});

// The same by what an open object knows of its entity, which another object may have added to since.
std::uint32_t cloneSubtree(IDataStore* source, std::uint32_t offset, const Satellites& known,
                           IDataStore* target);

}  // namespace norvane::platform::data::Metadata
