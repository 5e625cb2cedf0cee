#pragma once

#include <cstddef>
#include <string>

#include "norvane/platform/core/Export.h"
#include "norvane/platform/core/io/IDataReader.h"

namespace norvane::platform::core::io {

/// Reads a file, or whatever stands behind an open descriptor. It does not buffer: the parser asks for large
/// pieces.
///
/// `read` answers 0 at the end and after an error alike. A host that must tell them apart asks `failed`
/// afterwards.
class QVT_CORE_API FileReader : public IDataReader {
  public:
    /// Takes the name of a file, which `open` opens.
    explicit FileReader(std::string path);
    /// Reads an open descriptor, 0 for the standard input. It is borrowed and stays open; it can be read
    /// once.
    explicit FileReader(int descriptor);
    FileReader(const FileReader&) = delete;
    FileReader& operator=(const FileReader&) = delete;
    ~FileReader() noexcept override;

    bool open() override;
    /// Closes the file; a borrowed descriptor stays open.
    void close() override;
    std::size_t read(void* buffer, std::size_t size) override;

    /// True if the file could not be opened or if reading it broke off.
    bool failed() const { return errorNumber_ != 0; }
    /// The system's number for the failure, or 0.
    int errorNumber() const { return errorNumber_; }
    /// The system's words for it, or the empty text.
    std::string error() const;

  private:
    std::string path_;
    int descriptor_ = -1;
    bool borrowed_ = false;
    int errorNumber_ = 0;
};

}  // namespace norvane::platform::core::io
