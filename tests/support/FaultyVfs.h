// Files of SQLite that fail on request, and a record of what was done to them. A test program that installs
// it gets it for every file that SQLite opens; nothing else knows of it.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace norvane::platform::test {

class FaultyVfs {
  public:
    enum class Fault : std::uint8_t {
        inputOutput,  // EIO
        noSpace,      // ENOSPC
        interrupted,  // EINTR
        shortWrite,   // half of a write, then EIO
    };

    // Becomes what SQLite uses from now on, for the rest of the program.
    static FaultyVfs& install();

    // Lets the call fail that is the `call`-th from now on, the first being 1, and with `forGood` all after
    // it.
    void failAt(std::uint64_t call, Fault fault, bool forGood = false);
    // From now on nothing fails. True if something has failed since `failAt`.
    bool heal();
    // How many calls there were since `failAt` or the beginning.
    std::uint64_t callCount() const { return calls_; }

    struct Event {
        enum class Kind : std::uint8_t { write, truncate, sync, remove, mark };
        Kind kind;
        std::string file;
        std::uint64_t position = 0;  // of a write; the size after a truncation; the number of a mark
        std::string bytes;
    };
    // Notes what is done to data files and their logs from now on.
    void startTrace();
    std::vector<Event> stopTrace();
    // Puts a number of the test's own into the trace.
    void mark(std::uint64_t number);

    // For the shim itself.
    bool isFailing(bool isWrite, Fault& fault);
    void note(Event event);
    int lastError = 0;

  private:
    FaultyVfs() = default;

    std::uint64_t calls_ = 0;
    std::uint64_t failAt_ = 0;
    Fault fault_ = Fault::inputOutput;
    bool forGood_ = false;
    bool hasFailed_ = false;
    bool isTracing_ = false;
    std::vector<Event> trace_;
};

// The files as a power cut leaves them: what was synced is there, of the rest some sectors, some in part, in
// no order.
class DiskAfterCut {
  public:
    // `content` is what is on the disk, by file.
    explicit DiskAfterCut(std::map<std::string, std::string> content);

    void apply(const FaultyVfs::Event& event);
    // Files that may be missing are missing in some of the cuts.
    std::map<std::string, std::string> cut(std::mt19937& random) const;

  private:
    struct File {
        std::optional<std::string> durable;  // none as long as the folder need not know it
        std::vector<FaultyVfs::Event> pending;
    };
    static void redo(std::optional<std::string>& content, const FaultyVfs::Event& event);
    static std::optional<std::string> cut(const File& file, std::mt19937& random);

    std::map<std::string, File> files_;
};

}  // namespace norvane::platform::test
