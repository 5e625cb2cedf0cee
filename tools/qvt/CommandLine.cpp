#include "CommandLine.h"

#include <cctype>
#include <string_view>

#include "Completion.h"
#include "Grammar.h"
#include "Manual.h"
#include "Messages.h"
#include "Nearest.h"
#include "Output.h"
#include "Text.h"

namespace qvt {

namespace {

std::string verbNames() {
    std::string names;
    for (const Verb* verb : verbs()) names += (names.empty() ? "" : ", ") + std::string(verb->name);
    return names;
}

std::string noOption(const CLI::App& app, const std::string& word, const char* otherwise = "") {
    const std::string option = word.substr(0, word.find('='));
    Nearest nearest(option);
    for (const CLI::Option* each : app.get_options())
        for (const std::string& name : each->get_lnames()) nearest.offer("--" + name);
    return "no option " + option + (nearest.name().empty() ? otherwise : nearest.question());
}

std::string noVerb(const std::string& word) {
    Nearest nearest(word);
    for (const Verb* verb : verbs()) nearest.offer(verb->name);
    nearest.offer("help");
    return "no verb " + shown(word) +
           (nearest.name().empty() ? "; there are " + verbNames() : nearest.question());
}

int usage(const std::string& words, const std::string& verb = "") {
    std::string message = words;
    const bool isName = message.size() > 1 && std::islower(static_cast<unsigned char>(message[1])) == 0;
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

int printHelp(const Grammar& grammar, const std::string& about) {
    if (about.empty()) return print(helpOf(grammar.app, ""));
    const CLI::App* verb = grammar.verb(about);
    return verb ? print(helpOf(*verb, "qvt ")) : usage(noVerb(about));
}

bool isOption(const std::string& word) { return word.size() > 1 && word[0] == '-'; }

// What is wrong with words that the verb does not take.
std::string unexpected(const CLI::App& verb) {
    std::string words;
    std::size_t count = 0;
    bool isOnlyWords = false;
    for (const std::string& word : verb.remaining()) {
        if (!isOnlyWords && word != "--" && isOption(word)) return noOption(verb, word);
        isOnlyWords = isOnlyWords || word == "--";
        if (word == "--") continue;
        words += " " + shown(word);
        ++count;
    }
    return std::string("the following argument") + (count == 1 ? " was" : "s were") +
           " not expected:" + words + (isOnlyWords ? ", as behind -- nothing is an option" : "");
}

std::string noBeginning(const CLI::App& app, const std::string& word) {
    return isOption(word) ? noOption(app, word, "; a verb comes first") : noVerb(word);
}

// The tool, a verb, -h, and some word that was begun with.
constexpr int kMostForHelp = 4;

int parse(Grammar& grammar, int argc, const char* const* argv) {
    CLI::App& app = grammar.app;
    const auto verb = [&app] {
        return app.get_subcommands().empty() ? std::string() : app.get_subcommands().front()->get_name();
    };
    try {
        app.parse(argc, argv);
        return grammar.isHelp ? printHelp(grammar, grammar.about) : kDone;
    } catch (const CLI::CallForHelp&) {
        // Among the words of an edit, -h is more likely meant as one of them than as a question.
        if (argc > kMostForHelp)
            return usage("help is asked for by itself; -- goes before a VALUE that begins with -", verb());
        return printHelp(grammar, verb());
    } catch (const CLI::CallForVersion& version) {
        return print(std::string(version.what()) + "\n");
    } catch (const CLI::ExtrasError&) {
        if (!app.remaining().empty()) return usage(noBeginning(app, app.remaining().front()));
        if (!verb().empty()) return usage(unexpected(*app.get_subcommands().front()), verb());
    } catch (const CLI::ParseError& error) {
        if (!verb().empty()) return usage(error.what(), verb());
    }
    return usage(argc > 1 ? noBeginning(app, argv[1]) : "a verb is missing; there are " + verbNames());
}

bool isAsked(int argc, const char* const* argv, const char* word) {
    return argc > 1 && std::string_view(argv[1]) == word;
}

}  // namespace

Command commandOf(int argc, const char* const* argv) {
    Grammar grammar;
    if (isAsked(argc, argv, "__manual"))
        grammar.command.status = print(manualOf(grammar));
    else if (isAsked(argc, argv, "__complete"))
        grammar.command.status = print(completionsOf(grammar, {argv + 2, argv + argc}));
    else if (const int status = parse(grammar, argc, argv); status != kDone)
        grammar.command.status = status;
    return grammar.command;
}

}  // namespace qvt
