// Values that the command line gives.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "Names.h"
#include "Options.h"

namespace qvt {

// The value that stands in words, as `get` prints it: numbers, which may stand several in a word; texts, each
// word one; bytes as Base64; structs as the numbers of their fields.
class NewValue {
  public:
    // `structType` and `locator` are for structs. Words that are no such value are a Failure.
    NewValue(std::uint32_t type, const std::vector<std::string>& words, const std::string& structType,
             ISchemaLocator* locator);

    // Makes it the whole value, in place of a URI too. False if it does not fit a record.
    bool storeTo(IPrimitive& primitive) const;

  private:
    void addNumbers(std::uint32_t type, const std::vector<std::string>& words);
    void addTexts(const std::vector<std::string>& words);
    void addBase64(const std::vector<std::string>& words);
    void addStructs(const std::vector<std::string>& words, IStructLayout& layout);
    void addField(const IStructLayout::tField& field, const std::string_view* numbers);

    std::vector<std::byte> bytes_;
};

// The number of a type by the name of its element in documents, or 0.
std::uint32_t typeNamed(const std::string& name);
// The names of all types, behind those of all kinds of objects that can be made.
std::vector<std::string> kindAndTypeNames();
// For what is none of these, with what may have been meant.
Failure unknownType(const std::string& type);

}  // namespace qvt
