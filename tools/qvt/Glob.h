// Patterns for names and texts, as shells have them.
#pragma once

#include <string>
#include <string_view>

namespace qvt {

// "*" stands for any characters, "?" for one, "[a-z]" for one of these and "[!a-z]" for one of the others;
// "\" takes its meaning from the next. The pattern is for the whole text. Characters are those of UTF-8; a
// byte that is none is one by itself.
class Glob {
  public:
    explicit Glob(std::string_view pattern);

    bool matches(std::string_view text) const;

  private:
    std::u32string pattern_;
};

}  // namespace qvt
