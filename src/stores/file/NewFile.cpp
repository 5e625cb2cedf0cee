#include "stores/file/NewFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <random>

#include "stores/file/Publish.h"

namespace norvane::platform::core::storage::datastore {
namespace {

using Code = StoreError::Code;

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
        const int descriptor = ::open(draft.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (descriptor >= 0) {
            ::close(descriptor);
            return draft;
        }
        if (errno != EEXIST || round == 100) failSystem(path, Doing::writing, errno);
    }
}

}  // namespace

NewFile::NewFile(const std::string& path) : process_(::getpid()), path_(path) {
    struct stat status {};
    if (::lstat(path_.c_str(), &status) == 0) fail(Code::exists, path_, "there is such a file already");
    draft_ = takeDraft(path_);
    try {
        connection_ = std::make_unique<Connection>(draft_, Database::Mode::create, path_);
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
    datastore::publish(draft_, path_);
    draft_.clear();
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
