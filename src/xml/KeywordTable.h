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
    // The one that writes such an object; null when there is no element for its kind or type.
    Element* of(const Metadata::Item& object) const;
    // Whether records with that first byte have an element.
    static bool serves(std::uint8_t kind);

  private:
    Element* at(const tKeyword* keyword) const;

    std::array<std::unique_ptr<Element>, kKeywords.size()> handlers_;
};

}  // namespace norvane::platform::data
