// A store file in the making: it comes under its name when it is whole.
#pragma once

#include <sys/types.h>

#include <memory>
#include <string>

#include "stores/file/Connection.h"

namespace norvane::platform::core::storage::datastore {

class NewFile {
  public:
    // Begins a file beside the path that it will have, which is one without symbolic links. Throws `exists`.
    explicit NewFile(const std::string& path);
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    // Leaves nothing behind of a file that was not published. In a process that was forked since it does
    // nothing.
    ~NewFile();

    // Writing begins with the first use, and needs neither `beginWriting` nor `commit`.
    // Throws `wrongState` in a process that was forked since.
    Connection& connection();

    // Makes the file durable and gives it its name. Throws `exists`, notWritable, diskFull.
    void publish();

  private:
    void remove() const noexcept;

    const pid_t process_;
    std::string path_;
    std::string draft_;  // the name until then
    std::unique_ptr<Connection> connection_;
};

}  // namespace norvane::platform::core::storage::datastore
