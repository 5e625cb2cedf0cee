// A document with all that is needed to look up its classes.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "Input.h"
#include "Messages.h"
#include "Names.h"
#include "Objects.h"
#include "Options.h"
#include "norvane/platform/core/storage/datastore/MemoryDataStore.h"

namespace qvt {

using core::storage::datastore::MemoryDataStore;

// For a document whose outermost element was reported and skipped.
Failure nothingRead(const std::string& file);

// A store for one document and a locator that knows this store and those of the libraries.
struct Lookup {
    explicit Lookup(const std::vector<std::unique_ptr<MemoryDataStore>>& libraries);

    MemoryDataStore store;
    SharedPtr<ISchemaLocator> locator;
};

// What one run of the tool reads: the documents of --schemas, each into a store of its own, then the document
// itself.
class Session {
  public:
    // Reads the libraries and loads the document, but does not parse it yet.
    explicit Session(const Options& options);

    const Input& input() const { return input_; }
    Messages& messages() { return messages_; }
    const std::vector<std::unique_ptr<MemoryDataStore>>& libraries() const { return libraries_; }
    // The status of a run that did all it was asked to do.
    int status() const { return messages_.hasReports() ? kNo : kDone; }

  private:
    void readLibrary(const std::string& path);

    Messages messages_;
    std::vector<std::unique_ptr<MemoryDataStore>> libraries_;
    Input input_;
};

// The document as records, just as a host that parses it into an empty store has it.
class RecordsView {
  public:
    // `isFirst` is false where the same session has read the document before; nothing is reported then.
    explicit RecordsView(Session& session, bool isFirst = true);

    MemoryDataStore& store() { return lookup_.store; }
    ISchemaLocator* locator() { return lookup_.locator.get(); }
    // Closes the tables that the locator keeps open, so that the records are at rest.
    void closeLocator() { lookup_.locator.reset(); }

  private:
    Lookup lookup_;
};

// The document as objects. The public interface has handles on containers and properties but none on the
// root, so the document is read into a group that stands for its root: as record 0 of its store, all paths
// begin at it. A document whose outermost element is not a root becomes the one child of that group; the
// classes and targets that it names are looked up in its records as they are without that group.
class ObjectsView {
  public:
    // `isFirst` as for RecordsView.
    explicit ObjectsView(Session& session, bool isFirst = true);

    ISchemaLocator* locator() { return lookup_.locator.get(); }
    // Where links of the document lead; null for the store that they are in.
    IDataStore* linkStore() const { return records_ ? &records_->store() : nullptr; }

    // What stands for the root, and whether the document really has one.
    const Object& root() const { return root_; }
    bool hasRoot() const { return element_.isRoot(); }
    const std::string& rootName() const { return element_.name; }
    std::uint32_t version() { return lookup_.store.version(); }

    // The object at a path; for the empty path the outermost one. Nothing if no object has just this path.
    Object find(const std::string& path) const;
    // The same; nothing there is a Failure that says how far the path leads.
    Object get(const std::string& path) const;
    bool isRoot(const Object& object) const { return object.container == root_.container; }

    // The path as it is given on the command line.
    std::string pathOf(const Object& object) const;

  private:
    void readNonRoot(Session& session, bool isFirst);
    std::string longestPrefix(const std::string& path) const;

    std::string file_;
    DocumentElement element_;
    SharedPtr<RecordsView> records_;  // only of a document without a root
    Lookup lookup_;
    Object root_;
};

}  // namespace qvt
