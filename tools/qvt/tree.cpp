// qvt tree STORE [PATH]
#include <nlohmann/json.hpp>

#include "Describe.h"
#include "Output.h"
#include "Stack.h"
#include "Verbs.h"

namespace qvt {

namespace {

// Deeper levels are numbered, not indented: a document can be nested so deep that its drawing would be mostly
// indentation.
constexpr std::size_t kDeepestIndent = 40;

// What is drawn in front of a child: of the last one, of another one, and below each of these.
struct Strokes {
    const char* last;
    const char* other;
    const char* belowLast;
    const char* belowOther;
};

constexpr Strokes kLines{"└── ", "├── ", "    ", "│   "};
constexpr Strokes kAscii{"`-- ", "|-- ", "    ", "|   "};

class Drawing {
  public:
    Drawing(Output& output, ObjectsView& view, const Options& options)
        : output_(output),
          line_(view, output.palette(), options.values),
          depth_(options.depth),
          strokes_(isUtf8Locale() ? kLines : kAscii) {}

    void draw(const Object& top) {
        output_.line(line_.of(top));
        open(top, false);
        while (!levels_.isEmpty()) {
            if (levels_.top().children.isAtEnd())
                close();
            else
                drawNext();
        }
    }

  private:
    struct Level {
        Children children;
        std::size_t indent;  // of what stands around it
    };

    void drawNext() {
        Children& siblings = levels_.top().children;
        const Object child = siblings.take();
        const bool isLast = siblings.isAtEnd();
        const std::size_t depth = levels_.size();
        const std::string number = depth > kDeepestIndent ? "[" + std::to_string(depth) + "] " : "";
        output_.line(indent_ + (isLast ? strokes_.last : strokes_.other) + number + line_.of(child));
        open(child, isLast);
    }

    void open(const Object& parent, bool isLast) {
        if (levels_.size() >= depth_) return;
        const std::size_t indent = indent_.size();
        if (!levels_.isEmpty() && levels_.size() < kDeepestIndent)
            indent_ += isLast ? strokes_.belowLast : strokes_.belowOther;
        levels_.push({Children(parent), indent});
    }

    void close() {
        indent_.resize(levels_.top().indent);
        levels_.pop();
    }

    Output& output_;
    Line line_;
    std::uint32_t depth_;
    const Strokes& strokes_;
    std::string indent_;
    Stack<Level> levels_;
};

// Written as it goes: a tree of any depth needs no tree of JSON in memory.
class JsonTree {
  public:
    JsonTree(Output& output, ObjectsView& view, const Options& options)
        : output_(output), view_(view), options_(options) {}

    void write(const Object& top) {
        open(top);
        while (!levels_.isEmpty()) {
            if (levels_.top().children.isAtEnd())
                close();
            else
                writeNext();
        }
        output_.put("\n");
    }

  private:
    struct Level {
        Children children;
        bool isFirst = true;
    };

    void writeNext() {
        if (!std::exchange(levels_.top().isFirst, false)) output_.put(",\n");
        open(levels_.top().children.take());
    }

    // An object that may have children stays open for them.
    void open(const Object& object) {
        Json facts =
            levels_.isEmpty() ? factsAt(view_.pathOf(object), object, view_) : factsOf(object, view_);
        if (options_.values && object.primitive()) addValue(facts, object, view_.locator());
        std::string text = dumped(facts);
        const bool isOpen = !object.primitive() && levels_.size() < options_.depth;
        if (isOpen) text.back() = ',';
        output_.put(text);
        if (!isOpen) return;
        output_.put("\"children\":[");
        levels_.push({Children(object)});
    }

    void close() {
        levels_.pop();
        output_.put("]}");
    }

    Output& output_;
    ObjectsView& view_;
    const Options& options_;
    Stack<Level> levels_;
};

int tree(const Options& options) {
    Session session(options);
    ObjectsView view(session);
    const Object top = view.get(options.path);
    Output output(options);
    if (options.format == Format::json)
        JsonTree(output, view, options).write(top);
    else
        Drawing(output, view, options).draw(top);
    output.finish();
    return session.status();
}

}  // namespace

const Verb kTree{
    "tree",
    "draw what stands below an object",
    "One line for each object: name: kind or type [class], with --values also = value unit. Properties\n"
    "come first, then containers, each in their order. (inherited) came from a class and is as the class\n"
    "has it, (overridden) came from a class and has another value. -> is the target of a link, <...> the\n"
    "place of a value that lies elsewhere. Long values are cut; show prints them whole.",
    "  qvt tree plant.qvt hall --values\n"
    "  qvt tree pump.xml --schemas pump.lib.xml -d 2",
    Verb::kStore | Verb::kSchemas | Verb::kAnswers | Verb::kOptionalPath | Verb::kJson | Verb::kTreeOptions,
    tree};

}  // namespace qvt
