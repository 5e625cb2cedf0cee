#include "xml/KeywordTable.h"

#include <algorithm>

#include "xml/XMLContainer.h"
#include "xml/XMLPrimitive.h"
#include "xml/XMLRoot.h"
#include "xml/XMLTable.h"

namespace norvane::platform::data {
namespace {

std::unique_ptr<Element> makeHandler(const tKeyword& keyword, IDataStore* store,
                                     metadata::ISchemaLocator* locator) {
    switch (keyword.kind) {
        case Record::Kind::root:
            return std::make_unique<XMLRoot>(keyword, store);
        case Record::Kind::table:
            return std::make_unique<XMLTable>(keyword, store, locator);
        case Record::Kind::container:
            return std::make_unique<XMLContainer>(keyword, store, locator);
        default:
            return std::make_unique<XMLPrimitive>(keyword, store, locator);
    }
}

}  // namespace

KeywordTable::KeywordTable(IDataStore* store, metadata::ISchemaLocator* locator) {
    std::transform(kKeywords.begin(), kKeywords.end(), handlers_.begin(),
                   [=](const tKeyword& keyword) { return makeHandler(keyword, store, locator); });
}

Element* KeywordTable::find(std::string_view name) const { return at(keywordOf(name)); }

bool KeywordTable::serves(std::uint8_t kind) {
    return std::any_of(kKeywords.begin(), kKeywords.end(), [kind](const tKeyword& keyword) {
        return kind == static_cast<std::uint8_t>(keyword.kind);
    });
}

Element* KeywordTable::at(const tKeyword* keyword) const {
    return keyword ? handlers_[static_cast<std::size_t>(keyword - kKeywords.data())].get() : nullptr;
}

}  // namespace norvane::platform::data
