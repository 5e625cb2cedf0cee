// expat with handlers that do nothing but count elements: the floor under a reader that checks
// well-formedness.
#include <expat.h>

#include <memory>

#include "harness/Harness.h"

namespace {

void XMLCALL onStart(void* count, const XML_Char*, const XML_Char**) {
    ++*static_cast<std::uint64_t*>(count);
}
void XMLCALL onEnd(void*, const XML_Char*) {}
void XMLCALL onText(void*, const XML_Char*, int) {}

void parse(const bench::Arguments& arguments, bench::Result& result) {
    const std::string document = bench::readFile(arguments.text("document"));
    std::uint64_t elements = 0;
    bench::repeat(arguments, result, [&]() -> std::uint64_t {
        elements = 0;
        const std::unique_ptr<XML_ParserStruct, void (*)(XML_Parser)> parser(XML_ParserCreate(nullptr),
                                                                             XML_ParserFree);
        XML_SetUserData(parser.get(), &elements);
        XML_SetElementHandler(parser.get(), onStart, onEnd);
        XML_SetCharacterDataHandler(parser.get(), onText);
        const auto status =
            XML_Parse(parser.get(), document.data(), static_cast<int>(document.size()), XML_TRUE);
        bench::require(status == XML_STATUS_OK, "not well-formed");
        return 1;
    });
    result.set("elements", elements);
}

}  // namespace

int main(int count, char** words) { return bench::run(count, words, {{"parse", parse}}); }
