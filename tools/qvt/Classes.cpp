#include "Classes.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "Nearest.h"
#include "Options.h"
#include "Paths.h"
#include "Tree.h"

namespace qvt {

namespace {

// The class text of the table at a path of a store, or nothing: a class is a table, and its name the table's
// path.
std::optional<std::string> classOfTable(const Tree& tree, const std::string& name) {
    const Object found = tree.find(name);
    return found.table() ? std::optional<std::string>(qvt::classOf(found)) : std::nullopt;
}

// The first table with the last name of a class: people leave out where a class stands. Of a large store the
// beginning is looked through.
std::string tableOfLastName(const Tree& tree, const std::string& className) {
    constexpr int kMostObjects = 100000;
    const std::string name = className.substr(className.rfind('.') + 1);
    const Object top = tree.find("");
    if (!top) return "";
    Walk walk(top, tree.pathOf(top));
    Object object = walk.next();
    for (int i = 0; i < kMostObjects && object; ++i, object = walk.next())
        if (object.table() && nameOf(object) == name) return walk.path();
    return "";
}

// The class that may have been meant by a name that is none; empty if nothing is near.
std::string classMeant(const Tree& tree, const std::string& name) {
    const std::string path = tree.meant(name);
    return !path.empty() && classOfTable(tree, path) ? path : tableOfLastName(tree, name);
}

}  // namespace

std::vector<std::string> namesIn(const std::string& classText) {
    std::vector<std::string> names;
    for (std::size_t start = 0; start <= classText.size();) {
        const std::size_t end = std::min(classText.find(';', start), classText.size());
        names.push_back(classText.substr(start, end - start));
        start = end + 1;
    }
    return names;
}

Failure unknownClass(const std::string& name, const ClassPlaces& places) {
    std::string meant;
    for (IDataStore* store : places.stores)
        if (meant.empty()) meant = classMeant(Tree(*store, places.file), name);
    return {kMissing, places.file + ": error: no class " + name + ", nor in the stores of --schemas" +
                          Nearest::asQuestion(meant)};
}

SharedPtr<ISchema> classNamed(const std::string& classText, const ClassPlaces& places) {
    for (const std::string& name : namesIn(classText))
        if (!places.locator->locate(wide(name))) throw unknownClass(name, places);
    return places.locator->locate(wide(classText));
}

// What the ancestor itself comes down from is of the family only in a ring: that it is missing says nothing.
ClassFamily::ClassFamily(std::string ancestor, const ClassPlaces& places)
    : ancestor_(std::move(ancestor)), stores_(places.stores) {
    isOf_[ancestor_] = true;
    for (const std::string& above : namesIn(classOf(ancestor_).value_or("")))
        if (!above.empty()) comesDown(above);
    missing_.clear();
}

bool ClassFamily::has(const std::string& classText) {
    if (classText.empty()) return false;
    const std::vector<std::string> names = namesIn(classText);
    return std::any_of(names.begin(), names.end(), [this](const auto& name) { return comesDown(name); });
}

bool ClassFamily::isKnown() const { return classOf(ancestor_).has_value(); }

bool ClassFamily::comesDown(const std::string& name) {
    const auto known = isOf_.find(name);
    return known != isOf_.end() ? known->second : settle(name);
}

// All that a class comes down from, once for each class; a chain of any length, and a ring, take no stack.
bool ClassFamily::settle(const std::string& name) {
    std::map<std::string, std::string> cameFrom{{name, ""}};
    std::vector<std::string> open{name};
    std::vector<std::string> missing;
    while (!open.empty()) {
        const std::string each = std::move(open.back());
        open.pop_back();
        if (const auto known = isOf_.find(each); known != isOf_.end() && known->second) {
            for (std::string up = each; !up.empty(); up = cameFrom[up]) isOf_[up] = true;
            return true;
        }
        if (isOf_.count(each) != 0) continue;
        const std::optional<std::string> classText = classOf(each);
        if (!classText) missing.push_back(each);
        for (const std::string& above : namesIn(classText.value_or("")))
            if (!above.empty() && cameFrom.emplace(above, each).second) open.push_back(above);
    }
    missing_.insert(missing_.end(), missing.begin(), missing.end());
    for (const auto& [each, from] : cameFrom) isOf_[each] = false;
    return false;
}

std::optional<std::string> ClassFamily::classOf(const std::string& name) const {
    for (IDataStore* store : stores_)
        if (auto classText = classOfTable(Tree(*store, ""), name)) return classText;
    return {};
}

}  // namespace qvt
