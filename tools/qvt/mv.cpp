// qvt mv STORE PATH NEWPATH
#include "Copies.h"
#include "Editing.h"
#include "Objects.h"
#include "Verbs.h"

namespace qvt {

namespace {

bool rename(const Object& object, const std::string& name) {
    return object.container ? object.container->rename(wide(name)) : object.property->rename(wide(name));
}

bool isBelow(const std::string& path, const std::string& above) {
    return path.size() > above.size() && path.compare(0, above.size(), above) == 0 &&
           path[above.size()] == '.';
}

void mustBeMovable(const Tree& tree, const Object& object, const Options& options) {
    if ((flagsOf(object) & metadata::kFixed) != 0)
        throw refused(tree, options.path + " came from a class and cannot be moved");
    if (isBelow(options.target, options.path))
        throw refused(tree, options.path + " cannot be moved into itself");
}

void move(Editing& editing, const Options& options) {
    Tree& tree = editing.tree();
    const Spot from(options.path);
    const Spot to(options.target);
    {
        const Object object = tree.get(options.path);
        mustBeMovable(tree, object, options);
        parentFor(tree, options.target);
        if (from.parent != to.parent) {
            copyTo(editing, object, options.target);
        } else if (!rename(object, to.name)) {
            throw refused(tree, options.path + " cannot be renamed");
        }
    }
    tree.refresh();
    if (from.parent != to.parent) removeFrom(tree, options.path);
    if (!tree.find(options.target)) throw refused(tree, "the library takes no such name");
}

int mv(const Options& options) {
    mustBeFileStore(options.store, "mv");
    Editing editing(options.store, options);
    move(editing, options);
    editing.commit();
    return editing.status();
}

}  // namespace

const Verb kMv{
    "mv",
    "rename or move an object",
    "NEWPATH is the whole new path, its last name included. Under another object it is made anew there and\n"
    "becomes the last of its siblings. Links that lead to it are left as they are. What came from a class\n"
    "cannot be moved, and a table can be moved only to a container.",
    "  qvt mv plant.qvt hall.spare hall.reserve",
    Verb::kFile | Verb::kPath | Verb::kNewPath,
    mv};

}  // namespace qvt
