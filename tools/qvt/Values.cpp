#include "Values.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <memory>
#include <nlohmann/json.hpp>

#include "norvane/platform/data/metadata/IStringArray.h"

namespace qvt {

namespace {

using core::string::StringAlgorithm;

// Calls `use` with the number at `bytes`, which need not be aligned.
template <class T, class Use>
auto withNumber(const std::byte* bytes, Use use) {
    T number;
    std::memcpy(&number, bytes, sizeof number);
    return use(number);
}

template <class Use>
auto withNumber(std::uint32_t type, const std::byte* bytes, Use use) {
    switch (type) {
        case metadata::kInt8:
            return withNumber<std::int8_t>(bytes, use);
        case metadata::kBool:
        case metadata::kUint8:
            return withNumber<std::uint8_t>(bytes, use);
        case metadata::kInt16:
            return withNumber<std::int16_t>(bytes, use);
        case metadata::kUint16:
            return withNumber<std::uint16_t>(bytes, use);
        case metadata::kInt32:
            return withNumber<std::int32_t>(bytes, use);
        case metadata::kUint32:
            return withNumber<std::uint32_t>(bytes, use);
        case metadata::kInt64:
            return withNumber<std::int64_t>(bytes, use);
        case metadata::kUint64:
            return withNumber<std::uint64_t>(bytes, use);
        case metadata::kScalar:
            return withNumber<float>(bytes, use);
        default:
            return withNumber<double>(bytes, use);
    }
}

bool isNumberType(std::uint32_t type) { return type >= metadata::kBool && type <= metadata::kMatrix4x4; }

template <class T>
std::string numberText(T number) {
    char text[64];
    return {text, std::to_chars(text, text + sizeof text, number).ptr};
}

// JSON has no word for what is no finite number. A float goes through its own shortest text: as a double it
// would show digits that it never had.
template <class T>
Json numberJson(T number) {
    if constexpr (std::is_floating_point_v<T>) {
        const std::string text = numberText(number);
        if (!std::isfinite(number)) return text;
        double value = 0;
        std::from_chars(text.data(), text.data() + text.size(), value);
        return value;
    } else {
        return number;
    }
}

std::string numberText(std::uint32_t type, const std::byte* bytes) {
    return withNumber(type, bytes, [](auto number) { return numberText(number); });
}

Json numberJson(std::uint32_t type, const std::byte* bytes) {
    return withNumber(type, bytes, [](auto number) { return numberJson(number); });
}

// A bool is a byte, and a document can put any number there.
Json elementJson(std::uint32_t type, const std::byte* bytes) {
    const auto byte = std::to_integer<unsigned>(*bytes);
    if (type == metadata::kBool && byte <= 1) return byte == 1;
    return numberJson(type, bytes);
}

std::string numberTexts(std::uint32_t type, const std::byte* bytes, std::size_t size) {
    const std::size_t step = metadata::elementSize(type);
    std::string result;
    for (std::size_t at = 0; at + step <= size; at += step) {
        if (at != 0) result += ' ';
        result += numberText(type, bytes + at);
    }
    return result;
}

Json numberArray(std::uint32_t type, const std::byte* bytes, std::size_t size) {
    const std::size_t step = metadata::elementSize(type);
    Json result = Json::array();
    for (std::size_t at = 0; at + step <= size; at += step) result.push_back(elementJson(type, bytes + at));
    return result;
}

// What stands behind the last NUL is no text, except where the rest was not read.
std::vector<std::string> textsIn(const std::byte* bytes, std::size_t size, bool isCut = false) {
    std::u16string units(size / sizeof(char16_t), u'\0');
    std::memcpy(units.data(), bytes, units.size() * sizeof(char16_t));
    if (isCut) units += u'\0';
    const std::unique_ptr<metadata::IStringArray> strings(
        metadata::IStringArray::to(units.data(), static_cast<unsigned>(units.size())));
    std::vector<std::string> texts(strings->count());
    for (std::uint32_t i = 0; i < strings->count(); ++i) texts[i] = utf8(strings->at(i));
    return texts;
}

std::string base64Of(const std::byte* bytes, std::size_t size) {
    std::string text(StringAlgorithm::EncodeBase64(bytes, size, nullptr, 0), '\0');
    StringAlgorithm::EncodeBase64(bytes, size, text.data(), text.size());
    return text;
}

std::string fieldText(const IStructLayout::tField& field, const std::byte* bytes) {
    if (isNumberType(field.type)) return numberTexts(field.type, bytes, field.size);
    if (!metadata::isTextType(field.type)) return base64Of(bytes, field.size);
    std::string text;
    for (const std::string& each : textsIn(bytes, field.size)) text += (text.empty() ? "" : " ") + each;
    return text;
}

Json fieldJson(const IStructLayout::tField& field, const std::byte* bytes) {
    if (metadata::isTextType(field.type)) return textsIn(bytes, field.size);
    if (!isNumberType(field.type)) return base64Of(bytes, field.size);
    Json numbers = numberArray(field.type, bytes, field.size);
    return numbers.size() == 1 ? numbers.front() : numbers;
}

}  // namespace

std::string dumped(const Json& json, int indentation) {
    return json.dump(indentation, ' ', false, Json::error_handler_t::replace);
}

Value::Value(IPrimitive& primitive, ISchemaLocator* locator, std::uint32_t mostElements)
    : type_(primitive.dataType()),
      elementSize_(std::max(1u, primitive.elementSize())),
      count_(primitive.count()),
      form_(isNumberType(type_)           ? Form::numbers
            : metadata::isTextType(type_) ? Form::texts
                                          : Form::bytes) {
    if (type_ == metadata::kStruct && locator) schema_ = locator->locate(primitive.structType());
    if (schema_ && schema_->layout()->byteSize() != 0) {
        layout_ = schema_->layout();
        form_ = Form::structs;
    }
    const std::uint32_t wanted =
        std::min(count_, layout_ ? std::max(mostElements, layout_->byteSize()) : mostElements);
    bytes_.resize(std::size_t{wanted} * elementSize_);
    if (!primitive.readValues(bytes_.data(), 0, wanted)) bytes_.clear();
}

std::string Value::numbers() const { return numberTexts(type_, bytes_.data(), bytes_.size()); }

std::vector<std::string> Value::texts() const { return textsIn(bytes_.data(), bytes_.size(), isCut()); }

bool Value::hasNumber(const std::function<bool(long double)>& test) const {
    if (form_ != Form::numbers) return false;
    for (std::size_t at = 0; at + elementSize_ <= bytes_.size(); at += elementSize_)
        if (withNumber(type_, bytes_.data() + at, [&](auto number) { return test(number); })) return true;
    return false;
}

std::string Value::base64() const { return base64Of(bytes_.data(), bytes_.size()); }

std::uint32_t Value::structCount() const { return count_ / layout_->byteSize(); }

std::uint32_t Value::structsHere() const {
    return static_cast<std::uint32_t>(bytes_.size() / layout_->byteSize());
}

std::vector<std::string> Value::fieldNames() const {
    std::vector<std::string> names;
    for (std::uint32_t i = 0; i < layout_->fieldCount(); ++i) names.push_back(utf8(layout_->field(i)->name));
    return names;
}

std::string Value::field(std::uint32_t structIndex, std::uint32_t fieldIndex) const {
    const IStructLayout::tField& field = *layout_->field(fieldIndex);
    return fieldText(field, fieldBytes(structIndex, field));
}

Json Value::json() const {
    if (form_ == Form::numbers) return numberArray(type_, bytes_.data(), bytes_.size());
    if (form_ == Form::texts) return texts();
    if (form_ == Form::bytes) return base64();
    Json result = Json::array();
    for (std::uint32_t i = 0; i < structsHere(); ++i) {
        Json each = Json::object();
        for (std::uint32_t at = 0; at < layout_->fieldCount(); ++at) {
            const IStructLayout::tField& field = *layout_->field(at);
            each[utf8(field.name)] = fieldJson(field, fieldBytes(i, field));
        }
        result.push_back(std::move(each));
    }
    return result;
}

const std::byte* Value::fieldBytes(std::uint32_t structIndex, const IStructLayout::tField& field) const {
    return bytes_.data() + std::size_t{structIndex} * layout_->byteSize() + field.offset;
}

}  // namespace qvt
