// The handlers of one run.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "xml/Element.h"

namespace norvane::platform::data {

// One handler for each keyword, made once. Names come from strangers: nothing about a name that is no keyword
// is remembered here.
class KeywordTable {
  public:
    // Both are borrowed; the locator may be null.
    KeywordTable(IDataStore* store, metadata::ISchemaLocator* locator);

    // By a name in lower case; null for one that is no keyword.
    Element* find(std::string_view name) const;
    // The one that writes an object of that kind and type; null when there is no element for them.
    Element* of(Record::Kind kind, std::uint32_t detail) const { return at(keywordOf(kind, detail)); }
    // Whether records with that first byte have an element.
    static bool serves(std::uint8_t kind);

  private:
    Element* at(const tKeyword* keyword) const;

    std::array<std::unique_ptr<Element>, kKeywords.size()> handlers_;
};

}  // namespace norvane::platform::data
