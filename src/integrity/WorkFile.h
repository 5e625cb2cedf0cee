// A store's file that is not yet what it is to become.
#pragma once

#include <string>

namespace norvane::platform::data::integrity {

// Removes the file, and those that stand beside an open store, unless it was moved.
class WorkFile {
  public:
    // Takes charge of a file that is there.
    explicit WorkFile(std::string path) : path_(std::move(path)) {}
    WorkFile(const WorkFile&) = delete;
    WorkFile& operator=(const WorkFile&) = delete;
    ~WorkFile();

    // Gives the closed store its name, as `StoreFile::publish` does, and no longer has charge of it.
    void publish(const std::string& path);

    // Where to work on what is to become `path`: in the same folder.
    static std::string pathFor(const std::string& path);

  private:
    std::string path_;
};

// Throws `StoreError` exists if anything has that name.
void refuseExisting(const std::string& path);

}  // namespace norvane::platform::data::integrity
