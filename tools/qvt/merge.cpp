// qvt merge STORE PATH SOURCE [SPATH]
#include "Editing.h"
#include "Verbs.h"

namespace qvt {

namespace {

bool isWithin(const std::string& path, const std::string& above) {
    return above.empty() || path == above || path.rfind(above + ".", 0) == 0;
}

SharedPtr<IContainer> containerAt(const Tree& tree, const std::string& path) {
    const Object object = tree.get(path);
    if (!object.container) throw refused(tree, path + " is no container; merge takes and fills containers");
    return object.container;
}

// What is left out is told: the answer of the library is that all is well.
void tellOfTaken(Editing& editing, const std::string& file, const Object& source, IContainer& into) {
    for (Children children(source); !children.isAtEnd();) {
        const std::string name = nameOf(children.take());
        if (into.contains(wide(name)))
            editing.messages().warn(file + ": warning: " + name + " is there already and was left out");
    }
}

void mergeFrom(Editing& editing, const Tree& source, const Options& options) {
    const SharedPtr<IContainer> into = containerAt(editing.tree(), options.path);
    const SharedPtr<IContainer> from = containerAt(source, options.sourcePath);
    tellOfTaken(editing, source.name(), Object(from), *into);
    if (!into->merge(from))
        throw refused(source, called(source, Object(from)) + " has a child that is no object");
}

int merge(const Options& options) {
    mustBeFileStore(options.store, "merge");
    Editing editing(options.store, options);
    if (isSameFile(options.store, options.target)) {
        if (isWithin(options.path, options.sourcePath) || isWithin(options.sourcePath, options.path))
            throw refused(editing.tree(), "one of the two containers stands in the other");
        mergeFrom(editing, editing.tree(), options);
    } else {
        const Source source(options.target, editing.libraries(), editing.messages());
        Tree tree(source.store(), source.name());
        mergeFrom(editing, tree, options);
    }
    editing.commit();
    return editing.status();
}

}  // namespace

const Verb kMerge{
    "merge",
    "add what another container holds",
    "Copies the children of the container at SPATH (the root if left out) of SOURCE, a store or a document,\n"
    "into the container at PATH. A child whose name is taken there is left out, with a warning.",
    "  qvt merge plant.qvt hall other.qvt",
    Verb::kFile | Verb::kSchemas | Verb::kPath | Verb::kSource,
    merge};

}  // namespace qvt
