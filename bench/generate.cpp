// Writes a workload as a document, to a file or to the standard output.
#include <cstdio>
#include <fstream>
#include <iostream>

#include "harness/Harness.h"
#include "workload/DocumentSink.h"

namespace {

int generate(int count, char** words) {
    if (count < 3) {
        std::fprintf(
            stderr,
            "usage: %s props|arrays|array|wide|prefix|deep|classes|copies <size> [depth=10] [out=file]\n",
            words[0]);
        return 2;
    }
    const bench::Arguments arguments(count - 1, words + 1);
    bench::DocumentSink sink;
    tell({words[1], std::stoull(words[2]), arguments.number("depth", 10)}, sink);
    const std::string out = arguments.text("out", "/dev/stdout");
    std::ofstream file(out, std::ios::binary);
    file << sink.document();
    file.flush();
    bench::require(file.good(), "cannot write the document");
    return 0;
}

}  // namespace

int main(int count, char** words) {
    try {
        return generate(count, words);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s: %s\n", words[0], failure.what());
        return 1;
    }
}
