// pugixml: a tree whose values stay text until somebody asks.
#include <cstdlib>
#include <cstring>
#include <pugixml.hpp>
#include <string>
#include <vector>

#include "harness/Harness.h"
#include "workload/Workload.h"

namespace {

using bench::Arguments;
using bench::Result;

struct Walk {
    std::uint64_t elements = 0;
    std::uint64_t values = 0;
    bench::Digest digest;
};

// Elements below which there are elements: root, group, node, table. All others hold a value.
bool holdsElements(const char* element) { return std::strchr("grtn", element[0]) != nullptr; }

// Integers too come as doubles, which hold all that occur.
void addNumbers(const char* element, const char* text, Walk& walk) {
    const bool isScalar = std::strcmp(element, "scalar") == 0;
    for (char* end = nullptr;; text = end) {
        const double number =
            isScalar ? static_cast<double>(std::strtof(text, &end)) : std::strtod(text, &end);
        if (end == text) return;
        walk.digest.add(number);
    }
}

void visit(pugi::xml_node node, Walk& walk) {
    ++walk.elements;
    const char* element = node.name();
    if (holdsElements(element)) return;
    ++walk.values;
    const char* text = node.child_value();
    if (std::strcmp(element, "string") == 0)
        walk.digest.add(std::string_view(text));
    else
        addNumbers(element, text, walk);
}

// Every element below one, in order, without recursion.
Walk walk(pugi::xml_node root) {
    Walk walk;
    pugi::xml_node node = root;
    while (node) {
        if (node.type() == pugi::node_element) visit(node, walk);
        if (node.first_child()) {
            node = node.first_child();
            continue;
        }
        while (node != root && !node.next_sibling()) node = node.parent();
        if (node == root) break;
        node = node.next_sibling();
    }
    return walk;
}

pugi::xml_node top(const pugi::xml_document& document) {
    return document.child("root").find_child_by_attribute("name", "top");
}

void loadText(pugi::xml_document& document, const std::string& text) {
    bench::require(document.load_buffer(text.data(), text.size()), "not well-formed");
}

void load(const Arguments& arguments, Result& result) {
    const std::string text = bench::readFile(arguments.text("document"));
    pugi::xml_document document;
    bench::repeatFresh(arguments, result, [&] {
        document.reset();
        return [&]() -> std::uint64_t {
            loadText(document, text);
            return 1;
        };
    });
    result.set("elements", walk(document).elements);
    result.set("values", walk(top(document)).digest.text());
}

void memory(const Arguments& arguments, Result& result) {
    const std::uint64_t before = bench::residentBytes();
    pugi::xml_document document;
    bench::require(document.load_file(arguments.text("document").c_str()), "not well-formed");
    result.set("bytes", bench::peakBytes() - before);
    const Walk found = walk(top(document));
    result.set("units", found.values);
    result.set("values", found.digest.text());
}

void traverse(const Arguments& arguments, Result& result) {
    pugi::xml_document document;
    loadText(document, bench::readFile(arguments.text("document")));
    Walk found;
    bench::repeat(arguments, result, [&] {
        found = walk(top(document));
        return found.values;
    });
    result.set("values", found.digest.text());
}

// The names on the way from the root to a node with values.
using Path = std::vector<std::string>;

Path pathTo(pugi::xml_node node) {
    Path path;
    for (; node.parent().parent(); node = node.parent())
        path.insert(path.begin(), node.attribute("name").value());
    return path;
}

std::vector<Path> somePaths(pugi::xml_node root, std::uint64_t count) {
    struct Places : pugi::xml_tree_walker {
        std::vector<pugi::xml_node> nodes;
        bool for_each(pugi::xml_node& node) override {
            if (std::strcmp(node.name(), "double") == 0) nodes.push_back(node);
            return true;
        }
    } places;
    root.traverse(places);
    bench::Random random(1);
    std::vector<Path> paths;
    for (std::uint64_t i = 0; i < count; ++i)
        paths.push_back(pathTo(places.nodes[random.below(places.nodes.size())]));
    return paths;
}

void path(const Arguments& arguments, Result& result) {
    pugi::xml_document document;
    loadText(document, bench::readFile(arguments.text("document")));
    const auto paths = somePaths(top(document), 2'000);
    std::size_t next = 0;
    double sum = 0;
    bench::repeat(arguments, result, [&]() -> std::uint64_t {
        pugi::xml_node node = document.child("root");
        for (const std::string& name : paths[next++ % paths.size()])
            node = node.find_child_by_attribute("name", name.c_str());
        bench::require(!node.empty(), "no such value");
        sum += node.text().as_double();
        return 1;
    });
    bench::keep(sum);
}

struct Collector : pugi::xml_writer {
    std::string text;
    void write(const void* data, std::size_t size) override {
        text.append(static_cast<const char*>(data), size);
    }
};

void save(const Arguments& arguments, Result& result) {
    pugi::xml_document document;
    loadText(document, bench::readFile(arguments.text("document")));
    const Walk found = walk(top(document));
    std::uint64_t size = 0;
    bench::repeat(arguments, result, [&]() -> std::uint64_t {
        Collector collector;
        document.save(collector, "  ", pugi::format_indent, pugi::encoding_utf8);
        size = collector.text.size();
        return 1;
    });
    result.set("text", size);
    result.set("values", found.digest.text());
}

class TreeSink final : public bench::Sink {
  public:
    explicit TreeSink(pugi::xml_document& document) : node_(document) {}

    void open(std::string_view element, const bench::Name& name, std::string_view className) override {
        node_ = append(element, name);
        if (!className.empty()) node_.append_attribute("class").set_value(std::string(className).c_str());
    }
    void close() override { node_ = node_.parent(); }

    void numbers(bench::Type type, const bench::Name& name, std::string_view unit, const double* values,
                 std::uint64_t count) override {
        pugi::xml_node made = append(bench::elementOf(type), name);
        if (!unit.empty()) made.append_attribute("units").set_value(std::string(unit).c_str());
        if (count == 1) return setNumber(made.text(), type, values[0]);
        std::string text;
        for (std::uint64_t i = 0; i < count; ++i) {
            char number[32];
            std::snprintf(number, sizeof number, i == 0 ? "%.7g" : " %.7g", values[i]);
            text += number;
        }
        made.text().set(text.c_str());
    }

    void text(const bench::Name& name, const bench::Name& text) override {
        append("string", name).text().set(text.text.c_str());
    }

  private:
    pugi::xml_node append(std::string_view element, const bench::Name& name) {
        pugi::xml_node made = node_.append_child(std::string(element).c_str());
        made.append_attribute("name").set_value(name.text.c_str());
        return made;
    }

    // As a host would: the number itself is given.
    static void setNumber(pugi::xml_text text, bench::Type type, double value) {
        if (type < bench::Type::int64)
            text.set(static_cast<int>(value));
        else if (type == bench::Type::int64)
            text.set(static_cast<long long>(value));
        else if (type == bench::Type::scalar)
            text.set(static_cast<float>(value));
        else
            text.set(value);
    }

    pugi::xml_node node_;
};

void build(const Arguments& arguments, Result& result) {
    const bench::Recording recording(
        {arguments.text("workload"), arguments.number("size", 1000), arguments.number("depth", 10)});
    pugi::xml_document document;
    TreeSink first(document);
    recording.replay(first);
    const Walk found = walk(top(document));
    bench::repeatFresh(arguments, result, [&] {
        document.reset();
        return [&]() -> std::uint64_t {
            TreeSink sink(document);
            recording.replay(sink);
            return found.values;
        };
    });
    result.set("values", found.digest.text());
}

}  // namespace

int main(int count, char** words) {
    return bench::run(count, words,
                      {{"load", load},
                       {"memory", memory},
                       {"traverse", traverse},
                       {"path", path},
                       {"save", save},
                       {"build", build}});
}
