#pragma once

#include <cstring>

#include "norvane/platform/core/Export.h"
#include "norvane/platform/core/Types.h"

namespace norvane::platform::core {

/// Compares two values for equality. For a pointer type that means the addresses; the functors below add a
/// comparison of the texts behind them, under another name, so that both stay reachable.
template <typename T>
struct tCompareEqual {
    /// True if both are equal, as `==` of their type has it.
    virtual bool compare(T left, T right) const { return left == right; }
    virtual ~tCompareEqual() = default;
};

/// Says whether one value stands before another. For a pointer type that means the addresses.
template <typename T>
struct tCompareLess {
    /// True if `left` stands before `right`, as `<` of their type has it.
    virtual bool compare(T left, T right) const { return left < right; }
    virtual ~tCompareLess() = default;
};

/// Equality of two NUL-terminated wide texts, neither of them null: all code units agree, the NUL included.
struct QVT_CORE_API tWCharCompareEqual : tCompareEqual<const tWChar*> {
    /// True if the texts are equal, or are one and the same.
    bool operator()(const tWChar* left, const tWChar* right) const {
        if (left == right) return true;
        while (*left == *right && *left != 0) {
            ++left;
            ++right;
        }
        return *left == *right;
    }
};

/// Equality of two NUL-terminated narrow texts, neither of them null.
struct QVT_CORE_API tCharCompareEqual : tCompareEqual<const char*> {
    /// True if the texts are equal, or are one and the same.
    bool operator()(const char* left, const char* right) const {
        return left == right || std::strcmp(left, right) == 0;
    }
};

/// Order of two NUL-terminated narrow texts, neither of them null. Bytes count as unsigned numbers.
struct QVT_CORE_API tCharCompareLess : tCompareLess<const char*> {
    /// True if the text of `left` stands before that of `right`.
    bool operator()(const char* left, const char* right) const { return std::strcmp(left, right) < 0; }
};

}  // namespace norvane::platform::core
