#pragma once

#include <cstdint>

#include "norvane/platform/core/memory/SharedPtr.h"
#include "norvane/platform/core/string/WideString.h"
#include "norvane/platform/data/Export.h"

namespace norvane::platform::core::storage::datastore {
class IDataStore;
}

/// The names of the core library that every public interface of the data library uses, and the rules that all
/// of them share.
///
/// A text argument is taken by value. A WideString that was never given text counts as the empty text where a
/// name or a path is wanted; where it means something else, the operation says so.
///
/// Three kinds of text occur. A *name* is compared whole, dots included. A *dotted path* is names joined by
/// ".", without the root's name and without any escape, so that a name that holds a "." is never found
/// through a path. A *class text* is dotted paths of type tables joined by ";".
///
/// A raw pointer is borrowed for the length of the call. Null, and an object that does not come from this
/// library, give the operation's refusal value. A SharedPtr result owns its whole object, which lives until
/// the last SharedPtr to it goes; the store must outlive it.
///
/// Counts and starts of values are elements; only what is called bytes or size is bytes.
///
/// No operation throws, except std::bad_alloc and what the store or another object of the host throws. There
/// is no undo; guards and memory are released on the way out. Destructors are included: closing a handle
/// writes to the store.
///
/// "The guard" is IDataStore::lock of the object's own store. Operations take it first and give it back last.
namespace norvane::platform::data {

using core::memory::SharedPtr;
using core::storage::datastore::IDataStore;
using core::string::WideString;

}  // namespace norvane::platform::data
