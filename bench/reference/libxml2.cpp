// libxml2: its SAX2 with handlers that only count elements, and its tree. Depth and size are not limited.
#include <libxml/parser.h>
#include <libxml/parserInternals.h>
#include <libxml/tree.h>

#include <memory>

#include "harness/Harness.h"

namespace {

void onStart(void* count, const xmlChar*, const xmlChar*, const xmlChar*, int, const xmlChar**, int, int,
             const xmlChar**) {
    ++*static_cast<std::uint64_t*>(count);
}
void onEnd(void*, const xmlChar*, const xmlChar*, const xmlChar*) {}
void onText(void*, const xmlChar*, int) {}

void parse(const bench::Arguments& arguments, bench::Result& result) {
    const std::string document = bench::readFile(arguments.text("document"));
    xmlSAXHandler handler{};
    handler.initialized = XML_SAX2_MAGIC;
    handler.startElementNs = onStart;
    handler.endElementNs = onEnd;
    handler.characters = onText;
    std::uint64_t elements = 0;
    bench::repeat(arguments, result, [&]() -> std::uint64_t {
        elements = 0;
        const std::unique_ptr<xmlParserCtxt, void (*)(xmlParserCtxtPtr)> context(
            xmlCreatePushParserCtxt(&handler, &elements, nullptr, 0, nullptr), xmlFreeParserCtxt);
        xmlCtxtUseOptions(context.get(), XML_PARSE_HUGE);
        bench::require(
            xmlParseChunk(context.get(), document.data(), static_cast<int>(document.size()), 1) == 0,
            "not well-formed");
        return 1;
    });
    result.set("elements", elements);
}

using Tree = std::unique_ptr<xmlDoc, void (*)(xmlDocPtr)>;

// How many nodes of a tree are of some kind.
template <class Test>
std::uint64_t count(xmlNode* root, Test isCounted) {
    std::uint64_t count = 0;
    for (xmlNode* node = root; node;) {
        if (isCounted(node)) ++count;
        if (node->children) {
            node = node->children;
            continue;
        }
        while (node != root && !node->next) node = node->parent;
        if (node == root) break;
        node = node->next;
    }
    return count;
}

bool isElement(xmlNode* node) { return node->type == XML_ELEMENT_NODE; }

// The elements of values are those without others inside.
bool isValue(xmlNode* node) { return isElement(node) && !xmlFirstElementChild(node); }

void load(const bench::Arguments& arguments, bench::Result& result) {
    const std::string document = bench::readFile(arguments.text("document"));
    Tree tree(nullptr, xmlFreeDoc);
    bench::repeatFresh(arguments, result, [&] {
        tree.reset();
        return [&]() -> std::uint64_t {
            tree.reset(xmlReadMemory(document.data(), static_cast<int>(document.size()), nullptr, nullptr,
                                     XML_PARSE_HUGE));
            return 1;
        };
    });
    bench::require(tree != nullptr, "not well-formed");
    result.set("elements", count(xmlDocGetRootElement(tree.get()), isElement));
}

void memory(const bench::Arguments& arguments, bench::Result& result) {
    const std::uint64_t before = bench::residentBytes();
    const Tree tree(xmlReadFile(arguments.text("document").c_str(), nullptr, XML_PARSE_HUGE), xmlFreeDoc);
    bench::require(tree != nullptr, "not well-formed");
    result.set("bytes", bench::peakBytes() - before);
    result.set("elements", count(xmlDocGetRootElement(tree.get()), isElement));
    result.set("units", count(xmlDocGetRootElement(tree.get()), isValue));
}

}  // namespace

int main(int count, char** words) {
    return bench::run(count, words, {{"parse", parse}, {"load", load}, {"memory", memory}});
}
