// A folder for a test.
#pragma once

#include <stdlib.h>

#include <cerrno>
#include <filesystem>
#include <string>
#include <system_error>

namespace norvane::platform::test {

// A folder of its own, gone with all that is in it at the end.
class Folder {
  public:
    explicit Folder(const std::filesystem::path& parent = std::filesystem::temp_directory_path()) {
        std::string name = (parent / "qvt-test-XXXXXX").string();
        if (!::mkdtemp(name.data())) throw std::system_error(errno, std::generic_category());
        path_ = name;
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    ~Folder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    std::string operator/(const std::string& name) const { return (path_ / name).string(); }
    const std::filesystem::path& path() const { return path_; }

  private:
    std::filesystem::path path_;
};

}  // namespace norvane::platform::test
