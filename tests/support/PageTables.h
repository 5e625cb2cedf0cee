// The tables of a page of the docs, for tests that compare them with the code.
#pragma once

#include <cstddef>
#include <fstream>
#include <map>
#include <string>
#include <vector>

namespace norvane::platform::test {

class PageTables {
  public:
    using Row = std::vector<std::string>;
    using Table = std::vector<Row>;

    explicit PageTables(const std::string& path) {
        std::ifstream file(path);
        std::string heading, previous;
        Table* table = nullptr;
        for (std::string line; std::getline(file, line); previous = line) {
            if (line.rfind("## ", 0) == 0) heading = line.substr(3);
            if (line.rfind("|---", 0) == 0)
                table = &tables_[heading + "/" + cellsOf(previous)[0]];
            else if (line.rfind("|", 0) == 0 && table)
                table->push_back(cellsOf(line));
            else
                table = nullptr;
        }
    }

    // The first `columns` cells of each row. Named by the heading above the table and the first word of its
    // head, as "root/Byte"; empty if there is none.
    Table table(const std::string& name, std::size_t columns) const {
        const auto found = tables_.find(name);
        Table table = found == tables_.end() ? Table() : found->second;
        for (Row& row : table) row.resize(columns);
        return table;
    }

  private:
    static std::string trimmed(const std::string& text) {
        const std::size_t begin = text.find_first_not_of(' ');
        return begin == text.npos ? std::string()
                                  : text.substr(begin, text.find_last_not_of(' ') + 1 - begin);
    }

    static Row cellsOf(const std::string& line) {
        Row cells;
        for (std::size_t begin = 1, end = 0; (end = line.find('|', begin)) != line.npos; begin = end + 1)
            cells.push_back(trimmed(line.substr(begin, end - begin)));
        return cells;
    }

    std::map<std::string, Table> tables_;
};

}  // namespace norvane::platform::test
