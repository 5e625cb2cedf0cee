#pragma once

// Marks what libqvt_core shows to its hosts; everything else in the library is hidden.
#define QVT_CORE_API __attribute__((visibility("default")))
