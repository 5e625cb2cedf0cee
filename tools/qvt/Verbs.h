// The verbs, each in the file of its name. A verb writes its answer and gives the exit status; what keeps it
// from answering leaves it as a Failure.
#pragma once

#include "Options.h"

namespace qvt {

struct Verb {
    enum Takes : unsigned {
        kStore = 1,           // STORE and --schemas
        kPath = 2,            // PATH
        kOptionalPath = 4,    // [PATH]
        kClass = 8,           // CLASS
        kJson = 16,           // -f json
        kTreeOptions = 32,    // -d and --values
        kRecordOptions = 64,  // [OFFSET] or --all
        kOptionalName = 128,  // [NAME]
    };

    const char* name;
    const char* summary;
    const char* details;
    unsigned takes;
    int (*run)(const Options& options);

    bool has(unsigned what) const { return (takes & what) != 0; }
};

extern const Verb kExport;
extern const Verb kTree;
extern const Verb kShow;
extern const Verb kGet;
extern const Verb kStat;
extern const Verb kSchema;
extern const Verb kUnits;
extern const Verb kConforms;
extern const Verb kDump;

}  // namespace qvt
