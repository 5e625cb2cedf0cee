// Aligned columns.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace qvt {

// Rows of cells as lines, each column as wide as its widest cell, counted in characters, up to a limit: a
// long cell moves what is behind it, and nothing else. The last column is not filled up.
class Table {
  public:
    void add(std::vector<std::string> cells);
    std::string text() const;

  private:
    std::vector<std::vector<std::string>> rows_;
    std::vector<std::size_t> widths_;
};

}  // namespace qvt
