// What every program of the benchmarks has in common: its tasks, its clocks and the line it prints.
//
// A program is started as `<program> <task> key=value...`, measures one section by itself and prints one line
// of JSON. Comparing is the runner's matter.
#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>

namespace bench {

// CPU time of the whole process, user and system, all threads; and the time on the wall.
double cpuSeconds();
double wallSeconds();

// Bytes of memory that the process has now, and has had at most.
std::uint64_t residentBytes();
std::uint64_t peakBytes();

class Arguments {
  public:
    Arguments(int count, char** words);

    const std::string& text(const std::string& key) const;
    std::string text(const std::string& key, const std::string& otherwise) const;
    std::uint64_t number(const std::string& key, std::uint64_t otherwise) const;
    // How long a section that repeats itself goes on, in seconds.
    double duration() const;

  private:
    std::map<std::string, std::string> values_;
};

// The line that a task prints.
class Result {
  public:
    void set(const std::string& key, double value);
    void set(const std::string& key, std::uint64_t value);
    void set(const std::string& key, const std::string& text);
    void print() const;

  private:
    std::map<std::string, std::string> fields_;
};

// A sum over values that does not depend on their order.
class Digest {
  public:
    void add(double value);
    void add(std::string_view text);
    void add(std::u16string_view text);
    std::uint64_t count() const { return count_; }
    std::string text() const;

  private:
    void addBits(std::uint64_t bits);

    std::uint64_t sum_ = 0;
    std::uint64_t count_ = 0;
};

// A run of numbers that is the same everywhere.
class Random {
  public:
    explicit Random(std::uint64_t seed) : state_(seed) {}
    std::uint64_t next();
    std::uint64_t below(std::uint64_t limit) { return next() % limit; }

  private:
    std::uint64_t state_;
};

// Does a piece of work again and again until the time is up, at least once, and sets `seconds` and `units`.
// `makeWork` gives an object whose call is the measured part and answers how many units it has done; what the
// object prepares and clears away is not measured.
template <class MakeWork>
void repeatFresh(const Arguments& arguments, Result& result, MakeWork makeWork) {
    double seconds = 0;
    std::uint64_t units = 0;
    do {
        auto work = makeWork();
        const double start = cpuSeconds();
        units += work();
        seconds += cpuSeconds() - start;
    } while (seconds < arguments.duration());
    result.set("seconds", seconds);
    result.set("units", units);
}

// The same for work that has nothing to prepare.
template <class Work>
void repeat(const Arguments& arguments, Result& result, Work work) {
    repeatFresh(arguments, result, [&work] { return std::ref(work); });
}

// Keeps the compiler from leaving out what nobody reads.
template <class Value>
void keep(const Value& value) {
    asm volatile("" : : "g"(&value) : "memory");
}

inline void require(bool isTrue, const char* what) {
    if (!isTrue) throw std::runtime_error(what);
}

std::string readFile(const std::string& path);

using Task = void (*)(const Arguments&, Result&);

struct NamedTask {
    const char* name;
    Task task;
};

// The body of `main`.
int run(int count, char** words, std::initializer_list<NamedTask> tasks);

}  // namespace bench
