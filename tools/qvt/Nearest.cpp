#include "Nearest.h"

#include <algorithm>
#include <cctype>
#include <vector>

namespace qvt {

namespace {

constexpr std::size_t kMostSlips = 3;

std::string inLowerCase(std::string_view text) {
    std::string result(text);
    for (char& c : result) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return result;
}

std::size_t slipsAllowed(std::size_t length) { return std::min(kMostSlips, length / 3); }

using Row = std::vector<std::size_t>;

// Slips between the beginnings of `left` and `right`, `i` and `j` letters long; `one` and `two` are the rows
// for the beginnings of `left` that are one and two letters shorter.
std::size_t slips(const std::string& left, const std::string& right, std::size_t i, std::size_t j,
                  const Row& now, const Row& one, const Row& two) {
    const bool isSame = left[i - 1] == right[j - 1];
    std::size_t least = std::min({one[j] + 1, now[j - 1] + 1, one[j - 1] + (isSame ? 0 : 1)});
    if (i > 1 && j > 1 && left[i - 1] == right[j - 2] && left[i - 2] == right[j - 1])
        least = std::min(least, two[j - 2] + 1);
    return least;
}

// Above `limit` the answer is some number above it: only the cells near the diagonal are looked at.
std::size_t slipsBetween(const std::string& left, const std::string& right, std::size_t limit) {
    const std::size_t far = limit + 1;
    Row two(right.size() + 1, far);
    Row one(right.size() + 1, far);
    for (std::size_t j = 0; j <= std::min(limit, right.size()); ++j) one[j] = j;
    for (std::size_t i = 1; i <= left.size(); ++i) {
        Row now(right.size() + 1, far);
        if (i <= limit) now[0] = i;
        const std::size_t end = std::min(right.size(), i + limit);
        for (std::size_t j = i > limit ? i - limit : 1; j <= end; ++j)
            now[j] = std::min(far, slips(left, right, i, j, now, one, two));
        two = std::move(one);
        one = std::move(now);
    }
    return one[right.size()];
}

}  // namespace

void Nearest::offer(std::string_view name) {
    constexpr std::size_t kLongest = 200;
    const std::size_t shorter = std::min(name.size(), typed_.size());
    const std::size_t longer = std::max(name.size(), typed_.size());
    const std::size_t limit = slipsAllowed(longer);
    if (name.empty() || name == typed_ || longer > kLongest || longer - shorter > limit) return;
    const std::size_t found = slipsBetween(inLowerCase(typed_), inLowerCase(name), limit);
    if (found > limit || found >= best_) return;
    best_ = found;
    name_ = name;
}

std::string Nearest::asQuestion(const std::string& name) {
    return name.empty() ? std::string() : "; did you mean " + name + "?";
}

}  // namespace qvt
