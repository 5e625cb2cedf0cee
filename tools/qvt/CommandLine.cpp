#include "CommandLine.h"

#include <CLI/CLI.hpp>
#include <map>

#include "Messages.h"

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

const std::map<std::string, Format> kFormats{{"text", Format::text}, {"json", Format::json}};
const std::map<std::string, Color> kColors{
    {"auto", Color::automatic}, {"always", Color::always}, {"never", Color::never}};

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
        app.add_option("-d,--depth", options.depth, "how many levels below the object")->type_name("DEPTH");
        app.add_flag("--values", options.values, "with values and units");
    }
    if (verb.has(Verb::kRecordOptions)) app.add_flag("--all", options.all, "every record");
    if (verb.has(Verb::kJson))
        app.add_option("-f,--format", options.format, "text or json")
            ->type_name("FORMAT")
            ->transform(CLI::Transformer(kFormats))
            ->default_str("text");
    if (verb.has(Verb::kColor))
        app.add_option("--color", options.color, "auto, always or never; auto heeds NO_COLOR")
            ->type_name("WHEN")
            ->transform(CLI::Transformer(kColors))
            ->default_str("auto");
    app.add_option("-o,--output", options.output,
                   "write to a file, which takes its name only when it is whole")
        ->type_name("FILE");
    app.add_flag("-q,--quiet", options.quiet, "no reports, warnings and progress on standard error");
}

int usage(const CLI::App& app, const std::string& words) {
    const CLI::App* verb = app.get_subcommands().empty() ? nullptr : app.get_subcommands().front();
    Messages::fail("qvt: error: " + words + " (see qvt " + (verb ? verb->get_name() + " " : "") + "--help)");
    return kUsage;
}

}  // namespace

Command commandOf(int argc, const char* const* argv) {
    Command command;
    CLI::App app(
        "Reads, shows and writes design data: a tree of objects with typed values, units and classes.",
        "qvt");
    app.footer(kFooter);
    app.require_subcommand(1);
    app.set_version_flag("--version", "qvt " QVT_VERSION);
    for (const Verb* verb : kVerbs) {
        CLI::App* sub = app.add_subcommand(verb->name, verb->summary);
        sub->footer(verb->details);
        addPlaces(*sub, *verb, command.options);
        addChoices(*sub, *verb, command.options);
        sub->callback([&command, verb] { command.verb = verb; });
    }
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& asked) {
        command.verb = nullptr;
        command.status = app.exit(asked);
    } catch (const CLI::ParseError& error) {
        command.verb = nullptr;
        command.status = usage(app, error.what());
    }
    return command;
}

}  // namespace qvt
