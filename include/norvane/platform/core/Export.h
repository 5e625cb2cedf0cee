#pragma once

// Mark what libqvt_core and libqvt_file show to their hosts; everything else in them is hidden.
#define QVT_CORE_API __attribute__((visibility("default")))
#define QVT_FILE_API __attribute__((visibility("default")))
