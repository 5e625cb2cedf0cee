// qvt import DOC... STORE
#include <algorithm>
#include <vector>

#include "Editing.h"
#include "Input.h"
#include "NewFile.h"
#include "NewValues.h"
#include "Progress.h"
#include "Reading.h"
#include "Verbs.h"
#include "norvane/platform/core/storage/datastore/MemoryDataStore.h"

namespace qvt {

namespace {

using core::storage::datastore::MemoryDataStore;

// Documents into one store.
class Import {
  public:
    Import(FileDataStore& store, const std::string& file, const Libraries& libraries, Messages& messages,
           const Options& options)
        : store_(store),
          file_(file),
          libraries_(libraries),
          messages_(messages),
          options_(options),
          locator_(libraries.locatorFor(store)) {}

    // What ends the reading of a document is a Failure, or, when going on was asked for, only told.
    void read(const Input& input) {
        try {
            readOrFail(input);
        } catch (const Failure& failure) {
            if (!options_.keepsGoing) throw;
            Messages::fail(failure.what());
            worst_ = std::max(worst_, failure.status());
        }
    }

    Status status() const { return worst_ != kDone ? worst_ : messages_.hasReports() ? kNo : kDone; }

  private:
    // The first document of a store is its contents; others are read into what is there.
    void readOrFail(const Input& input) {
        if (store_.size() == 0 && options_.into.empty()) return reading().into(store_, input);
        Tree tree(store_, file_);
        const Object into = placeIn(tree);
        if (standsFor(outermostElement(input.bytes())))
            readChildren(input, *into.container);
        else
            readObject(input, tree, into);
    }

    Reading reading() { return {*locator_, messages_}; }

    Object placeIn(const Tree& tree) const {
        if (options_.into.empty() && !tree.hasRoot())
            throw refused(tree, "its outermost object is no root; --into says where to read a document into");
        Object into = options_.into.empty() ? tree.root() : tree.get(options_.into);
        if (!into.container) throw refused(tree, options_.into + " is no container");
        return into;
    }

    // Whether what is in an object goes into the container, or the object itself does.
    bool standsFor(const std::string& element) const {
        if (options_.into.empty()) return element == "root";
        return element != "table" && typeNamed(element) == 0;
    }

    // The store keeps its own version.
    void readChildren(const Input& input, IContainer& into) {
        const std::uint32_t version = store_.version();
        reading().into(into, input);
        store_.setVersion(version);
    }

    void readObject(const Input& input, const Tree& tree, const Object& place) {
        IContainer& into = *place.container;
        MemoryDataStore store;
        const SharedPtr<ISchemaLocator> locator = libraries_.locatorFor(store);
        locator->addStore(&store_);
        Reading(*locator, messages_).into(store, input);
        if (store.size() == 0) return;  // it was reported and skipped
        Tree source(store, input.name());
        const Object object = source.get("");
        if (object.primitive() && tree.isRoot(place))
            throw refused(tree, "no primitive can stand directly below the root");
        if (!(object.container ? into.add(object.container) : into.add(object.property)))
            throw refused(tree, nameOf(object) + " is there already");
    }

    FileDataStore& store_;
    const std::string& file_;
    const Libraries& libraries_;
    Messages& messages_;
    const Options& options_;
    SharedPtr<ISchemaLocator> locator_;
    Status worst_ = kDone;
};

Status readAll(const std::vector<Input>& inputs, FileDataStore& store, const Libraries& libraries,
               Messages& messages, const Options& options) {
    FileDataStore::Transaction transaction(store);
    Status status = kDone;
    {
        Import import(store, options.store, libraries, messages, options);
        for (const Input& input : inputs) import.read(input);
        status = import.status();
    }
    if (store.size() == 0)
        throw Failure(std::max(status, kNo), inputs.front().name() + ": error: nothing was read");
    Progress saving("saving " + options.store, 1, options.quiet);
    saving.reached(0);
    transaction.commit();
    store.close();
    return status;
}

int import(const Options& options) {
    mustBeFileStore(options.store, "import");
    Messages messages(options.quiet);
    const Libraries libraries(options.schemas, messages);
    std::vector<Input> inputs;
    for (const std::string& path : options.words) inputs.emplace_back(path);
    const NewFile place(options.store);
    try {
        FileDataStore store(place.file());
        const int status = readAll(inputs, store, libraries, messages, options);
        place.take();
        return status;
    } catch (const StoreError& error) {
        if (const auto failure = failureOf(error, place.file(), options.store)) throw *failure;
        throw;
    }
}

}  // namespace

const Verb kImport{
    "import",
    "read documents into a store",
    "Makes the store if it is not there. All or nothing: a document that is not well-formed leaves the\n"
    "store as it was, or not there; --keep-going keeps what could be read. The first document becomes\n"
    "the contents of a store that has none, whatever its outermost element is. Of further documents the\n"
    "children go into the root, and an outermost element that is no root becomes a child of it; where the\n"
    "store's own outermost object is no root, --into must say where they go. With --into the outermost\n"
    "element stands for the container there, if it is one, and what it holds goes into that.\n"
    "A container whose name is taken is reported and skipped; a primitive or table of the same type gets\n"
    "the new values.\n"
    "Exit status 1 if a document had reports, of elements that were skipped: the rest was imported.",
    "  qvt import pump.lib.xml pump.xml plant.qvt\n"
    "  qvt import more.xml plant.qvt --into hall",
    Verb::kDocuments | Verb::kSchemas,
    import};

}  // namespace qvt
