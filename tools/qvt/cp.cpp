// qvt cp STORE PATH NEWPATH
#include "Copies.h"
#include "Editing.h"
#include "Verbs.h"

namespace qvt {

namespace {

void mustBeNoRoot(const Tree& tree, const Object& object) {
    if (tree.hasRoot() && tree.isRoot(object))
        throw refused(tree, "the root cannot be copied; merge takes what is below it");
}

int within(const Options& options) {
    Editing editing(options.store, options);
    {
        const Object object = editing.tree().get(options.path);
        mustBeNoRoot(editing.tree(), object);
        copyTo(editing, object, options.target);
    }
    editing.commit();
    return editing.status();
}

int across(const Options& options) {
    Editing editing(options.to, options);
    {
        const std::unique_ptr<IDataStore> store = openForReading(options.store);
        Tree tree(*store, options.store);
        const Object object = tree.get(options.path);
        mustBeNoRoot(tree, object);
        copyTo(editing, object, options.target);
    }
    editing.commit();
    return editing.status();
}

int cp(const Options& options) {
    mustBeFileStore(options.store, "cp");
    if (options.to.empty()) return within(options);
    mustBeFileStore(options.to, "cp --to");
    return isSameFile(options.store, options.to) ? within(options) : across(options);
}

}  // namespace

const Verb kCp{
    "cp",
    "copy an object",
    "NEWPATH is the whole path of the copy, its last name included; with --to in that store, which must be\n"
    "there. The copy of a member of a class is a member of its own.",
    "  qvt cp plant.qvt hall.p1 hall.p3\n"
    "  qvt cp plant.qvt hall.p1 p1 --to other.qvt",
    Verb::kFile | Verb::kPath | Verb::kNewPath | Verb::kTo,
    cp};

}  // namespace qvt
