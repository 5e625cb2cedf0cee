// What stands on the command line, and how the tool ends.
#pragma once

#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

namespace qvt {

enum Status : int {
    kDone = 0,       // done; the answer is yes
    kNo = 1,         // the answer is no, or a document had reports
    kUsage = 2,      // the command line is wrong
    kMissing = 3,    // the input is missing, unreadable or not well-formed, or nothing stands at the path
    kDamaged = 4,    // the store contradicts itself
    kBusy = 5,       // another writer has the store
    kRefused = 6,    // an edit that cannot be: fixed, in use, name taken
    kUnwritten = 7,  // no room, no permission: the output or the store cannot be written
    kFault = 70,     // a fault of the program
};

enum class Format { text, json };
enum class Color { automatic, always, never };

struct Options {
    std::string store;
    std::string path;
    std::string className;
    std::string name;
    std::string offset;
    std::string target;      // NEWPATH, SOURCE, OUT or B
    std::string sourcePath;  // of merge, and in B
    std::string type;        // of what is made
    std::string unit;
    std::string into;
    std::string to;
    std::string recovered;
    std::vector<std::string> words;  // DOC... STORE, PATH... or VALUE...
    std::vector<std::string> names;  // LOCALE=TEXT
    std::string condition;           // of find
    bool hasCondition = false;
    bool ignoresOrder = false;
    bool hasSourcePath = false;
    bool hasUri = false;
    std::string uri;
    bool keepsGoing = false;
    bool salvage = false;
    bool dropsUnreachable = false;
    std::vector<std::string> schemas;
    std::string output;
    Format format = Format::text;
    Color color = Color::automatic;
    std::uint32_t depth = std::numeric_limits<std::uint32_t>::max();
    bool values = false;
    bool all = false;
    bool quiet = false;
};

// Ends the run with a message and a status. The message says the place first, if there is one.
class Failure : public std::runtime_error {
  public:
    Failure(Status status, const std::string& message) : std::runtime_error(message), status_(status) {}
    Status status() const { return status_; }

  private:
    Status status_;
};

// Ends the run in silence: whoever read the output has seen enough.
class OutputClosed : public std::exception {
  public:
    const char* what() const noexcept override { return "nobody reads the output"; }
};

}  // namespace qvt
