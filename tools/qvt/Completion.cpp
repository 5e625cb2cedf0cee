#include "Completion.h"

#include <algorithm>
#include <exception>
#include <filesystem>
#include <map>
#include <string_view>

#include "FileStores.h"
#include "NewValues.h"
#include "Paths.h"
#include "Sources.h"
#include "Tree.h"
#include "norvane/platform/data/format/xml/UnitTable.h"

namespace qvt {

namespace {

using data::format::xml::tUnit;
using Words = std::vector<std::string>;

bool begins(std::string_view text, std::string_view with) { return text.substr(0, with.size()) == with; }

// What stands on the line by now.
struct Line {
    const CLI::App* verb = nullptr;
    const CLI::Option* awaited = nullptr;  // the option whose value is typed
    std::multimap<std::string, std::string> given;
    std::size_t positional = 0;  // its index, of the word that is typed
    bool isOnlyWords = false;    // behind --
};

std::vector<const CLI::Option*> positionalsOf(const CLI::App& verb) {
    std::vector<const CLI::Option*> found;
    for (const CLI::Option* each : verb.get_options())
        if (each->get_positional()) found.push_back(each);
    return found;
}

// Null where the verb takes no more.
const CLI::Option* positionalAt(const CLI::App& verb, std::size_t index) {
    const auto all = positionalsOf(verb);
    if (index < all.size()) return all[index];
    return !all.empty() && all.back()->get_items_expected_max() > 1 ? all.back() : nullptr;
}

bool takesValue(const CLI::Option& option) { return option.get_items_expected_max() > 0; }

// How much of a word is an option with the "=" that its value follows; 0 if it is none such.
std::size_t sizeBeforeValue(const std::string& word) { return begins(word, "--") ? word.find('=') + 1 : 0; }

// The option, with its value behind "=" or none as yet.
void takeOption(Line& line, const std::string& word) {
    const std::size_t value = sizeBeforeValue(word);
    const CLI::Option* option = line.verb->get_option_no_throw(value == 0 ? word : word.substr(0, value - 1));
    if (!option || !takesValue(*option)) return;
    if (value == 0)
        line.awaited = option;
    else
        line.given.emplace(option->get_single_name(), word.substr(value));
}

void take(Line& line, const std::string& word) {
    if (line.awaited) {
        line.given.emplace(line.awaited->get_single_name(), word);
        line.awaited = nullptr;
    } else if (word == "--") {
        line.isOnlyWords = true;
    } else if (!line.isOnlyWords && word.size() > 1 && word[0] == '-') {
        takeOption(line, word);
    } else if (const CLI::Option* option = positionalAt(*line.verb, line.positional++)) {
        line.given.emplace(option->get_name(true, false), word);
    }
}

Words optionsOf(const CLI::App& app) {
    Words names;
    for (const CLI::Option* each : app.get_options())
        for (const std::string& name : each->get_lnames()) names.push_back("--" + name);
    return names;
}

void addNames(Words& names, const tUnit* rows) {
    for (; rows->name; ++rows)
        if (std::string_view(rows->name).find(',') == std::string_view::npos) names.emplace_back(rows->name);
}

Words verbNames() {
    Words names;
    for (const Verb* verb : verbs()) names.emplace_back(verb->name);
    names.emplace_back("help");
    return names;
}

Words splitAt(const std::string& text, char separator) {
    Words parts;
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find(separator, begin), text.size());
        parts.push_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    return parts;
}

// Paths of siblings that begin as they should, and whether these are all there are.
struct Siblings {
    Words paths;
    bool isWhole = true;
};

// The children of one object whose names begin so; of many children the first.
Siblings childrenOf(const Tree& tree, const std::string& parent, const std::string& beginning) {
    constexpr int kMostSiblings = 20000;
    constexpr std::size_t kMostCandidates = 1000;
    Siblings found;
    const Object holder = parent.empty() ? tree.root() : tree.find(parent);
    if (!holder) return found;
    Children children(holder);
    for (int i = 0; i < kMostSiblings && found.paths.size() < kMostCandidates && !children.isAtEnd(); ++i) {
        const std::string name = nameOf(children.take());
        const bool hasPath = !name.empty() && name.find_first_of(".\n") == std::string::npos;
        if (hasPath && begins(name, beginning)) found.paths.push_back(joined(parent, name));
    }
    found.isWhole = children.isAtEnd();
    return found;
}

// A path that is whole already leads to what is below it, unless others go on from it, or may.
Words pathsIn(const Tree& tree, const std::string& typed) {
    const std::size_t dot = typed.rfind('.');
    const std::string parent = dot == std::string::npos ? "" : typed.substr(0, dot);
    const std::string name = dot == std::string::npos ? typed : typed.substr(dot + 1);
    Siblings found = childrenOf(tree, parent, name);
    if (!found.isWhole && found.paths.empty() && !name.empty() && tree.find(typed)) return {typed};
    if (!found.isWhole || found.paths.size() != 1 || found.paths.front() != typed) return found.paths;
    Words below = childrenOf(tree, typed, "").paths;
    return below.empty() ? found.paths : below;
}

// Documents are read whole for this, and so only short ones are.
bool isQuickToRead(const std::string& file) {
    constexpr std::uintmax_t kMostBytes = std::uintmax_t{1} << 21;
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(file, error);
    return !error && (isFileStore(file) || size <= kMostBytes);
}

Words schemasIn(const Line& line) {
    Words schemas;
    for (auto [each, end] = line.given.equal_range("schemas"); each != end; ++each)
        if (isQuickToRead(each->second)) schemas.push_back(each->second);
    return schemas;
}

// `names` say which of the words given is the store.
Words pathsFor(const Line& line, const std::string& typed, const Words& names) {
    Words found;
    Messages silent(true);
    const Libraries libraries(schemasIn(line), silent);
    for (const std::string& name : names) {
        for (auto [each, end] = line.given.equal_range(name); each != end; ++each) {
            if (!isQuickToRead(each->second)) continue;
            const Source source(each->second, libraries, silent);
            const Words paths = pathsIn(Tree(source.store(), source.name()), typed);
            found.insert(found.end(), paths.begin(), paths.end());
        }
    }
    return found;
}

std::string answerOf(const char* what, const Words& candidates, const std::string& typed) {
    std::string answer = std::string(what) + "\n";
    for (const std::string& each : candidates)
        if (begins(each, typed)) answer += each + "\n";
    return answer;
}

Words unitNames(bool hasDimensions) {
    Words names;
    addNames(names, data::format::xml::kUnitTable);
    if (hasDimensions) addNames(names, data::format::xml::kDimensionTable);
    return names;
}

// By the word that help shows for what is typed.
std::string answerFor(const Line& line, const std::string& what, const std::string& typed) {
    static constexpr std::string_view kFiles[] = {"STORE", "DOC", "IN", "OUT", "SOURCE", "FILE", "A", "B"};
    if (std::find(std::begin(kFiles), std::end(kFiles), what) != std::end(kFiles)) return "files\n";
    if (what == "PATH" || what == "NEWPATH")
        return answerOf("paths", pathsFor(line, typed, {"STORE", "A"}), typed);
    if (what == "SPATH") return answerOf("paths", pathsFor(line, typed, {"SOURCE"}), typed);
    if (what == "BPATH") return answerOf("paths", pathsFor(line, typed, {"B"}), typed);
    if (what == "CLASS") return answerOf("paths", pathsFor(line, typed, {"STORE", "schemas"}), typed);
    if (what == "VERB") return answerOf("words", verbNames(), typed);
    if (what == "KIND|TYPE") return answerOf("words", kindAndTypeNames(), typed);
    if (what == "UNIT") return answerOf("words", unitNames(false), typed);
    if (what == "NAME" && line.verb->get_name() == "units") return answerOf("words", unitNames(true), typed);
    const bool isChoice = what.find('|') != std::string::npos;
    return answerOf("words", isChoice ? splitAt(what, '|') : Words(), typed);
}

std::string answerFor(Line& line, const std::string& typed) {
    if (line.awaited) return answerFor(line, line.awaited->get_type_name(), typed);
    if (!line.isOnlyWords && !typed.empty() && typed[0] == '-') {
        const std::size_t value = sizeBeforeValue(typed);
        if (value == 0) return answerOf("words", optionsOf(*line.verb), typed);
        takeOption(line, typed.substr(0, value - 1));
        return line.awaited ? answerFor(line, line.awaited->get_type_name(), typed.substr(value)) : "words\n";
    }
    const CLI::Option* option = positionalAt(*line.verb, line.positional);
    return option ? answerFor(line, option->get_name(true, false), typed) : answerOf("words", {}, "");
}

}  // namespace

std::string completionsOf(const Grammar& grammar, const std::vector<std::string>& words) {
    if (words.empty()) return "words\n";
    const std::string& typed = words.back();
    if (words.size() == 1)
        return answerOf("words", typed.empty() || typed[0] != '-' ? verbNames() : optionsOf(grammar.app),
                        typed);
    Line line;
    line.verb = grammar.verb(words.front());
    if (!line.verb) return "words\n";
    for (auto word = words.begin() + 1; word != words.end() - 1; ++word) take(line, *word);
    try {
        return answerFor(line, typed);
    } catch (const std::exception&) {
        return "words\n";
    }
}

}  // namespace qvt
