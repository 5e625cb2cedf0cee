// qvt diff A B [PATH] [BPATH]
#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>
#include <vector>

#include "Describe.h"
#include "Differences.h"
#include "Output.h"
#include "Paths.h"
#include "Verbs.h"
#include "Waiting.h"

namespace qvt {

namespace {

constexpr const char* kAdded = "added";
constexpr const char* kRemoved = "removed";
constexpr const char* kChanged = "changed";

// Prints differences as they are found.
class Printer {
  public:
    Printer(Output& output, const Options& options)
        : output_(output), isJson_(options.format == Format::json), isSilent_(options.quiet && !isJson_) {
        if (isJson_)
            output_.put("{\"left\":" + dumped(options.store) + ",\"right\":" + dumped(options.target) +
                        ",\"differences\":[");
    }

    // An object that one side has alone, with all that is below it.
    void one(const char* how, const std::string& path, const Side& side) {
        ++(how == kAdded ? added_ : removed_);
        if (isSilent_) return;
        std::uint64_t objects = 1;
        for (Walk walk(side.object, ""); walk.next();) ++objects;
        if (isJson_) return putJson(factsWith(how, path, side), "objects", objects);
        const Line line(side.view, output_.palette(), true);
        const std::string count = objects == 1 ? "" : " (" + std::to_string(objects) + " objects)";
        const std::string text = called(path) + ": " + line.kind(side.object) + line.value(side.object) +
                                 line.remark(side.object) + count;
        output_.line(how == kAdded ? output_.palette().added("+ ") + text
                                   : output_.palette().removed("- ") + text);
    }

    // An object that both sides have.
    void changed(const std::string& path, const Side& right, const std::vector<Change>& changes) {
        ++changed_;
        if (isSilent_) return;
        if (isJson_) return putJson(factsWith(kChanged, path, right), "changes", inJson(changes));
        for (const Change& change : changes)
            if (!change.text.empty())
                output_.line(output_.palette().changed("~ ") + called(path) + ": " + change.text);
    }

    bool isEqual() const { return added_ + removed_ + changed_ == 0; }

    void finish() {
        if (isJson_)
            output_.line(std::string(isEqual() ? "" : "\n") + "],\"added\":" + std::to_string(added_) +
                         ",\"removed\":" + std::to_string(removed_) + ",\"changed\":" +
                         std::to_string(changed_) + ",\"equal\":" + (isEqual() ? "true" : "false") + "}");
        output_.finish();
    }

  private:
    static std::string called(const std::string& path) { return path.empty() ? "the root" : printable(path); }

    static Json factsWith(const char* how, const std::string& path, const Side& side) {
        Json facts{{"change", how}};
        facts.update(factsAt(path, side.object, side.view));
        return facts;
    }

    static Json inJson(const std::vector<Change>& changes) {
        Json rows = Json::array();
        for (const Change& each : changes)
            rows.push_back({{"what", each.what}, {"from", each.from}, {"to", each.to}});
        return rows;
    }

    void putJson(Json facts, const char* key, Json value) {
        facts[key] = std::move(value);
        output_.put((std::exchange(isFirst_, false) ? "\n" : ",\n") + dumped(facts));
    }

    Output& output_;
    bool isJson_;
    bool isSilent_;
    bool isFirst_ = true;
    std::uint64_t added_ = 0;
    std::uint64_t removed_ = 0;
    std::uint64_t changed_ = 0;
};

// Whether siblings that both sides have stand in the same order, also where others stand between them.
class Order {
  public:
    void pair(std::uint32_t left, std::uint32_t right) {
        if (places_.empty() && left == right) return;
        places_.emplace_back(left, right);
    }

    bool isSame() {
        std::sort(places_.begin(), places_.end());
        return std::is_sorted(places_.begin(), places_.end(),
                              [](const auto& one, const auto& next) { return one.second < next.second; });
    }

  private:
    // Of those behind the first that stands elsewhere.
    std::vector<std::pair<std::uint32_t, std::uint32_t>> places_;
};

// The children of one object of each side. Those of one name are brought together as they come, and where
// both sides have the same order none has to wait.
class Siblings {
  public:
    Siblings(const Object& left, const Object& right, std::size_t length)
        : pathLength(length), left_(left), right_(right) {}

    // Of what holds them.
    std::size_t pathLength;

    // The next two that belong together; none at the end.
    std::pair<Object, Object> next() {
        while (!later_.first && !(left_.isAtEnd() && right_.isAtEnd()))
            if (auto pair = step(); pair.first) return pair;
        return std::exchange(later_, {});
    }

    // What is left at the end.
    Waiting& onlyLeft() { return waitingLeft_; }
    Waiting& onlyRight() { return waitingRight_; }
    bool hasSameOrder() { return order_.isSame(); }

  private:
    using Pair = std::pair<Object, Object>;

    // A property and a container of one name are two things.
    static std::string keyOf(const Object& object) {
        return (object.container ? 'c' : object.table() ? 't' : 'p') + nameOf(object);
    }

    Pair step() {
        Placed left = take(left_, leftCount_);
        Placed right = take(right_, rightCount_);
        std::string leftKey = left.object ? keyOf(left.object) : "";
        std::string rightKey = right.object ? keyOf(right.object) : "";
        if (left.object && leftKey == rightKey) return paired(std::move(left), std::move(right));
        Pair first;
        if (left.object) first = meet(std::move(leftKey), std::move(left), waitingRight_, waitingLeft_, true);
        if (right.object) {
            Pair second = meet(std::move(rightKey), std::move(right), waitingLeft_, waitingRight_, false);
            (first.first ? later_ : first) = std::move(second);
        }
        return first;
    }

