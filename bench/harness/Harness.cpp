#include "harness/Harness.h"

#include <cstdio>
#include <cstring>
#include <ctime>
#include <fstream>
#include <sstream>

namespace bench {
namespace {

double secondsOf(clockid_t clock) {
    timespec now{};
    clock_gettime(clock, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

std::uint64_t statusBytes(const std::string& field) {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.compare(0, field.size(), field) == 0) return std::stoull(line.substr(field.size())) * 1024;
    return 0;
}

std::uint64_t mixed(std::uint64_t bits) {
    bits = (bits ^ (bits >> 30)) * 0xBF58476D1CE4E5B9u;
    bits = (bits ^ (bits >> 27)) * 0x94D049BB133111EBu;
    return bits ^ (bits >> 31);
}

template <class Text>
std::uint64_t hashOf(Text text) {
    std::uint64_t hash = 0xCBF29CE484222325u;
    for (const auto unit : text) hash = (hash ^ static_cast<std::uint64_t>(unit)) * 0x100000001B3u;
    return hash;
}

std::string quoted(const std::string& text) { return '"' + text + '"'; }

}  // namespace

double cpuSeconds() { return secondsOf(CLOCK_PROCESS_CPUTIME_ID); }
double wallSeconds() { return secondsOf(CLOCK_MONOTONIC); }

std::uint64_t residentBytes() { return statusBytes("VmRSS:"); }
std::uint64_t peakBytes() { return statusBytes("VmHWM:"); }

Arguments::Arguments(int count, char** words) {
    for (int i = 2; i < count; ++i) {
        const std::string word = words[i];
        const std::size_t equals = word.find('=');
        require(equals != std::string::npos, "an argument is key=value");
        values_[word.substr(0, equals)] = word.substr(equals + 1);
    }
}

const std::string& Arguments::text(const std::string& key) const {
    const auto found = values_.find(key);
    if (found == values_.end()) throw std::runtime_error("no argument " + key);
    return found->second;
}

std::string Arguments::text(const std::string& key, const std::string& otherwise) const {
    return values_.count(key) != 0 ? text(key) : otherwise;
}

std::uint64_t Arguments::number(const std::string& key, std::uint64_t otherwise) const {
    return values_.count(key) != 0 ? std::stoull(text(key)) : otherwise;
}

double Arguments::duration() const { return static_cast<double>(number("milliseconds", 0)) * 1e-3; }

void Result::set(const std::string& key, double value) {
    char text[64];
    std::snprintf(text, sizeof text, "%.9g", value);
    fields_[key] = text;
}

void Result::set(const std::string& key, std::uint64_t value) { fields_[key] = std::to_string(value); }

void Result::set(const std::string& key, const std::string& text) { fields_[key] = quoted(text); }

void Result::print() const {
    std::string line;
    for (const auto& [key, value] : fields_) line += (line.empty() ? "{" : ", ") + quoted(key) + ": " + value;
    std::printf("%s}\n", line.c_str());
}

void Digest::addBits(std::uint64_t bits) {
    sum_ += mixed(bits + 1);
    ++count_;
}

void Digest::add(double value) {
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    addBits(bits);
}

void Digest::add(std::string_view text) { addBits(hashOf(text)); }
void Digest::add(std::u16string_view text) { addBits(hashOf(text)); }

std::string Digest::text() const {
    std::ostringstream text;
    text << std::hex << sum_;
    return text.str();
}

std::uint64_t Random::next() {
    state_ += 0x9E3779B97F4A7C15u;
    return mixed(state_);
}

std::string readFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    require(file.good(), ("cannot read " + path).c_str());
    std::ostringstream bytes;
    bytes << file.rdbuf();
    return bytes.str();
}

int run(int count, char** words, std::initializer_list<NamedTask> tasks) {
    try {
        const std::string name = count > 1 ? words[1] : "";
        for (const NamedTask& task : tasks) {
            if (name != task.name) continue;
            Result result;
            task.task(Arguments(count, words), result);
            result.set("peak", peakBytes());
            result.print();
            return 0;
        }
        std::fprintf(stderr, "usage: %s <task> key=value...\ntasks:", words[0]);
        for (const NamedTask& task : tasks) std::fprintf(stderr, " %s", task.name);
        std::fprintf(stderr, "\n");
        return 2;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s: %s\n", words[0], failure.what());
        return 1;
    }
}

}  // namespace bench
