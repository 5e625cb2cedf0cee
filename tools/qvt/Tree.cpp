#include "Tree.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "FileStores.h"
#include "Nearest.h"

namespace qvt {

Failure nothingIn(const std::string& name) {
    if (isFileStore(name)) return {kMissing, name + ": error: there is no object in it"};
    return {kNo, name + ": error: nothing was read"};
}

Tree::Tree(IDataStore& store, std::string name)
    : name_(std::move(name)),
      view_(store),
      root_(view_.open()),
      prefix_(hasRoot() ? nameOf(root_).size() + 1 : 0) {}

std::string Tree::rootName() const { return nameOf(root_); }

Object Tree::find(const std::string& path) const {
    if (path.empty() && !hasRoot()) {
        Children children(root_);
        return children.isAtEnd() ? Object() : children.take();
    }
    if (path.empty()) return root_;
    Object found(root_.container->findProperty(wide(path)));
    if (!found) found = Object(root_.container->find(wide(path)));
    // A path that goes on below a value is answered with the value.
    return found && pathOf(found) == path ? found : Object();
}

Object Tree::get(const std::string& path) const {
    Object found = find(path);
    if (found) return found;
    if (path.empty()) throw nothingIn(name_);
    const std::string prefix = longestPrefix(path);
    throw Failure(kMissing, name_ + ": error: nothing at " + path +
                                (prefix.empty() ? std::string() : ", though there is " + prefix) +
                                Nearest::asQuestion(meant(path)));
}

// The library's own paths begin below the root, but people see its name in front of all.
std::string Tree::withoutRootName(const std::string& path) const {
    const std::string beginning = hasRoot() ? rootName() + "." : std::string();
    const bool hasName = beginning.size() > 1 && path.rfind(beginning, 0) == 0;
    return hasName && find(path.substr(beginning.size())) ? path.substr(beginning.size()) : std::string();
}

std::string Tree::meant(const std::string& path) const {
    constexpr int kMostSiblings = 20000;
    const std::string prefix = longestPrefix(path);
    const std::size_t begin = prefix.empty() ? 0 : prefix.size() + 1;
    const std::size_t end = std::min(path.find('.', begin), path.size());
    const Object parent = prefix.empty() ? root_ : find(prefix);
    Nearest nearest(path.substr(begin, end - begin));
    Children siblings(parent);
    for (int i = 0; i < kMostSiblings && !siblings.isAtEnd(); ++i) nearest.offer(nameOf(siblings.take()));
    if (nearest.name().empty()) return withoutRootName(path);
    const std::string here = path.substr(0, begin) + nearest.name();
    return find(here + path.substr(end)) ? here + path.substr(end) : here;
}

// What leads somewhere does so in all its beginnings, so half of them can be left out each time.
std::string Tree::longestPrefix(const std::string& path) const {
    std::vector<std::size_t> ends;
    for (std::size_t at = path.find('.'); at != std::string::npos; at = path.find('.', at + 1))
        ends.push_back(at);
    const auto leads = [&](std::size_t end) { return static_cast<bool>(find(path.substr(0, end))); };
    const auto found = std::partition_point(ends.begin(), ends.end(), leads);
    return found == ends.begin() ? std::string() : path.substr(0, *(found - 1));
}

std::string Tree::pathOf(const Object& object) const {
    return isRoot(object) ? std::string() : qvt::pathOf(object).substr(prefix_);
}

void Tree::refresh() { root_.container = root_.container->find(WideString()); }

}  // namespace qvt
