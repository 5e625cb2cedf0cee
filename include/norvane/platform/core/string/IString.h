#pragma once

#include <cstddef>

#include "norvane/platform/core/Export.h"
#include "norvane/platform/core/Types.h"

namespace norvane::platform::core::string {

/// A text of UTF-16 code units with a NUL behind it, whatever class keeps it. A string that was never given
/// text is null; it has length 0 like an empty one, but differs from it. Slots keep this order, new ones go
/// last.
class QVT_CORE_API IString {
  public:
    virtual ~IString() = default;

    /// Takes over the other's text; a null one makes this one null.
    virtual void set(const IString& other) = 0;
    /// Size of the text in bytes, without its NUL.
    virtual std::size_t bytes() const = 0;
    /// Number of code units, without the NUL.
    virtual std::size_t length() const = 0;
    /// True if the length is 0.
    virtual bool isEmpty() const = 0;
    /// Makes sure that no other string shares the memory of this text. The text moves if one did.
    virtual void detach() = 0;

    /// The text, or null. Valid until the string changes or goes.
    const tWChar* value() const { return text_; }

  protected:
    IString() = default;
    /// Both then point at one text, which the deriving class shares or copies.
    IString(const IString&) = default;
    /// As the constructor.
    IString& operator=(const IString&) = default;

    /// The text, or null. Kept by the deriving class.
    const tWChar* text_ = nullptr;
};

}  // namespace norvane::platform::core::string
