// The objects of a store, by path.
#pragma once

#include <cstdint>
#include <string>

#include "Names.h"
#include "Objects.h"
#include "Options.h"
#include "RootAsGroup.h"

namespace qvt {

// For a store that has no object at all, such as one for a document whose outermost element was skipped.
Failure nothingIn(const std::string& name);

// A store as a tree of objects with the root at its top. Where the outermost object of a document is no root,
// it stands below a nameless group that is no part of any path.
class Tree {
  public:
    // The store is borrowed; `name` is for messages.
    Tree(IDataStore& store, std::string name);

    // What stands for the root, and whether the store really has one.
    const Object& root() const { return root_; }
    bool hasRoot() const { return view_.hasRoot(); }
    bool isRoot(const Object& object) const { return object.container == root_.container; }
    std::string rootName() const;
    std::uint32_t version() { return view_.version(); }
    const std::string& name() const { return name_; }

    // The object at a path; for the empty path the outermost one. Nothing if no object has just this path.
    Object find(const std::string& path) const;
    // The same; nothing there is a Failure that says how far the path leads, and what may have been meant.
    Object get(const std::string& path) const;

    // The path of an object that a path which leads nowhere may have been meant for, or nothing. Looks at the
    // siblings of its first name that is not there, and at no more than some thousands of these.
    std::string meant(const std::string& path) const;

    // The path as it is given on the command line.
    std::string pathOf(const Object& object) const;

    // Opens the root's handle anew, which then sees what others have changed.
    void refresh();

  private:
    std::string longestPrefix(const std::string& path) const;
    std::string withoutRootName(const std::string& path) const;

    std::string name_;
    RootAsGroup view_;
    Object root_;
    std::size_t prefix_;  // of what the library calls a path: the root's name
};

}  // namespace qvt
