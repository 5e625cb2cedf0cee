#include "Editing.h"

namespace qvt {

namespace {

FileDataStore::Options forWriting() {
    FileDataStore::Options options;
    options.creation = FileDataStore::Creation::never;
    return options;
}

bool removeChild(const Object& parent, const std::string& name) {
    if (parent.container) return parent.container->remove(wide(name));
    ITable* table = parent.table();
    return table && table->remove(wide(name));
}

}  // namespace

Editing::Editing(const std::string& path, const Options& options)
    : name_(path),
      messages_(options.quiet),
      libraries_(options.schemas, messages_),
      store_(path, forWriting()),
      transaction_(store_),
      locator_(libraries_.locatorFor(store_)),
      tree_(new Tree(store_, path)) {
    if (store_.size() == 0)
        throw Failure(kMissing, path + ": error: there is nothing in it; import makes its root");
}

void Editing::commit() {
    tree_.reset();
    locator_.reset();
    transaction_.commit();
    store_.close();
}

Spot::Spot(const std::string& path) : name(path) {
    const std::size_t dot = path.rfind('.');
    if (dot != std::string::npos) {
        parent = path.substr(0, dot);
        name = path.substr(dot + 1);
    }
    if (name.empty()) throw Failure(kUsage, "error: the path \"" + path + "\" ends in no name");
}

Failure refused(const Tree& tree, const std::string& words) {
    return {kRefused, tree.name() + ": error: " + words};
}

Object parentFor(const Tree& tree, const std::string& path) {
    const Spot place(path);
    if (tree.find(path)) throw refused(tree, path + " is there already");
    if (place.parent.empty() && !tree.hasRoot())
        throw refused(tree, "the outermost object is no root, and nothing can stand beside it");
    Object parent = place.parent.empty() ? tree.root() : tree.get(place.parent);
    if (parent.primitive())
        throw refused(tree, place.parent + " is a primitive, and nothing can stand below it");
    return parent;
}

std::string called(const Tree& tree, const Object& object) {
    return tree.hasRoot() && tree.isRoot(object) ? "the root" : tree.pathOf(object);
}

void removeFrom(Tree& tree, const std::string& path) {
    const Spot place(path);
    const bool isFixed = (flagsOf(tree.get(path)) & metadata::kFixed) != 0;
    if (isFixed) throw refused(tree, path + " came from a class and cannot be removed");
    if (place.parent.empty() && !tree.hasRoot()) throw refused(tree, path + " is the outermost object");
    const Object parent = place.parent.empty() ? tree.root() : tree.get(place.parent);
    if (!removeChild(parent, place.name))
        throw refused(tree, path + " is in use, or came from a class, and cannot be removed");
    tree.refresh();
}

void touch(const Tree& tree, const std::string& path) {
    std::string rest = path;
    for (std::size_t dot = rest.size(); dot != std::string::npos; dot = rest.rfind('.')) {
        rest.resize(dot);
        const Object object = tree.find(rest);
        if (!isInherited(object)) return;
        object.property->clearFlags(metadata::kInherited);
    }
}

}  // namespace qvt
