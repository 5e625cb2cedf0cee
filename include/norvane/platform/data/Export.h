#pragma once

// Marks what libqvt_data shows to its hosts; everything else in the library is hidden.
#define QVT_DATA_API __attribute__((visibility("default")))
