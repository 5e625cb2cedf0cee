// Who in this process has which store file open, and the lock that keeps other writers out.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "stores/file/Failure.h"

namespace norvane::platform::core::storage::datastore {

// A store file as long as somebody here has it open. Made before SQLite opens the file, and gone after SQLite
// has closed it: to close any descriptor of a file drops all locks that SQLite has on it in this process, so
// descriptors that are no more needed wait until nobody here has the file open.
class OpenFile {
  public:
    enum class Purpose { read, write };

    // The path is one without symbolic links. Throws `inUse` where another writer has the file, `notAStore`
    // for what is no file, and what the system refuses. Where the process that this one was forked from had
    // the file open, it is `inUse` or `notReadable`: SQLite takes that one's locks for this one's.
    OpenFile(const std::string& path, Purpose purpose);
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    ~OpenFile();

    // How many bytes were there to be read, at most as many as the buffer takes.
    std::size_t readAt(std::uint64_t position, std::span<std::byte> buffer) const;
    std::uint64_t size() const;
    // The next position from there on that is not in a hole of the file; `size` if there is none.
    std::uint64_t nextData(std::uint64_t position) const;

    // When the file was changed last, and how large it is.
    struct Stamp {
        std::int64_t seconds = 0;
        std::int64_t nanoseconds = 0;
        std::uint64_t size = 0;

        friend bool operator==(const Stamp&, const Stamp&) = default;
    };
    Stamp stamp() const;
    // Waits until another change would get another stamp: the system's clock for them goes in steps.
    Stamp settledStamp() const;

    // False in a process that was forked from the one that has opened the file. Its copies of locks and
    // connections are the other one's, and nothing is to be done with them.
    bool isFromHere() const noexcept;

    // False if the path now leads to another file, or to none.
    bool isStillThere() const noexcept;
    // True if there is a writer, here or in another process.
    bool hasWriter() const;
    // True if there is another `OpenFile` of this file.
    bool isSharedHere() const;

    const std::string& path() const { return path_; }

  private:
    void lockOut();
    void giveUp() noexcept;

    std::string path_;
    Purpose purpose_;
    pid_t process_;
    int descriptor_ = -1;
    dev_t device_ = 0;
    ino_t inode_ = 0;
};

// The absolute path without symbolic links of what is there. Throws `notFound`, `notReadable`; for writing,
// `notWritable`.
std::string resolved(const std::string& path, Doing doing = Doing::reading);
// The same for what is to be written and need not be there, in a folder that is.
std::string resolvedInFolder(const std::string& path);

}  // namespace norvane::platform::core::storage::datastore
