#include "Output.h"

#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "FileStores.h"

namespace qvt {

namespace {

using norvane::platform::core::io::FileWriter;

constexpr std::size_t kPiece = std::size_t{1} << 16;

FileWriter writerFor(const std::string& path) {
    return path.empty() ? FileWriter(STDOUT_FILENO) : FileWriter(path);
}

void mustNotBeRead(const std::string& output, const std::string& input) {
    if (isSameFile(output, input == "-" ? "/dev/stdin" : input))
        throw Failure(kUsage, "error: -o " + output + ": the file is " +
                                  (input == "-" ? "standard input" : input) +
                                  ", and no answer is written over what is read");
}

}  // namespace

// Even an export lacks what documents cannot hold, comments and digits; of all other answers no input is
// left.
void mustSpareInput(const Options& options) {
    const std::string& output = options.output;
    if (output.empty()) return;
    if (isFileStore(output) || holdsFileStore(output))
        throw Failure(kUsage, "error: -o " + output + ": a file store; no answer is written over one");
    std::error_code unknown;
    if (!std::filesystem::is_regular_file(output, unknown)) return;
    mustNotBeRead(output, options.store);
    mustNotBeRead(output, options.target);
    for (const std::string& each : options.schemas) mustNotBeRead(output, each);
}

Output::Output(const Options& options)
    : isFile_(!options.output.empty()),
      name_(isFile_ ? options.output : "standard output"),
      writer_(writerFor(options.output)),
      isTerminal_(!isFile_ && ::isatty(STDOUT_FILENO) != 0),
      palette_(wantsColor(options.color, isTerminal_)) {
    writer_.open();
    check();
}

void Output::put(std::string_view text) {
    pending_ += text;
    if (pending_.size() >= kPiece) flush();
}

void Output::line(std::string_view text) {
    put(text);
    put("\n");
}

void Output::finish() {
    flush();
    writer_.close();
    check();
}

std::size_t Output::write(const void* buffer, std::size_t size) {
    put({static_cast<const char*>(buffer), size});
    return size;
}

void Output::flush() {
    for (std::string_view rest = pending_; !rest.empty();) {
        const std::size_t written = writer_.write(rest.data(), rest.size());
        check();
        if (written == 0) throw Failure(kUnwritten, name_ + ": error: cannot write it: it takes nothing");
        rest.remove_prefix(written);
    }
    pending_.clear();
}

void Output::check() {
    if (!writer_.failed()) return;
    if (!isFile_ && writer_.errorNumber() == EPIPE) throw OutputClosed();
    throw Failure(kUnwritten, name_ + ": error: cannot write it: " + writer_.error());
}

}  // namespace qvt
