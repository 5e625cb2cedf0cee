#pragma once

#include <cstddef>
#include <string>

#include "norvane/platform/core/Export.h"
#include "norvane/platform/core/io/IDataWriter.h"

namespace norvane::platform::core::io {

/// Writes a file as a whole or not at all: bytes go to a new file beside it, which takes its place in
/// `close`, after it has reached the disk. Until then, and whenever something fails, a file of that name
/// stays as it was; an unfinished new one is removed when the writer goes. What is not a plain file (a
/// device, a pipe) is written in place. It does not buffer: the serializer gives large pieces.
///
/// `close` has no result, so a host asks `failed` after it.
class QVT_CORE_API FileWriter : public IDataWriter {
  public:
    /// Takes the name of a file. Nothing is made before `open`.
    explicit FileWriter(std::string path);
    /// Writes to an open descriptor, 1 for the standard output. It is borrowed and stays open; nothing is
    /// renamed.
    explicit FileWriter(int descriptor);
    FileWriter(const FileWriter&) = delete;
    FileWriter& operator=(const FileWriter&) = delete;
    ~FileWriter() noexcept override;

    /// Makes the new file. False if that fails; `error` says why.
    bool open() override;
    void close() override;
    /// 0 if nothing more can be written, and for good.
    std::size_t write(const void* buffer, std::size_t size) override;

    /// True if opening, writing, or putting the file in its place has failed.
    bool failed() const { return errorNumber_ != 0; }
    /// The system's number for the failure, or 0.
    int errorNumber() const { return errorNumber_; }
    /// The system's words for it, or the empty text.
    std::string error() const;

  private:
    bool openInPlace();
    bool openBeside();
    void commit();
    void abandon();
    bool fail();

    std::string path_;
    std::string unfinished_;
    int descriptor_ = -1;
    bool borrowed_ = false;
    int errorNumber_ = 0;
};

}  // namespace norvane::platform::core::io
