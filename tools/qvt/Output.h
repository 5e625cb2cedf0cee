// Where the answer goes: standard output, or the file of -o.
#pragma once

#include <string>
#include <string_view>

#include "Options.h"
#include "Text.h"
#include "norvane/platform/core/io/FileWriter.h"

namespace qvt {

// A Failure if -o names a file store, or a file that the run reads, by whatever path: to be asked before
// anything is done.
void mustSpareInput(const Options& options);

// A file takes its name only in `finish`, so that a run that fails leaves what was there. What cannot be
// written is a Failure; a reader of standard output that has gone is OutputClosed.
class Output : public norvane::platform::core::io::IDataWriter {
  public:
    explicit Output(const Options& options);

    void put(std::string_view text);
    void line(std::string_view text);
    void finish();

    // As messages name it.
    const std::string& name() const { return name_; }
    bool isTerminal() const { return isTerminal_; }
    const Palette& palette() const { return palette_; }

    // For the library, which opens and closes what it writes to; neither means anything here.
    bool open() override { return true; }
    void close() override {}
    std::size_t write(const void* buffer, std::size_t size) override;

  private:
    void flush();
    void check();

    bool isFile_;
    std::string name_;
    norvane::platform::core::io::FileWriter writer_;
    bool isTerminal_;
    Palette palette_;
    std::string pending_;
};

}  // namespace qvt
