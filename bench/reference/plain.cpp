// What a program would do without any library: memcpy, a vector of strings, conversions of numbers,
// fdatasync.
#include <fcntl.h>
#include <unistd.h>

#include <charconv>
#include <cstring>
#include <iterator>
#include <vector>

#include "harness/Harness.h"
#include "workload/Workload.h"

namespace {

using bench::Arguments;
using bench::Result;

void copy(const Arguments& arguments, Result& result) {
    const std::vector<double> from(arguments.number("size", 1'000'000), 1.5);
    std::vector<double> to(from.size());
    bench::repeat(arguments, result, [&]() -> std::uint64_t {
        std::memcpy(to.data(), from.data(), from.size() * sizeof(double));
        bench::keep(to);
        return 1;
    });
}

// The numbers of the workload `array`, into one buffer again and again.
void toChars(const Arguments& arguments, Result& result) {
    const bench::Recording recording({"array", arguments.number("size", 100'000), 1});
    const auto& numbers = recording.values();
    char text[64];
    bench::repeat(arguments, result, [&]() -> std::uint64_t {
        for (const double number : numbers) {
            std::to_chars(text, std::end(text), number, std::chars_format::general, 7);
            bench::keep(text);
        }
        return numbers.size();
    });
}

std::vector<std::string> records(std::uint64_t count) {
    std::vector<std::string> strings;
    for (std::uint64_t i = 0; i < count; ++i) strings.emplace_back(64, static_cast<char>('a' + i % 26));
    return strings;
}

void put(const Arguments& arguments, Result& result) {
    const std::uint64_t count = arguments.number("size", 100'000);
    const std::string bytes(64, 'x');
    bench::repeatFresh(arguments, result, [&] {
        return [&, strings = std::vector<std::string>()]() mutable {
            for (std::uint64_t i = 0; i < count; ++i) strings.emplace_back(bytes.data(), bytes.size());
            return count;
        };
    });
}

void get(const Arguments& arguments, Result& result) {
    const auto strings = records(arguments.number("size", 100'000));
    char bytes[64];
    std::uint64_t sum = 0;
    bench::repeat(arguments, result, [&]() -> std::uint64_t {
        for (const std::string& string : strings) {
            std::memcpy(bytes, string.data(), string.size());
            bench::keep(bytes);
            sum += static_cast<unsigned char>(bytes[0]);
        }
        return strings.size();
    });
    bench::keep(sum);
}

void update(const Arguments& arguments, Result& result) {
    auto strings = records(arguments.number("size", 100'000));
    const std::string bytes(64, 'y');
    bench::repeat(arguments, result, [&]() -> std::uint64_t {
        for (std::string& string : strings) string.assign(bytes.data(), bytes.size());
        bench::keep(strings);
        return strings.size();
    });
}

// A page more in a file, made durable. Time on the wall: there is hardly any other.
void durable(const Arguments& arguments, Result& result) {
    const std::string path = arguments.text("folder") + "/durable";
    const int file = open(path.c_str(), O_CREAT | O_TRUNC | O_WRONLY | O_CLOEXEC, 0600);
    bench::require(file >= 0, "no file");
    const std::vector<char> page(4096, 'p');
    const std::uint64_t times = arguments.number("times", 50);
    const double start = bench::wallSeconds();
    for (std::uint64_t i = 0; i < times; ++i) {
        bench::require(write(file, page.data(), page.size()) == 4096, "not written");
        bench::require(fdatasync(file) == 0, "not durable");
    }
    result.set("seconds", bench::wallSeconds() - start);
    result.set("units", times);
    close(file);
    unlink(path.c_str());
}

}  // namespace

int main(int count, char** words) {
    return bench::run(count, words,
                      {{"copy", copy},
                       {"to-chars", toChars},
                       {"put", put},
                       {"get", get},
                       {"update", update},
                       {"durable", durable}});
}
