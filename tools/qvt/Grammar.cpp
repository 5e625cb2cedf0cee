#include "Grammar.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>

#include "Text.h"

namespace qvt {

namespace {

const Verb* const kVerbs[] = {&kImport, &kExport, &kTree,     &kShow,  &kGet,    &kFind,    &kDiff,
                              &kSet,    &kNew,    &kRm,       &kMv,    &kCp,     &kMerge,   &kStat,
                              &kSchema, &kUnits,  &kConforms, &kCheck, &kRepair, &kCompact, &kDump};

constexpr const char* kFooter =
    "STORE is a file store (model.qvt), a document (model.xml), or - for a document on standard input. "
    "Verbs\n"
    "that change something take file stores only. PATH is a dotted path without the root's name; no PATH\n"
    "means the root.\n"
    "\n"
    "Exit status: 0 done, or yes; 1 no (nothing is found, something differs, a repair has changed\n"
    "something), or a document had reports (its elements that were skipped); 2 wrong usage; 3 the input is\n"
    "missing, unreadable or not well-formed, or nothing is at PATH; 4 the store is damaged; 5 another\n"
    "writer has the store; 6 an edit was refused; 7 the output or the store cannot be written; 70 a fault\n"
    "of the program.\n"
    "\n"
    "qvt VERB --help tells more.";

template <class T>
using Words = std::vector<std::pair<std::string, T>>;

const Words<Format> kFormats{{"text", Format::text}, {"json", Format::json}};
const Words<Color> kColors{{"auto", Color::automatic}, {"always", Color::always}, {"never", Color::never}};

// An option whose value is one of a few words, the first of which holds when it is left out.
template <class T>
void addWords(CLI::App& app, const char* names, const Words<T>& words, T& value, const char* description) {
    std::string all;
    for (const auto& [word, meaning] : words) all += (all.empty() ? "" : "|") + word;
    const auto indexOf = [&words](const std::string& text) {
        return static_cast<std::size_t>(
            std::find_if(words.begin(), words.end(), [&](const auto& each) { return each.first == text; }) -
            words.begin());
    };
    app.add_option_function<std::string>(
           names, [&value, &words, indexOf](const std::string& text) { value = words[indexOf(text)].second; },
           description)
        ->type_name(all)
        ->check([&words, all, indexOf](const std::string& text) {
            return indexOf(text) < words.size() ? std::string() : shown(text) + " is none of " + all;
        });
}

std::string mustBeCount(const std::string& text) {
    constexpr std::size_t kMostDigits = 9;
    const bool isNumber = !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
    if (!isNumber) return shown(text) + " is no number of levels";
    return text.size() <= kMostDigits ? std::string() : text + " is too large; 999999999 levels are the most";
}

// Where nothing is meant by an empty word, a script has lost one: an option would be as if it was not given.
std::string mustNotBeEmpty(const std::string& text) {
    return text.empty() ? std::string("is empty") : std::string();
}

void addText(CLI::App& app, const char* name, std::string& value, const char* description) {
    app.add_option(name, value, description)->required();
}

void addWord(CLI::App& app, const char* name, std::string& value, const char* description) {
    app.add_option(name, value, description)->required()->check(mustNotBeEmpty);
}

void addStores(CLI::App& app, const Verb& verb, Options& options) {
    if (verb.has(Verb::kStore)) addWord(app, "STORE", options.store, "file store, document, or -");
    if (verb.has(Verb::kFile)) addWord(app, "STORE", options.store, "file store (*.qvt)");
    if (verb.has(Verb::kDocuments))
        app.add_option("DOC", options.words, "documents, or - for one, and last the file store (*.qvt)")
            ->type_name("")
            ->required()
            ->check(mustNotBeEmpty);
    if (verb.has(Verb::kBoth)) {
        addWord(app, "A", options.store, "file store, document, or -");
        addWord(app, "B", options.target, "the other one");
    }
    if (!verb.has(Verb::kRepairOptions)) return;
    addWord(app, "IN", options.store, "file store (*.qvt), which stays as it is");
    addWord(app, "OUT", options.target, "file store (*.qvt) to make");
}

void addPlaces(CLI::App& app, const Verb& verb, Options& options) {
    if (verb.has(Verb::kPath)) addText(app, "PATH", options.path, "dotted path");
    if (verb.has(Verb::kOptionalPath))
        app.add_option("PATH", options.path, "dotted path; the root if left out");
    if (verb.has(Verb::kPaths)) app.add_option("PATH", options.words, "dotted paths")->required();
    if (verb.has(Verb::kNewPath)) addText(app, "NEWPATH", options.target, "dotted path");
    if (verb.has(Verb::kBoth)) {
        app.add_option("PATH", options.path, "dotted path in both; the roots if left out");
        app.add_option("BPATH", options.sourcePath, "dotted path in B, where it is not that in A");
    }
    if (verb.has(Verb::kSource)) {
        addWord(app, "SOURCE", options.target, "file store, document, or -");
        app.add_option("SPATH", options.sourcePath, "dotted path in SOURCE; the root if left out");
    }
    if (verb.has(Verb::kType)) addText(app, "KIND|TYPE", options.type, "what to make");
    if (verb.has(Verb::kClass)) addWord(app, "CLASS", options.className, "class");
    if (verb.has(Verb::kOptionalName))
        app.add_option("NAME", options.name, "unit or dimension; all if left out");
    if (verb.has(Verb::kValues)) app.add_option("VALUE", options.words, "the value, or its parts");
    if (verb.has(Verb::kRecordOptions))
        app.add_option("OFFSET", options.offset, "a record's offset, as 12 or 0xc");
}

void addName(CLI::App& app, const char* option, std::string& value, const char* description,
             const char* type) {
    app.add_option(option, value, description)->type_name(type)->check(mustNotBeEmpty);
}

void addFinding(CLI::App& app, Options& options) {
    addName(app, "--name", options.name, "objects of such names; *, ? and [a-z] stand for others", "GLOB");
    addName(app, "--class", options.className, "objects of a class, or of one that comes down from it",
            "CLASS");
    addName(app, "--type", options.type, "objects of a kind, or primitives of a type", "KIND|TYPE");
    addName(app, "--unit", options.unit, "primitives in this unit", "UNIT");
    app.add_option("--value", options.condition, "primitives of such values, as '> 3.5 Meter' or 'Ac*'")
        ->type_name("CONDITION")
        ->check(mustNotBeEmpty);
    app.add_flag("--values", options.values, "print values and units too");
}

void addReading(CLI::App& app, const Verb& verb, Options& options) {
    if (verb.has(Verb::kSchemas))
        app.add_option("--schemas", options.schemas,
                       "store or document to look up classes in, besides STORE; may be repeated")
            ->type_name("STORE")
            ->allow_extra_args(false)
            ->check(mustNotBeEmpty);
    if (verb.has(Verb::kTreeOptions)) {
        app.add_option("-d,--depth", options.depth, "how many levels below the object")
            ->type_name("DEPTH")
            ->check(mustBeCount);
        app.add_flag("--values", options.values, "with values and units");
    }
    if (verb.has(Verb::kFindOptions)) addFinding(app, options);
    if (verb.has(Verb::kBoth))
        app.add_flag("--ignore-order", options.ignoresOrder, "let the order of siblings be no difference");
    if (verb.has(Verb::kRecordOptions)) app.add_flag("--all", options.all, "every record");
    if (verb.has(Verb::kJson)) addWords(app, "-f,--format", kFormats, options.format, "form of the answer");
}

void addEditing(CLI::App& app, const Verb& verb, Options& options) {
    if (verb.has(Verb::kType)) addName(app, "--class", options.className, "class of what is made", "CLASS");
    if (verb.has(Verb::kUnit)) addName(app, "--unit", options.unit, "unit of the primitive", "UNIT");
    if (verb.has(Verb::kTo)) addName(app, "--to", options.to, "copy into another file store", "STORE");
    if (verb.has(Verb::kDocuments)) {
        app.add_option("--into", options.into, "container to read into; the root if left out")
            ->type_name("PATH");
        app.add_flag("--keep-going", options.keepsGoing, "keep what could be read of a document");
    }
    if (verb.has(Verb::kRepairOptions)) {
        app.add_flag("--salvage", options.salvage, "look for records in every page");
        addName(app, "--recover", options.recovered, "group for what nothing leads to", "NAME");
    }
    if (verb.has(Verb::kDropOptions))
        app.add_flag("--drop-unreachable", options.dropsUnreachable,
                     "remove the records that nothing leads to");
    if (!verb.has(Verb::kValueOptions)) return;
    app.add_option("--uri", options.uri, "the value lies there")->type_name("URI");
    app.add_option("--name", options.names, "display name in a locale; may be repeated")
        ->type_name("LOCALE=TEXT")
        ->allow_extra_args(false);
}

void addChoices(CLI::App& app, const Verb& verb, Options& options) {
    addReading(app, verb, options);
    addEditing(app, verb, options);
    if (verb.has(Verb::kAnswers)) {
        addWords(app, "--color", kColors, options.color, "colours; auto heeds the terminal and NO_COLOR");
        app.add_option("-o,--output", options.output,
                       "write to a file, which takes its name only when it is whole")
            ->type_name("FILE")
            ->check(mustNotBeEmpty);
    }
    app.add_flag("-q,--quiet", options.quiet, "no reports, warnings and progress on standard error");
}

void mustReadOnce(const Verb& verb, const Options& options) {
    std::vector<std::string> inputs = options.schemas;
    inputs.push_back(options.store);
    if (verb.has(Verb::kBoth | Verb::kSource)) inputs.push_back(options.target);
    if (verb.has(Verb::kDocuments)) inputs.insert(inputs.end(), options.words.begin(), options.words.end());
    if (std::count(inputs.begin(), inputs.end(), "-") > 1)
        throw CLI::ValidationError("-", "standard input can be read once only");
}

// What the options alone do not say.
void take(const CLI::App& app, const Verb& verb, Command& command) {
    Options& options = command.options;
    options.hasUri = verb.has(Verb::kValueOptions) && app.count("--uri") != 0;
    options.hasCondition = verb.has(Verb::kFindOptions) && app.count("--value") != 0;
    options.hasSourcePath = verb.has(Verb::kBoth) && app.count("BPATH") != 0;
    if (verb.has(Verb::kDocuments)) {
        if (options.words.size() < 2) throw CLI::RequiredError("STORE");
        options.store = options.words.back();
        options.words.pop_back();
    }
    mustReadOnce(verb, options);
    command.verb = &verb;
}

void addVerb(CLI::App& app, const Verb& verb, Command& command) {
    CLI::App* sub = app.add_subcommand(verb.name, verb.summary);
    sub->group("Verbs");
    sub->footer(verb.details + std::string("\n\nExamples:\n") + verb.examples);
    addStores(*sub, verb, command.options);
    addPlaces(*sub, verb, command.options);
    addChoices(*sub, verb, command.options);
    sub->callback([&command, &verb, sub] { take(*sub, verb, command); });
}

}  // namespace

const std::vector<const Verb*>& verbs() {
    static const std::vector<const Verb*> all(std::begin(kVerbs), std::end(kVerbs));
    return all;
}

const char* footer() { return kFooter; }

Grammar::Grammar()
    : app("Reads, shows, compares, changes and writes design data: a tree of objects with typed values, "
          "units "
          "and classes.",
          "qvt") {
    app.footer(kFooter);
    app.get_formatter()->label("SUBCOMMAND", "VERB");
    app.get_formatter()->label("TEXT", "");
    app.require_subcommand(1);
    app.set_version_flag("--version", "qvt " QVT_VERSION);
    for (const Verb* verb : verbs()) addVerb(app, *verb, command);
    CLI::App* help = app.add_subcommand("help", "tell about a verb");
    help->group("Verbs");
    help->add_option("VERB", about, "one of the above");
    help->callback([this] { isHelp = true; });
}

const CLI::App* Grammar::verb(const std::string& name) const {
    const auto found = app.get_subcommands([&](const CLI::App* each) { return each->check_name(name); });
    return found.empty() ? nullptr : found.front();
}

// A list and one more cannot be told to the parser, and so it does not say it either.
std::string helpOf(const CLI::App& app, const std::string& prefix) {
    std::string text =
        app.get_formatter()->make_help(&app, prefix + app.get_name(), CLI::AppFormatMode::Normal);
    const std::size_t documents = text.find(" DOC...\n");
    if (documents != std::string::npos) text.insert(documents + 7, " STORE");
    return text;
}

std::string usageOf(const CLI::App& verb) {
    constexpr std::string_view kUsage = "Usage: ";
    const std::string text = helpOf(verb, "");
    const std::size_t begin = text.find(kUsage) + kUsage.size();
    return text.substr(begin, text.find('\n', begin) - begin);
}

}  // namespace qvt
