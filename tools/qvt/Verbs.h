// The verbs, each in the file of its name. A verb writes its answer and gives the exit status; what keeps it
// from answering leaves it as a Failure.
#pragma once

#include "Options.h"

namespace qvt {

struct Verb {
    // What a verb takes from the command line, in this order.
    enum Takes : unsigned {
        kStore = 1u << 0,           // STORE, a document or a file
        kFile = 1u << 1,            // STORE, a file
        kDocuments = 1u << 2,       // DOC... STORE, with --into and --keep-going
        kRepairOptions = 1u << 3,   // IN OUT, with --salvage and --recover
        kPath = 1u << 4,            // PATH
        kOptionalPath = 1u << 5,    // [PATH]
        kPaths = 1u << 6,           // PATH...
        kNewPath = 1u << 7,         // NEWPATH
        kSource = 1u << 8,          // SOURCE [SPATH]
        kType = 1u << 9,            // KIND|TYPE, with --class
        kClass = 1u << 10,          // CLASS
        kOptionalName = 1u << 11,   // [NAME]
        kValues = 1u << 12,         // [VALUE...]
        kRecordOptions = 1u << 13,  // [OFFSET] or --all
        kSchemas = 1u << 14,        // --schemas
        kTreeOptions = 1u << 15,    // -d and --values
        kValueOptions = 1u << 16,   // --uri and --name
        kUnit = 1u << 17,           // --unit
        kTo = 1u << 18,             // --to
        kJson = 1u << 19,           // -f json
        kAnswers = 1u << 20,        // prints something: -o and --color
        kFindOptions = 1u << 21,    // what is looked for
        kBoth = 1u << 22,           // A B [PATH] [BPATH], with --ignore-order
        kDropOptions = 1u << 23,    // --drop-unreachable
    };

    const char* name;
    const char* summary;
    const char* details;
    const char* examples;  // commands that work, one a line
    unsigned takes;
    int (*run)(const Options& options);

    bool has(unsigned what) const { return (takes & what) != 0; }
};

extern const Verb kImport;
extern const Verb kExport;
extern const Verb kTree;
extern const Verb kShow;
extern const Verb kGet;
extern const Verb kFind;
extern const Verb kDiff;
extern const Verb kSet;
extern const Verb kNew;
extern const Verb kRm;
extern const Verb kMv;
extern const Verb kCp;
extern const Verb kMerge;
extern const Verb kStat;
extern const Verb kSchema;
extern const Verb kUnits;
extern const Verb kConforms;
extern const Verb kCheck;
extern const Verb kRepair;
extern const Verb kCompact;
extern const Verb kDump;

}  // namespace qvt