    static Placed take(Children& children, std::uint32_t& count) {
        return children.isAtEnd() ? Placed() : Placed{children.take(), count++};
    }

    Pair meet(std::string key, Placed placed, Waiting& others, Waiting& own, bool isLeft) {
        Placed other = others.take(key);
        if (!other.object) {
            own.put(std::move(key), std::move(placed));
            return {};
        }
        return isLeft ? paired(std::move(placed), std::move(other))
                      : paired(std::move(other), std::move(placed));
    }

    Pair paired(Placed left, Placed right) {
        order_.pair(left.position, right.position);
        return {std::move(left.object), std::move(right.object)};
    }

    Children left_;
    Children right_;
    std::uint32_t leftCount_ = 0;
    std::uint32_t rightCount_ = 0;
    Waiting waitingLeft_;
    Waiting waitingRight_;
    Pair later_;
    Order order_;
};

class Comparison {
  public:
    Comparison(ObjectsView& left, ObjectsView& right, Printer& printer, const Options& options)
        : left_(left), right_(right), printer_(printer), ignoresOrder_(options.ignoresOrder) {}

    void compare(const Object& left, const Object& right) {
        path_ = left_.pathOf(left);
        begin(left, right);
        while (!open_.isEmpty()) {
            Siblings& siblings = open_.top();
            path_.resize(siblings.pathLength);
            const auto [one, other] = siblings.next();
            if (!one) {
                end(siblings);
                continue;
            }
            path_ = joined(path_, nameOf(one));
            begin(one, other);
        }
    }

  private:
    static int sortOf(const Object& object) { return object.container ? 0 : object.table() ? 1 : 2; }

    void begin(const Object& left, const Object& right) {
        const Side from{left, left_};
        const Side to{right, right_};
        if (sortOf(left) != sortOf(right)) {
            printer_.one(kRemoved, path_, from);
            printer_.one(kAdded, path_, to);
            return;
        }
        const std::vector<Change> changes = changesBetween(from, to);
        if (!changes.empty()) printer_.changed(path_, to, changes);
        if (!left.primitive()) {
            holders_.push({left, right});
            open_.push(Siblings(left, right, path_.size()));
        }
    }

    void end(Siblings& siblings) {
        if (!ignoresOrder_ && !siblings.hasSameOrder())
            printer_.changed(path_, {holders_.top().second, right_},
                             {{"order", Json(), Json(), "order of children"}});
        tell(kRemoved, siblings.onlyLeft(), left_);
        tell(kAdded, siblings.onlyRight(), right_);
        open_.pop();
        holders_.pop();
    }

    void tell(const char* how, Waiting& objects, ObjectsView& view) {
        while (!objects.isEmpty()) {
            const Placed each = objects.takeFirst();
            printer_.one(how, joined(path_, nameOf(each.object)), {each.object, view});
        }
    }

    ObjectsView& left_;
    ObjectsView& right_;
    Printer& printer_;
    bool ignoresOrder_;
    std::string path_;
    Stack<std::pair<Object, Object>> holders_;
    Stack<Siblings> open_;
};

// One of the two stores, with its classes.
class Compared {
  public:
    Compared(const std::string& path, const Libraries& libraries, Messages& messages)
        : source_(path, libraries, messages),
          locator_(libraries.locatorFor(source_.store())),
          view_(source_.store(), source_.name(), locator_.get()) {}

    ObjectsView& view() { return view_; }

  private:
    Source source_;
    SharedPtr<ISchemaLocator> locator_;
    ObjectsView view_;
};

int diff(const Options& options) {
    Messages messages(options.quiet);
    const Libraries libraries(options.schemas, messages);
    Compared left(options.store, libraries, messages);
    Compared right(options.target, libraries, messages);
    const Object one = left.view().get(options.path);
    const Object other = right.view().get(options.hasSourcePath ? options.sourcePath : options.path);
    Output output(options);
    Printer printer(output, options);
    Comparison(left.view(), right.view(), printer, options).compare(one, other);
    printer.finish();
    return printer.isEqual() && !messages.hasReports() ? kDone : kNo;
}

}  // namespace

const Verb kDiff{
    "diff",
    "tell how two stores, documents or objects differ",
    "Compares what is at PATH in A and at BPATH in B (at the same path if that is left out, the roots if\n"
    "both are) with all that is below, by name. One line for each thing that differs:\n"
    "  - PATH: ...            only A has it, with all that is below\n"
    "  + PATH: ...            only B has it\n"
    "  ~ PATH: WHAT A -> B    both have it: kind, type, class, value with unit, name (display names by\n"
    "                         locale), target, origin (own, inherited from a class, overridden), optional,\n"
    "                         defaults, locale; order of children, unless --ignore-order; of two roots\n"
    "                         their name and version\n"
    "Numbers are compared as they are stored; units are not converted.\n"
    "Exit status 0 if nothing differs, 1 if something does, or a document had reports. -q prints nothing but "
    "JSON.",
    "  qvt diff plant.qvt plant.xml\n"
    "  qvt diff plant.qvt plant.qvt hall.p1 hall.p3\n"
    "  qvt diff plant.qvt old.qvt hall -f json",
    Verb::kBoth | Verb::kSchemas | Verb::kAnswers | Verb::kJson,
    diff};

}  // namespace qvt
