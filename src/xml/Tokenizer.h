// The pieces of a text between white space.
#pragma once

#include <cstdint>
#include <string_view>

namespace norvane::platform::data {

// Goes from token to token without copying any. White space is blank, tab, LF and CR, and nothing else. What
// stands in front of the first token is passed over, but the end of the text always ends a token: behind
// white space, and in an empty text, it ends an empty one.
class Tokenizer {
  public:
    explicit Tokenizer(std::string_view text) : at_(text.data()), textEnd_(text.data() + text.size()) {}

    // False behind the last token.
    bool next() {
        if (isDone_) return false;
        while (at_ != textEnd_ && isSpace(*at_)) ++at_;
        begin_ = at_;
        while (at_ != textEnd_ && !isSpace(*at_)) ++at_;
        isDone_ = at_ == textEnd_;
        return true;
    }

    // The present token.
    const char* begin() const { return begin_; }
    const char* end() const { return at_; }

    static std::uint64_t count(std::string_view text) {
        std::uint64_t count = 0;
        for (Tokenizer tokens(text); tokens.next();) ++count;
        return count;
    }

    static bool isSpace(char c) { return c == ' ' || c == '\n' || c == '\r' || c == '\t'; }

  private:
    const char* begin_ = nullptr;
    const char* at_;
    const char* textEnd_;
    bool isDone_ = false;
};

}  // namespace norvane::platform::data
