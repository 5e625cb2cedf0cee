#include "Table.h"

#include <algorithm>
#include <utility>

namespace qvt {

namespace {

constexpr std::size_t kGap = 2;
constexpr std::size_t kWidest = 48;

std::size_t characters(const std::string& text) {
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char c) { return (c & '\xC0') != '\x80'; }));
}

}  // namespace

void Table::add(std::vector<std::string> cells) {
    widths_.resize(std::max(widths_.size(), cells.size()));
    for (std::size_t i = 0; i < cells.size(); ++i)
        widths_[i] = std::max(widths_[i], std::min(characters(cells[i]), kWidest));
    rows_.push_back(std::move(cells));
}

std::string Table::text() const {
    std::string result;
    for (const auto& row : rows_) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            result += row[i];
            const std::size_t size = std::min(characters(row[i]), widths_[i]);
            if (i + 1 < row.size()) result.append(widths_[i] - size + kGap, ' ');
        }
        result += '\n';
    }
    return result;
}

}  // namespace qvt
