// qvt import DOC... STORE
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>
#include <vector>

#include "Editing.h"
#include "Input.h"
#include "NewValues.h"
#include "Reading.h"
#include "Verbs.h"
#include "norvane/platform/core/storage/datastore/MemoryDataStore.h"

namespace qvt {

namespace {

using core::storage::datastore::MemoryDataStore;

// A store that does not exist yet is made beside its place and takes its name when it is whole. What a run
// leaves that fails, or that is killed, is nothing or a file of another name.
class NewFile {
  public:
    explicit NewFile(const std::string& path)
        : path_(path), isNew_(!std::filesystem::exists(path)), file_(isNew_ ? unusedBeside(path) : path) {}
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    ~NewFile() {
        if (isNew_) remove();
    }

    const std::string& file() const { return file_; }

    // When the store is closed.
    void take() const {
        if (!isNew_) return;
        std::error_code none;
        if (std::filesystem::exists(file_ + "-wal", none)) fail("its log could not be written back");
        if (!rename() || !syncFolder()) fail(std::generic_category().message(errno));
    }

  private:
    static std::string unusedBeside(const std::string& path) {
        std::string name = path + "." + std::to_string(::getpid()) + ".new";
        while (std::filesystem::exists(name)) name += "0";
        return name;
    }

    [[noreturn]] void fail(const std::string& why) const {
        throw Failure(kUnwritten, path_ + ": error: cannot make it: " + why);
    }

    // Never in the place of a file that has come meanwhile. Not all file systems can rename so.
    bool rename() const {
        if (::renameat2(AT_FDCWD, file_.c_str(), AT_FDCWD, path_.c_str(), RENAME_NOREPLACE) == 0) return true;
        return (errno == EINVAL || errno == ENOSYS) && ::link(file_.c_str(), path_.c_str()) == 0;
    }

    // The name is as durable then as what it names.
    bool syncFolder() const {
        const std::string folder = std::filesystem::path(path_).parent_path().string();
        const int descriptor =
            ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        const bool isDone = descriptor >= 0 && ::fsync(descriptor) == 0;
        if (descriptor >= 0) ::close(descriptor);
        return isDone;
    }

    void remove() const {
        for (const char* suffix : {"", "-wal", "-shm", "-journal"}) std::remove((file_ + suffix).c_str());
    }

    std::string path_;
    bool isNew_;
    std::string file_;
};

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

    int status() const { return worst_ != kDone ? worst_ : messages_.hasReports() ? kNo : kDone; }

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

int readAll(const std::vector<Input>& inputs, FileDataStore& store, const Libraries& libraries,
            Messages& messages, const Options& options) {
    FileDataStore::Transaction transaction(store);
    int status = kDone;
    {
        Import import(store, options.store, libraries, messages, options);
        for (const Input& input : inputs) import.read(input);
        status = import.status();
    }
    if (store.size() == 0) throw nothingIn(inputs.front().name());
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
    NewFile place(options.store);
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
    "import", "read documents into a store",
    "Makes the store if it is not there. All or nothing: a document that is not well-formed leaves the\n"
    "store as it was, or not there; --keep-going keeps what could be read. The first document makes the\n"
    "root; the children of others go into it, and objects that are no root become its children. With --into\n"
    "the outermost element stands for the container there, if it is one, and what it holds goes into that.\n"
    "A container whose name is taken is reported and skipped; a primitive or table of the same type gets\n"
    "the new values.\n"
    "Exit status 1 if a document had reports, of elements that were skipped: the rest was imported.",
    Verb::kDocuments | Verb::kSchemas, import};

}  // namespace qvt
