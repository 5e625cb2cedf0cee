#pragma once

/// The model in the manner of C++20: typed values, UTF-8, ranges, documents. It is made of nothing but the
/// library's public interfaces, adds no symbol to a library and throws nothing of its own. Stores in files
/// are another library, and another header: `qvt/file.hpp`.

#if __cplusplus < 202002L
#error "<qvt/qvt.hpp> needs C++20 (-std=c++20); the interfaces of norvane/platform need C++17 only"
#else

#include "qvt/classes.hpp"
#include "qvt/document.hpp"
#include "qvt/guard.hpp"
#include "qvt/model.hpp"
#include "qvt/property.hpp"
#include "qvt/range.hpp"
#include "qvt/structs.hpp"
#include "qvt/text.hpp"
#include "qvt/unit.hpp"
#include "qvt/values.hpp"
#include "qvt/visit.hpp"
#include "qvt/walk.hpp"

#endif
