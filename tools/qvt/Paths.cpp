#include "Paths.h"

#include <utility>

namespace qvt {

std::string joined(const std::string& path, const std::string& name) {
    return path.empty() ? name : path + "." + name;
}

Walk::Walk(const Object& top, std::string path) : path_(std::move(path)), last_(top) {}

Object Walk::next() {
    if (last_ && !last_.primitive()) open_.push({Children(last_), path_.size()});
    last_ = Object();
    while (!open_.isEmpty() && open_.top().children.isAtEnd()) open_.pop();
    if (open_.isEmpty()) return {};
    path_.resize(open_.top().length);
    last_ = open_.top().children.take();
    if (!path_.empty()) path_ += '.';
    path_ += nameOf(last_);
    return last_;
}

}  // namespace qvt
