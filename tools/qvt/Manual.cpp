#include "Manual.h"

#include <string_view>

namespace qvt {

namespace {

// Text as it is: troff takes "-" for a hyphen, "\" for its own, and lines that begin with "." or "'" for
// requests.
std::string plain(std::string_view text) {
    std::string result;
    for (const char c : text) {
        if (c == '-') result += '\\';
        result += c;
        if (c == '\\') result += 'e';
    }
    const bool isRequest = !result.empty() && (result[0] == '.' || result[0] == '\'');
    return isRequest ? "\\&" + result : result;
}

template <class Act>
void forEachLine(std::string_view text, Act act) {
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(text.size(), line.size() + 1));
        act(line);
    }
}

// "WORD  MEANING", or a word that says it all.
std::string word(std::string_view line) {
    const std::size_t end = std::min(line.find("  "), line.size());
    const std::size_t meaning = std::min(line.find_first_not_of(' ', end), line.size());
    return ".TP\n" + plain(line.substr(0, end)) + "\n" +
           (meaning == line.size() ? "" : plain(line.substr(meaning)) + "\n");
}

std::string request(const char* name, std::string_view argument) {
    return std::string(".") + name + " \"" + plain(argument) + "\"\n";
}

// Commands, one a line.
std::string commands(std::string_view text) {
    std::string result = ".PP\n.nf\n";
    forEachLine(text, [&](std::string_view line) { result += plain(line) + "\n"; });
    return result + ".fi\n";
}

// A line that begins with two blanks has a word, and behind two more what it means; one that begins with more
// goes on with that. All else is text.
std::string paragraphs(std::string_view text) {
    std::string result;
    bool isWithin = false;
    forEachLine(text, [&](std::string_view line) {
        const std::size_t blanks = std::min(line.find_first_not_of(' '), line.size());
        if (blanks == 2) result += word(line.substr(2));
        if (blanks == 0 && (isWithin || line.empty())) result += ".PP\n";
        if (blanks != 2 && !line.empty()) result += plain(line.substr(blanks)) + "\n";
        isWithin = blanks != 0;
    });
    return result;
}

std::string optionText(const CLI::Option& option) {
    std::string names = option.get_name(false, true);
    for (std::size_t comma = names.find(','); comma != std::string::npos; comma = names.find(',', comma + 2))
        names.insert(comma + 1, " ");
    std::string type = option.get_type_name();
    if (option.get_items_expected_max() == 0) type.clear();
    if (option.get_positional()) names = option.get_name(true, false), type.clear();
    return ".TP\n.B " + plain(names) + (type.empty() ? "" : " \\fI" + plain(type) + "\\fP") + "\n" +
           plain(option.get_description()) + "\n";
}

std::string verbText(const CLI::App& app, const Verb& verb) {
    std::string text =
        request("SS", usageOf(app)) + plain(verb.summary) + ".\n.PP\n" + paragraphs(verb.details);
    for (const CLI::Option* option : app.get_options())
        if (option != app.get_help_ptr()) text += optionText(*option);
    return text + ".PP\nExamples:\n" + commands(verb.examples);
}

constexpr const char* kEnvironment =
    ".SH ENVIRONMENT\n"
    ".TP\n.B NO_COLOR\nIf it is set and not empty, \\-\\-color auto means never.\n"
    ".TP\n.B TERM\nNo colours are written to a terminal that is dumb, or of no kind.\n"
    ".TP\n.B LC_ALL, LC_CTYPE, LANG\nThe first of these that is set names the locale. If its characters are "
    "not\n"
    "those of UTF\\-8, trees are drawn in ASCII.\n";

std::string footerText() {
    const std::string text = footer();
    const std::size_t status = text.find("Exit status: ");
    const std::size_t end = text.find("\n\n", status);
    const std::size_t words = status + std::string_view("Exit status: ").size();
    return paragraphs(text.substr(0, status)) + "@VERBS@.SH EXIT STATUS\n" +
           paragraphs(text.substr(words, end - words));
}

}  // namespace

std::string manualOf(const Grammar& grammar) {
    std::string verbTexts = ".SH VERBS\n";
    for (const Verb* verb : verbs()) verbTexts += verbText(*grammar.verb(verb->name), *verb);
    verbTexts += request("SS", "help [VERB]") + "What this page says, in short, or of one verb.\n";
    std::string body = footerText();
    body.replace(body.find("@VERBS@"), 7,
                 verbTexts +
                     ".SH OPTIONS\n"
                     ".TP\n.B \\-h, \\-\\-help\nBy itself or behind a verb: print help.\n"
                     ".TP\n.B \\-\\-version\nPrint the version.\n");
    return ".TH QVT 1 \"\" \"qvt " QVT_VERSION
           "\" \"User Commands\"\n"
           ".SH NAME\nqvt \\- design data on the command line\n"
           ".SH SYNOPSIS\n.B qvt\n.I VERB\n[\\fIOPTIONS\\fP]\n"
           ".SH DESCRIPTION\n" +
           plain(grammar.app.get_description()) + "\n.PP\n" + body + kEnvironment;
}

}  // namespace qvt
