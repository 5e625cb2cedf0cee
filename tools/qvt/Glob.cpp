#include "Glob.h"

#include <cstddef>
#include <optional>

#include "Text.h"

namespace qvt {

namespace {

using View = std::u32string_view;

std::u32string charactersIn(std::string_view text) {
    std::u32string result;
    while (!text.empty()) {
        const Character character = firstCharacter(text);
        result += static_cast<char32_t>(character.code);
        text.remove_prefix(character.size);
    }
    return result;
}

// What a set in brackets says of a character, and where it ends; nothing where no bracket closes it.
struct Set {
    bool has;
    std::size_t size;
};

std::optional<Set> setAt(View pattern, char32_t character) {
    std::size_t at = 1;
    const bool isOthers = at < pattern.size() && (pattern[at] == U'!' || pattern[at] == U'^');
    if (isOthers) ++at;
    bool has = false;
    for (const std::size_t begin = at; at < pattern.size(); ++at) {
        if (pattern[at] == U']' && at != begin) return Set{has != isOthers, at + 1};
        const bool isRange = at + 2 < pattern.size() && pattern[at + 1] == U'-' && pattern[at + 2] != U']';
        const char32_t last = isRange ? pattern[at + 2] : pattern[at];
        has = has || (pattern[at] <= character && character <= last);
        if (isRange) at += 2;
    }
    return std::nullopt;
}

// How much of the pattern stands for this one character; 0 if it does not.
std::size_t matchOne(View pattern, char32_t character) {
    if (pattern.empty()) return 0;
    if (pattern[0] == U'?') return 1;
    if (pattern[0] == U'\\' && pattern.size() > 1) return pattern[1] == character ? 2 : 0;
    if (pattern[0] == U'[')
        if (const std::optional<Set> set = setAt(pattern, character)) return set->has ? set->size : 0;
    return pattern[0] == character ? 1 : 0;
}

}  // namespace

Glob::Glob(std::string_view pattern) : pattern_(charactersIn(pattern)) {}

// Only the last "*" is ever tried anew: what an earlier one could give, it can give as well.
bool Glob::matches(std::string_view text) const {
    const std::u32string characters = charactersIn(text);
    const View pattern = pattern_;
    std::size_t at = 0;
    std::size_t in = 0;
    std::size_t star = View::npos;
    std::size_t taken = 0;
    while (in < characters.size()) {
        const bool isStar = at < pattern.size() && pattern[at] == U'*';
        const std::size_t step = isStar ? 0 : matchOne(pattern.substr(at), characters[in]);
        if (isStar) {
            star = at++;
            taken = in;
        } else if (step != 0) {
            at += step;
            ++in;
        } else if (star != View::npos) {
            at = star + 1;
            in = ++taken;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of(U'*', at) == View::npos;
}

}  // namespace qvt
