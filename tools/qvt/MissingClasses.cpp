#include "MissingClasses.h"

#include <utility>

#include "Classes.h"

namespace qvt {

namespace {

std::string wordsFor(const std::vector<std::string>& names) {
    const std::size_t others = names.size() - 1;
    if (others == 0) return "class " + names[0] + " is not known";
    if (others == 1) return "classes " + names[0] + " and " + names[1] + " are not known";
    return "class " + names[0] + " and " + std::to_string(others) + " others are not known";
}

}  // namespace

MissingClasses::MissingClasses(ISchemaLocator& locator, std::function<std::string()> place)
    : locator_(locator), place_(std::move(place)) {}

SharedPtr<ISchema> MissingClasses::locate(WideString names) {
    SharedPtr<ISchema> schema = locator_.locate(names);
    if (names.isEmpty() || (schema && names.view().find(u';') == std::u16string_view::npos)) return schema;
    for (const std::string& name : namesIn(utf8(names))) note(name);
    return schema;
}

void MissingClasses::note(const std::string& name) {
    if (name.empty() || told_.count(name) != 0 || locator_.locate(wide(name))) return;
    if (missing_.empty()) firstPlace_ = place_();
    missing_.push_back(name);
    told_.insert(name);
}

void MissingClasses::tell(Messages& messages) const {
    if (!missing_.empty()) tellOfMissing(missing_, firstPlace_, messages);
}

void tellOfMissing(const std::vector<std::string>& names, const std::string& place, Messages& messages) {
    messages.lost(place + ": error: " + wordsFor(names) + " (--schemas STORE says where to look)");
}

}  // namespace qvt
