#include "CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cctype>
#include <utility>
#include <vector>

#include "Messages.h"
#include "Output.h"

namespace qvt {

namespace {

const Verb* const kVerbs[] = {&kExport, &kTree, &kShow, &kGet, &kStat, &kSchema, &kUnits, &kConforms, &kDump};

constexpr const char* kFooter =
    "STORE is a document (model.xml), or - for one on standard input. File stores (model.qvt) are not in\n"
    "this build yet. PATH is a dotted path without the root's name; no PATH means the root.\n"
    "\n"
    "Exit status: 0 done, or yes; 1 no, or a document had reports (its elements that were skipped);\n"
    "2 wrong usage; 3 the input is missing, unreadable or not well-formed, or nothing is at PATH;\n"
    "70 the program could not do its work.\n"
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
            return indexOf(text) < words.size() ? std::string() : text + " is none of " + all;
        });
}

std::string mustBeCount(const std::string& text) {
    const bool isNumber =
        !text.empty() && text.size() < 10 && text.find_first_not_of("0123456789") == std::string::npos;
    return isNumber ? std::string() : text + " is no number of levels";
}

void addPlaces(CLI::App& app, const Verb& verb, Options& options) {
    if (verb.has(Verb::kStore))
        app.add_option("STORE", options.store, "document, or - for standard input")->required();
    if (verb.has(Verb::kPath)) app.add_option("PATH", options.path, "dotted path")->required();
    if (verb.has(Verb::kOptionalPath))
        app.add_option("PATH", options.path, "dotted path; the root if left out");
    if (verb.has(Verb::kClass)) app.add_option("CLASS", options.className, "class")->required();
    if (verb.has(Verb::kOptionalName))
        app.add_option("NAME", options.name, "unit or dimension; all if left out");
    if (verb.has(Verb::kRecordOptions))
        app.add_option("OFFSET", options.offset, "a record's offset, as 12 or 0xc");
}

void addChoices(CLI::App& app, const Verb& verb, Options& options) {
    if (verb.has(Verb::kStore))
        app.add_option("--schemas", options.schemas,
                       "document to look up classes in, besides the document itself; may be repeated")
            ->type_name("DOC")
            ->allow_extra_args(false);
    if (verb.has(Verb::kTreeOptions)) {
        app.add_option("-d,--depth", options.depth, "how many levels below the object")
            ->type_name("DEPTH")
            ->check(mustBeCount);
        app.add_flag("--values", options.values, "with values and units");
    }
    if (verb.has(Verb::kRecordOptions)) app.add_flag("--all", options.all, "every record");
    if (verb.has(Verb::kJson)) addWords(app, "-f,--format", kFormats, options.format, "form of the answer");
    addWords(app, "--color", kColors, options.color, "colours of tree; auto heeds the terminal and NO_COLOR");
    app.add_option("-o,--output", options.output,
                   "write to a file, which takes its name only when it is whole")
        ->type_name("FILE");
    app.add_flag("-q,--quiet", options.quiet, "no reports, warnings and progress on standard error");
}

std::string verbNames() {
    std::string names;
    for (const Verb* verb : kVerbs) names += (names.empty() ? "" : ", ") + std::string(verb->name);
    return names;
}

int usage(const std::string& words, const std::string& verb = "") {
    std::string message = words;
    const bool isName = message.size() > 1 && std::isupper(static_cast<unsigned char>(message[1])) != 0;
    if (!isName) message[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(message[0])));
    Messages::fail("qvt: error: " + message + " (see qvt " + (verb.empty() ? "" : verb + " ") + "--help)");
    return kUsage;
}

int print(const std::string& text) {
    Output output{Options()};
    output.put(text);
    output.finish();
    return kDone;
}

std::string helpOn(const CLI::App& app, const std::string& prefix) {
    return app.get_formatter()->make_help(&app, prefix + app.get_name(), CLI::AppFormatMode::Normal);
}

int printHelp(CLI::App& app, const std::string& about) {
    if (about.empty()) return print(helpOn(app, ""));
    const auto verbs = app.get_subcommands([&](CLI::App* each) { return each->check_name(about); });
    if (verbs.empty()) return usage("no verb " + about + "; there are " + verbNames());
    return print(helpOn(*verbs.front(), "qvt "));
}

void addVerb(CLI::App& app, const Verb& verb, Command& command) {
    CLI::App* sub = app.add_subcommand(verb.name, verb.summary);
    sub->group("Verbs");
    sub->footer(verb.details);
    addPlaces(*sub, verb, command.options);
    addChoices(*sub, verb, command.options);
    sub->callback([&command, &verb] { command.verb = &verb; });
}

int parse(CLI::App& app, int argc, const char* const* argv) {
    const auto verb = [&app] {
        return app.get_subcommands().empty() ? std::string() : app.get_subcommands().front()->get_name();
    };
    try {
        app.parse(argc, argv);
        return kDone;
    } catch (const CLI::CallForHelp&) {
        return printHelp(app, verb());
    } catch (const CLI::CallForVersion& version) {
        return print(std::string(version.what()) + "\n");
    } catch (const CLI::ParseError& error) {
        if (!verb().empty()) return usage(error.what(), verb());
        const std::string first = argc > 1 ? "no verb " + std::string(argv[1]) : "a verb is missing";
        return usage(first + "; there are " + verbNames());
    }
}

}  // namespace

Command commandOf(int argc, const char* const* argv) {
    Command command;
    CLI::App app(
        "Reads, shows and writes design data: a tree of objects with typed values, units and classes.",
        "qvt");
    app.footer(kFooter);
    app.get_formatter()->label("SUBCOMMAND", "VERB");
    app.get_formatter()->label("TEXT", "");
    app.require_subcommand(1);
    app.set_version_flag("--version", "qvt " QVT_VERSION);
    for (const Verb* verb : kVerbs) addVerb(app, *verb, command);
    std::string about;
    CLI::App* help = app.add_subcommand("help", "tell about a verb");
    help->group("Verbs");
    help->add_option("VERB", about, "one of the above");
    help->callback([&] { command.status = printHelp(app, about); });
    const int status = parse(app, argc, argv);
    if (status != kDone) command.status = status;
    return command;
}

}  // namespace qvt
