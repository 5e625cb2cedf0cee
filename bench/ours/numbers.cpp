// Number text by itself, beside a stream for each number and beside the bare conversions. It is no part of
// the public interface, so this program alone is linked with the layer that has it.
#include <charconv>
#include <iterator>
#include <sstream>
#include <string>
#include <system_error>
#include <vector>

#include "harness/Harness.h"
#include "xml/NumberText.h"

namespace {

using bench::Arguments;
using bench::Result;
using norvane::platform::data::formatNumber;
using norvane::platform::data::parseNumber;

constexpr int kDouble = 10;
constexpr int kInt32 = 5;

// Every other number an integer; each as text and as value.
struct Numbers {
    explicit Numbers(std::uint64_t count) {
        bench::Random random(count);
        for (std::uint64_t i = 0; i < count; ++i) {
            reals.push_back(static_cast<double>(random.below(10'000'000)) / 1000);
            integers.push_back(static_cast<std::int32_t>(random.below(1'000'000)));
            realTexts.push_back(stream(reals.back()));
            integerTexts.push_back(stream(integers.back()));
        }
    }

    template <class Number>
    static std::string stream(Number number) {
        std::ostringstream stream;
        stream.imbue(std::locale::classic());
        stream.precision(7);
        stream << number;
        return stream.str();
    }

    std::vector<double> reals;
    std::vector<std::int32_t> integers;
    std::vector<std::string> realTexts;
    std::vector<std::string> integerTexts;
};

template <class Number>
void parseWithStream(const std::string& text, Number& number) {
    std::istringstream stream(text);
    stream.imbue(std::locale::classic());
    stream >> number;
}

template <class Number>
void parseBare(const std::string& text, Number& number) {
    const auto end = std::from_chars(text.data(), text.data() + text.size(), number);
    bench::require(end.ec == std::errc(), "no number");
}

// All texts to numbers by two functions, one for each type.
template <class Real, class Integer>
void parse(const Arguments& arguments, Result& result, Real parseReal, Integer parseInteger) {
    const Numbers numbers(arguments.number("size", 20'000));
    bench::Digest digest;
    bench::repeat(arguments, result, [&] {
        digest = {};
        for (std::size_t i = 0; i < numbers.reals.size(); ++i) {
            double real = 0;
            std::int32_t integer = 0;
            parseReal(numbers.realTexts[i], real);
            parseInteger(numbers.integerTexts[i], integer);
            digest.add(real);
            digest.add(static_cast<double>(integer));
        }
        return digest.count();
    });
    result.set("values", digest.text());
}

template <class Print>
void print(const Arguments& arguments, Result& result, Print printBoth) {
    const Numbers numbers(arguments.number("size", 20'000));
    std::uint64_t size = 0;
    bench::repeat(arguments, result, [&]() -> std::uint64_t {
        size = 0;
        for (std::size_t i = 0; i < numbers.reals.size(); ++i)
            size += printBoth(numbers.reals[i], numbers.integers[i]);
        return 2 * numbers.reals.size();
    });
    result.set("text", size);
}

void parseOurs(const Arguments& arguments, Result& result) {
    parse(
        arguments, result,
        [](const std::string& text, double& number) {
            parseNumber(text.data(), text.data() + text.size(), &number, kDouble);
        },
        [](const std::string& text, std::int32_t& number) {
            parseNumber(text.data(), text.data() + text.size(), &number, kInt32);
        });
}

void parseStream(const Arguments& arguments, Result& result) {
    parse(arguments, result, parseWithStream<double>, parseWithStream<std::int32_t>);
}

void parseChars(const Arguments& arguments, Result& result) {
    parse(arguments, result, parseBare<double>, parseBare<std::int32_t>);
}

void printOurs(const Arguments& arguments, Result& result) {
    char text[norvane::platform::data::kNumberTextSize];
    print(arguments, result, [&text](double real, std::int32_t integer) {
        const std::size_t size = formatNumber(&real, text, kDouble);
        bench::keep(text);
        return size + formatNumber(&integer, text, kInt32);
    });
}

void printStream(const Arguments& arguments, Result& result) {
    print(arguments, result, [](double real, std::int32_t integer) {
        return Numbers::stream(real).size() + Numbers::stream(integer).size();
    });
}

void printChars(const Arguments& arguments, Result& result) {
    char text[64];
    print(arguments, result, [&text](double real, std::int32_t integer) {
        const auto end = std::to_chars(text, std::end(text), real, std::chars_format::general, 7);
        bench::keep(text);
        return static_cast<std::size_t>(end.ptr - text) +
               static_cast<std::size_t>(std::to_chars(text, std::end(text), integer).ptr - text);
    });
}

}  // namespace

int main(int count, char** words) {
    return bench::run(count, words,
                      {{"parse", parseOurs},
                       {"parse-stream", parseStream},
                       {"parse-chars", parseChars},
                       {"print", printOurs},
                       {"print-stream", printStream},
                       {"print-chars", printChars}});
}
