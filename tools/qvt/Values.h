// The values of primitives, as text and as JSON.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "Names.h"

namespace qvt {

using Json = nlohmann::ordered_json;

// JSON in one line, or with this indentation in several. A byte that is not UTF-8 becomes U+FFFD.
std::string dumped(const Json& json, int indentation = -1);

// The elements of a primitive, or the first of them, in memory.
class Value {
  public:
    static constexpr std::uint32_t kEverything = 0xFFFFFFFF;

    // `locator` finds the layout of a struct; without the layout, a struct is bytes.
    Value(IPrimitive& primitive, ISchemaLocator* locator, std::uint32_t mostElements = kEverything);

    // How the elements are to be understood.
    enum class Form { numbers, texts, structs, bytes };
    Form form() const { return form_; }
    // A struct that is shown as bytes: its class is not known, or has no fields.
    bool isWithoutLayout() const { return type_ == metadata::kStruct && form_ == Form::bytes; }
    // Elements of the whole value, as the library counts them.
    std::uint32_t count() const { return count_; }
    bool isCut() const { return bytes_.size() / elementSize_ < count_; }

    // All numbers, shortest form that reads back as the same number, separated by blanks. Of `numbers` only.
    std::string numbers() const;
    // Of `texts` only. Of a cut value, the last one may be the beginning of a text.
    std::vector<std::string> texts() const;
    // Whether a number is among them that meets the test. Of `numbers` only, else false.
    bool hasNumber(const std::function<bool(long double)>& test) const;
    // Base64. Of `bytes` only.
    std::string base64() const;

    // Of `structs` only: how many there are (also when cut), the names of the fields, and one field of one
    // struct as text.
    std::uint32_t structCount() const;
    std::uint32_t structsHere() const;
    std::vector<std::string> fieldNames() const;
    std::string field(std::uint32_t structIndex, std::uint32_t fieldIndex) const;

    // Numbers and texts as an array, structs as an array of objects (a field of one number as that number, of
    // several as an array), bytes as Base64.
    Json json() const;

  private:
    const std::byte* fieldBytes(std::uint32_t structIndex, const IStructLayout::tField& field) const;

    std::uint32_t type_;
    std::uint32_t elementSize_;
    std::uint32_t count_;
    std::vector<std::byte> bytes_;
    SharedPtr<ISchema> schema_;  // keeps the layout
    IStructLayout* layout_ = nullptr;
    Form form_;
};

}  // namespace qvt
