#include "stores/file/NewFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <random>

namespace norvane::platform::core::storage::datastore {
namespace {

using Code = StoreError::Code;

// A descriptor that is closed where it goes out of scope.
class Descriptor {
  public:
    Descriptor(const std::string& path, int flags)
        : descriptor_(::open(path.c_str(), flags | O_CLOEXEC, 0666)) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() {
        if (isOpen()) ::close(descriptor_);
    }

    bool isOpen() const { return descriptor_ >= 0; }
    int sync() const { return ::fsync(descriptor_); }

  private:
    int descriptor_;
};

std::string randomEnding() {
    static constexpr char kLetters[] = "abcdefghijklmnopqrstuvwxyz012345";
    std::random_device device;
    std::string ending;
    for (int count = 0; count < 10; ++count) ending += kLetters[device() % 32];
    return ending;
}

// A name that nobody has, taken.
std::string takeDraft(const std::string& path) {
    for (int round = 0;; ++round) {
        std::string draft = path + ".new-" + randomEnding();
        if (Descriptor(draft, O_RDWR | O_CREAT | O_EXCL).isOpen()) return draft;
        if (errno != EEXIST || round == 100) failSystem(path, Doing::writing, errno);
    }
}

std::string folderOf(const std::string& path) { return path.substr(0, path.find_last_of('/') + 1); }

}  // namespace

NewFile::NewFile(const std::string& path) : process_(::getpid()), path_(path) {
    struct stat status {};
    if (::lstat(path_.c_str(), &status) == 0) fail(Code::exists, path_, "there is such a file already");
    draft_ = takeDraft(path_);
    try {
        connection_ = std::make_unique<Connection>(draft_, Database::Mode::create);
        connection_->beginWriting();
    } catch (...) {
        remove();
        throw;
    }
}

NewFile::~NewFile() {
    if (::getpid() != process_) {
        static_cast<void>(connection_.release());
        return;
    }
    connection_.reset();
    if (!draft_.empty()) remove();
}

Connection& NewFile::connection() {
    if (::getpid() != process_) fail(Code::wrongState, path_, "begun by another process");
    return *connection_;
}

void NewFile::publish() {
    connection().commit();
    connection_->database().run("PRAGMA journal_mode=WAL", Doing::writing);
    connection_.reset();
    sync();
    giveName();
    keepName();
}

// A name that may not outlast a power cut is taken back, so that the file can be made again.
void NewFile::keepName() {
    draft_.clear();
    const Descriptor folder(folderOf(path_), O_RDONLY | O_DIRECTORY);
    if (folder.isOpen() && folder.sync() == 0) return;
    const int error = errno;
    ::unlink(path_.c_str());
    failSystem(path_, Doing::writing, error);
}

void NewFile::sync() const {
    const Descriptor file(draft_, O_RDWR);
    if (!file.isOpen() || file.sync() != 0) failSystem(path_, Doing::writing, errno);
}

// Never over a file that somebody has made in the meantime.
void NewFile::giveName() {
    if (::renameat2(AT_FDCWD, draft_.c_str(), AT_FDCWD, path_.c_str(), RENAME_NOREPLACE) == 0) return;
    const bool isOffered = errno != EINVAL && errno != ENOSYS;
    if (isOffered || ::link(draft_.c_str(), path_.c_str()) != 0) failSystem(path_, Doing::writing, errno);
    ::unlink(draft_.c_str());
}

void NewFile::remove() const noexcept {
    ::unlink(draft_.c_str());
    for (const char* beside : {"-wal", "-shm", "-journal"}) {
        try {
            ::unlink((draft_ + beside).c_str());
        } catch (const std::bad_alloc&) {
            return;
        }
    }
}

}  // namespace norvane::platform::core::storage::datastore
