#include "UnknownUnits.h"

#include <set>
#include <string>
#include <string_view>

#include "Names.h"
#include "Nearest.h"
#include "Units.h"
#include "norvane/platform/core/io/MemoryReader.h"
#include "norvane/platform/core/xml/XMLParser.h"

namespace qvt {

namespace {

constexpr std::string_view kAttribute = "units";

bool isUnknown(std::string_view name) { return !name.empty() && unitIdOf(name) == 0; }

// The text between quotes behind the attribute's name, as far as that is what stands there.
std::string_view valueAt(std::string_view text) {
    const std::size_t begin = text.find_first_not_of(" \t\r\n=");
    if (begin == std::string_view::npos || (text[begin] != '"' && text[begin] != '\'')) return {};
    const std::string_view rest = text.substr(begin + 1);
    const std::size_t end = rest.find(text[begin]);
    return end == std::string_view::npos ? std::string_view() : rest.substr(0, end);
}

// Finds some that are none, in comments and texts.
bool looksMisspelt(std::string_view bytes) {
    for (std::size_t at = bytes.find(kAttribute); at != std::string_view::npos;
         at = bytes.find(kAttribute, at + 1))
        if (isUnknown(valueAt(bytes.substr(at + kAttribute.size())))) return true;
    return false;
}

class Search : public core::xml::XMLCallback {
  public:
    const core::xml::XMLParser* parser = nullptr;
    std::set<std::string> names;
    std::string first;
    Place place;

    void startElement(const char*, const char* const* attributes) override {
        for (; attributes && *attributes; attributes += 2)
            if (attributes[0] == kAttribute && isUnknown(attributes[1])) note(attributes[1]);
    }
    void endElement(const char*) override {}
    void comment(const char*) override {}
    void processingInstruction(const char*, const char*) override {}
    void characterData(const char*, int) override {}

  private:
    void note(const std::string& name) {
        if (names.empty()) {
            first = name;
            place = parser->place();
        }
        names.insert(name);
    }
};

std::string wordsFor(const Search& search) {
    const std::string meant = Nearest::asQuestion(unitNear(search.first));
    if (search.names.size() == 1) return "unit " + search.first + " is not known and was left out" + meant;
    const std::size_t others = search.names.size() - 1;
    return "unit " + search.first + " and " + std::to_string(others) + (others == 1 ? " other" : " others") +
           " are not known and were left out" + meant;
}

}  // namespace

void warnOfUnknownUnits(const Input& input, const Messages& messages) {
    if (messages.isQuiet() || !looksMisspelt(input.bytes())) return;
    Search search;
    core::xml::XMLParser parser(search);
    search.parser = &parser;
    core::io::MemoryReader reader(input.bytes());
    parser.parseDocument(&reader);
    if (!search.names.empty())
        messages.warn(placeIn(input.name(), search.place) + ": warning: " + wordsFor(search));
}

}  // namespace qvt
