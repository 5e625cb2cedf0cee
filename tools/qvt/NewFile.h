// Where a store comes into being.
#pragma once

#include <string>

#include "Names.h"
#include "Options.h"

namespace qvt {

// A store that does not exist yet is made beside its place and takes its name when it is whole. A run that
// fails or is interrupted leaves nothing; one that is killed may leave files of another name. One at a time.
class NewFile {
  public:
    // Where there is a file, that one is used and nothing else happens here.
    explicit NewFile(const std::string& path);
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    ~NewFile();

    // The file to open.
    const std::string& file() const { return file_; }

    // Gives it its name, for good; the store is closed by then. Throws StoreError if that cannot be, also
    // where another file of that name has come meanwhile.
    void take() const;

  private:
    std::string path_;
    bool isNew_;
    std::string file_;
};

}  // namespace qvt
