// Changing a file through the public interface, in one commit or not at all.
#pragma once

#include <string>

#include "Classes.h"
#include "FileStores.h"
#include "Messages.h"
#include "Options.h"
#include "Sources.h"
#include "Tree.h"

namespace qvt {

// A file that is open for writing, with the right to be its only writer. What was changed through it is in
// the file after `commit`, and gone without it.
class Editing {
  public:
    // A store without any object is a Failure: there is nothing to edit.
    Editing(const std::string& path, const Options& options);

    const std::string& name() const { return name_; }
    IDataStore& store() { return store_; }
    Tree& tree() { return *tree_; }
    ISchemaLocator* locator() { return locator_.get(); }
    ClassPlaces classes() { return {name_, locator(), libraries_.storesWith(store_)}; }
    const Libraries& libraries() const { return libraries_; }
    Messages& messages() { return messages_; }

    // All handles must be gone: what they still have to store belongs to the commit. The tree goes here.
    void commit();
    // The status of a run that did all it was asked to do.
    int status() const { return messages_.hasReports() ? kNo : kDone; }

  private:
    std::string name_;
    Messages messages_;
    Libraries libraries_;
    FileDataStore store_;
    FileDataStore::Transaction transaction_;
    SharedPtr<ISchemaLocator> locator_;
    SharedPtr<Tree> tree_;
};

// A path cut at its last ".".
struct Spot {
    // A path that ends in no name is a Failure.
    explicit Spot(const std::string& path);

    std::string parent;
    std::string name;
};

// An edit that cannot be.
Failure refused(const Tree& tree, const std::string& words);

// The object that is to hold something new at that path: a container or a table. A Failure if there is none,
// and if something is at the path.
Object parentFor(const Tree& tree, const std::string& path);

// As messages name it: its path, or that it is the root.
std::string called(const Tree& tree, const Object& object);

// Takes a child and all below it away.
void removeFrom(Tree& tree, const std::string& path);

// Notes that an object has changed: without that, what came from a class is left out of documents.
void touch(const Tree& tree, const std::string& path);

}  // namespace qvt
