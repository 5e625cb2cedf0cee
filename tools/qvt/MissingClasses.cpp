#include "MissingClasses.h"

#include <utility>

#include "Classes.h"

namespace qvt {

MissingClasses::MissingClasses(ISchemaLocator& locator, std::function<std::string()> place)
    : locator_(locator), place_(std::move(place)) {}

SharedPtr<ISchema> MissingClasses::locate(WideString names) {
    SharedPtr<ISchema> schema = locator_.locate(names);
    if (names.isEmpty() || (schema && names.view().find(u';') == std::u16string_view::npos)) return schema;
    for (const std::string& name : namesIn(utf8(names))) note(name);
    return schema;
}

void MissingClasses::note(const std::string& name) {
    if (name.empty() || missing_.count(name) != 0 || locator_.locate(wide(name))) return;
    if (missing_.empty()) firstPlace_ = place_();
    (missing_.empty() ? first_ : second_) = name;
    missing_.insert(name);
}

std::string MissingClasses::words() const {
    const std::size_t others = missing_.size() - 1;
    if (others == 0) return "class " + first_ + " is not known";
    if (others == 1) return "classes " + first_ + " and " + second_ + " are not known";
    return "class " + first_ + " and " + std::to_string(others) + " others are not known";
}

void MissingClasses::tell(Messages& messages) const {
    if (!missing_.empty())
        messages.lost(firstPlace_ + ": error: " + words() + " (--schemas STORE says where to look)");
}

}  // namespace qvt
