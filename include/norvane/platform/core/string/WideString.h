#pragma once

#include <cstddef>
#include <string_view>

#include "norvane/platform/core/Export.h"
#include "norvane/platform/core/Types.h"
#include "norvane/platform/core/string/IString.h"

namespace norvane::platform::core::string {

/// The string of public interfaces: a value. Copies share one immutable text and cost no allocation; they may
/// be used from different threads.
///
/// Default-constructed or made from null it is null: `value` gives null and the length is 0. Made from a
/// text, however short, it is not null. Text may hold a NUL if its length was given.
class QVT_CORE_API WideString : public IString {
  public:
    WideString() noexcept = default;
    /// A copy of a NUL-terminated text.
    WideString(const tWChar* text);
    /// A copy of `length` code units, which need no NUL behind them. Null if `text` is null.
    WideString(const tWChar* text, std::size_t length);
    /// Shares the text of `other`.
    WideString(const WideString& other) noexcept;
    /// Takes the text of `other`, which becomes null.
    WideString(WideString&& other) noexcept;
    /// Lets its own text go, and shares that of `other`.
    WideString& operator=(const WideString& other) noexcept;
    /// Lets its own text go, and takes that of `other`.
    WideString& operator=(WideString&& other) noexcept;
    ~WideString() override;

    void set(const IString& other) override;
    std::size_t bytes() const override;
    std::size_t length() const override;
    bool isEmpty() const override;
    void detach() override;

    /// The same as `value`.
    const tWChar* string() const { return text_; }
    /// The same as `value`.
    operator const tWChar*() const { return text_; }
    /// All code units; empty for a null string.
    std::u16string_view view() const { return {text_, length()}; }

    /// `count` code units from `start` on. A negative or too large count means all up to the end; a start
    /// past the end gives an empty text. The result is never null.
    WideString substr(std::size_t start, long count) const;
    /// Index of the last `c`, or -1.
    long rfind(tWChar c) const;

    /// Exchanges the texts of both.
    void swap(WideString& other) noexcept;

  private:
    void release() noexcept;
};

/// Equality of text. A null string equals null only.
QVT_CORE_API bool operator==(const WideString& left, const WideString& right);
/// Equality with a NUL-terminated text; a null pointer counts as a null string.
QVT_CORE_API bool operator==(const WideString& left, const tWChar* right);
/// The same with the sides exchanged.
inline bool operator==(const tWChar* left, const WideString& right) { return right == left; }
/// The opposite of equality.
inline bool operator!=(const WideString& left, const WideString& right) { return !(left == right); }
/// The opposite of equality.
inline bool operator!=(const WideString& left, const tWChar* right) { return !(left == right); }
/// The opposite of equality.
inline bool operator!=(const tWChar* left, const WideString& right) { return !(right == left); }

}  // namespace norvane::platform::core::string
