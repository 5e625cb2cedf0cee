// qvt find STORE [PATH]
#include <algorithm>
#include <nlohmann/json.hpp>
#include <optional>

#include "Condition.h"
#include "Describe.h"
#include "Glob.h"
#include "MissingClasses.h"
#include "NewValues.h"
#include "Output.h"
#include "Paths.h"
#include "Units.h"
#include "Verbs.h"

namespace qvt {

namespace {

// What is asked for; an object that meets all of it is found.
class Search {
  public:
    Search(const Options& options, Session& session)
        : type_(kindOrTypeIn(options)), unit_(options.unit.empty() ? 0 : unitNamed(options.unit)) {
        if (!options.name.empty()) name_.emplace(options.name);
        if (options.hasCondition) condition_.emplace(options.condition);
        if (!options.className.empty()) family_.emplace(options.className, session.classes());
    }

    bool finds(const Object& object) {
        IPrimitive* primitive = object.primitive();
        if (name_ && !name_->matches(nameOf(object))) return false;
        if (!type_.empty() && type_ != kindOf(object) && type_ != typeOf(object)) return false;
        if (unit_ != 0 && (!primitive || primitive->units() != unit_)) return false;
        if (family_ && !family_->has(classOf(object))) return false;
        return !condition_ || (primitive && condition_->isMetBy(*primitive));
    }

    // A class that nobody knows was mistyped, unless some object names it all the same.
    void mustBeKnown(Session& session, const Options& options) const {
        if (family_ && !family_->isKnown()) throw unknownClass(options.className, session.classes());
    }

    // Objects of classes that nobody knows may be of the family all the same.
    void tellWhatIsNotKnown(Session& session) const {
        if (family_ && !family_->missing().empty())
            tellOfMissing(family_->missing(), session.name(), session.messages());
    }

    void tellWhatWasNotCompared(Session& session) const {
        if (!condition_ || condition_->incomparable() == 0) return;
        session.messages().warn(session.name() + ": warning: values in " +
                                unitName(condition_->incomparable()) + " were not compared with one in " +
                                unitName(condition_->unit()) + ": how they relate is not known");
    }

  private:
    static std::string kindOrTypeIn(const Options& options) {
        const std::vector<std::string> all = kindAndTypeNames();
        const bool isOne = options.type.empty() || options.type == "primitive" ||
                           std::find(all.begin(), all.end(), options.type) != all.end();
        if (!isOne) throw unknownType(options.type);
        return options.type;
    }

    std::optional<Glob> name_;
    std::string type_;
    std::uint32_t unit_;
    std::optional<ClassFamily> family_;
    std::optional<Condition> condition_;
};

// Prints what is found as it is found.
class Findings {
  public:
    Findings(Output& output, ObjectsView& view, const Options& options)
        : output_(output), view_(view), options_(options), line_(view, output.palette(), true) {
        if (isJson()) output_.put("{\"found\":[");
    }

    void add(const std::string& path, const Object& object) {
        if (isJson())
            addJson(path, object);
        else if (options_.values)
            output_.line(output_.palette().name(printable(path)) + line_.value(object) +
                         line_.remark(object));
        else
            output_.line(output_.isTerminal() ? printable(path) : path);
        ++count_;
    }

    bool isEmpty() const { return count_ == 0; }

    void finish() {
        if (isJson()) output_.line(isEmpty() ? "]}" : "\n]}");
        output_.finish();
    }

  private:
    bool isJson() const { return options_.format == Format::json; }

    void addJson(const std::string& path, const Object& object) {
        Json facts = factsAt(path, object, view_);
        if (options_.values && object.primitive()) addValue(facts, object, view_.locator());
        output_.put((isEmpty() ? "\n" : ",\n") + dumped(facts));
    }

    Output& output_;
    ObjectsView& view_;
    const Options& options_;
    Line line_;
    std::uint64_t count_ = 0;
};

// From the object at PATH down; the root is no place in a store, and never found.
void searchIn(ObjectsView& view, const Object& top, Search& search, Findings& findings) {
    Walk walk(top, view.pathOf(top));
    const bool isRoot = view.hasRoot() && view.isRoot(top);
    if (!isRoot && search.finds(top)) findings.add(view.pathOf(top), top);
    while (const Object object = walk.next())
        if (search.finds(object)) findings.add(walk.path(), object);
}

int find(const Options& options) {
    if (options.className.find(';') != std::string::npos)
        throw Failure(kUsage, "error: --class takes one class");
    Session session(options);
    ObjectsView view(session);
    const Object top = view.get(options.path);
    Search search(options, session);
    Output output(options);
    Findings findings(output, view, options);
    searchIn(view, top, search, findings);
    if (findings.isEmpty()) search.mustBeKnown(session, options);
    findings.finish();
    search.tellWhatIsNotKnown(session);
    search.tellWhatWasNotCompared(session);
    return findings.isEmpty() ? kNo : session.status();
}

}  // namespace

const Verb kFind{
    "find",
    "print the paths of objects that are looked for",
    "One path a line, of PATH and all that is below it, where all that is asked for holds:\n"
    "  --name    the name matches GLOB: * stands for any characters, ? for one, [a-z] for one of these\n"
    "  --class   the class text names CLASS or a class that comes down from it (whose table names it, or\n"
    "            another one that does, as its own class); of a struct, the class of its fields\n"
    "  --type    node, group, link, table, primitive, or the type of a primitive: double, string and so on\n"
    "  --unit    the unit is this one\n"
    "  --value   the value, or one of its numbers or texts, meets CONDITION: a number behind <, <=, >, >=,\n"
    "            = or !=, with a unit or without one; a text behind = or !=; or a glob for texts. With a\n"
    "            unit, numbers in all units of its dimension are converted; without one, none is.\n"
    "Exit status 1 if nothing is found, or if objects name classes of which nobody knows what they come "
    "down\n"
    "from. Nothing is looked for below links.",
    "  qvt find plant.qvt --class Types.Pump\n"
    "  qvt find plant.qvt hall --name 'p*' --type node\n"
    "  qvt find plant.qvt --value '>= 7000 Watt' --values",
    Verb::kStore | Verb::kSchemas | Verb::kAnswers | Verb::kOptionalPath | Verb::kJson | Verb::kFindOptions,
    find};

}  // namespace qvt
