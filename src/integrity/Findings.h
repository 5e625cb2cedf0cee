// What a look at a store has brought up so far.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "integrity/Codes.h"
#include "norvane/platform/data/integrity/Integrity.h"

namespace norvane::platform::data::integrity {

class Findings {
  public:
    void error(const char* code, std::uint32_t offset, std::string text) {
        add(Severity::error, code, offset, std::move(text));
    }
    void warning(const char* code, std::uint32_t offset, std::string text) {
        add(Severity::warning, code, offset, std::move(text));
    }
    void note(const char* code, std::uint32_t offset, std::string text) {
        add(Severity::note, code, offset, std::move(text));
    }
    void add(Severity severity, const char* code, std::uint32_t offset, std::string text) {
        all.push_back({severity, code, offset, {}, std::move(text)});
    }

    // Orders them by offset, what concerns no record first, and keeps the order of those of one record.
    void sort();

    std::vector<Finding> all;
};

}  // namespace norvane::platform::data::integrity
