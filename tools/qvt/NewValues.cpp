#include "NewValues.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <string_view>

#include "Nearest.h"
#include "Objects.h"
#include "Text.h"

namespace qvt {

namespace {

using core::string::StringAlgorithm;

using Bytes = std::vector<std::byte>;

Failure wrong(const std::string& words) { return {kUsage, "error: " + words}; }

void append(Bytes& bytes, const void* more, std::size_t size) {
    const auto* begin = static_cast<const std::byte*>(more);
    bytes.insert(bytes.end(), begin, begin + size);
}

std::string_view withoutPlus(std::string_view text) {
    const bool hasPlus = text.size() > 1 && text[0] == '+' && text[1] != '-';
    return text.substr(hasPlus ? 1 : 0);
}

// The number in its whole length and within the range of its type.
template <class T>
bool addNumber(Bytes& bytes, std::string_view text) {
    text = withoutPlus(text);
    T number{};
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    if (result.ec != std::errc() || result.ptr != text.data() + text.size()) return false;
    append(bytes, &number, sizeof number);
    return true;
}

bool addNumber(Bytes& bytes, std::uint32_t type, std::string_view text) {
    switch (type) {
        case metadata::kBool:
            if (text == "true") text = "1";
            if (text == "false") text = "0";
            return addNumber<std::uint8_t>(bytes, text);
        case metadata::kInt8:
            return addNumber<std::int8_t>(bytes, text);
        case metadata::kUint8:
            return addNumber<std::uint8_t>(bytes, text);
        case metadata::kInt16:
            return addNumber<std::int16_t>(bytes, text);
        case metadata::kUint16:
            return addNumber<std::uint16_t>(bytes, text);
        case metadata::kInt32:
            return addNumber<std::int32_t>(bytes, text);
        case metadata::kUint32:
            return addNumber<std::uint32_t>(bytes, text);
        case metadata::kInt64:
            return addNumber<std::int64_t>(bytes, text);
        case metadata::kUint64:
            return addNumber<std::uint64_t>(bytes, text);
        case metadata::kScalar:
            return addNumber<float>(bytes, text);
        default:
            return addNumber<double>(bytes, text);
    }
}

bool isNumberType(std::uint32_t type) { return type >= metadata::kBool && type <= metadata::kMatrix4x4; }

bool isWholeNumberType(std::uint32_t type) { return type < metadata::kScalar; }

// Whether a text that is no number of the type would be one if the type reached further.
bool isBeyond(std::uint32_t type, std::string_view text) {
    text = withoutPlus(text);
    const std::size_t sign = text[0] == '-' ? 1 : 0;
    if (isWholeNumberType(type) && text.find_first_not_of("0123456789", sign) != text.npos) return false;
    long double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error != std::errc::invalid_argument && end == text.data() + text.size();
}

// A component is named by what it is a part of.
void mustAdd(Bytes& bytes, std::uint32_t type, std::string_view text) {
    if (addNumber(bytes, type, text)) return;
    const std::string of = (metadata::componentCount(type) > 1 ? "a " : "type ") + typeName(type);
    throw wrong(std::string(text) +
                (isBeyond(type, text) ? " is out of the range of " : " is no number of ") + of);
}

std::vector<std::string_view> splitAtBlanks(const std::vector<std::string>& words) {
    constexpr std::string_view kBlanks = " \t\r\n";
    std::vector<std::string_view> parts;
    for (const std::string_view word : words) {
        for (std::size_t at = word.find_first_not_of(kBlanks); at != std::string_view::npos;) {
            const std::size_t end = std::min(word.find_first_of(kBlanks, at), word.size());
            parts.push_back(word.substr(at, end - at));
            at = word.find_first_not_of(kBlanks, end);
        }
    }
    return parts;
}

}  // namespace

NewValue::NewValue(std::uint32_t type, const std::vector<std::string>& words, const std::string& structType,
                   ISchemaLocator* locator) {
    if (type == metadata::kStruct) {
        const SharedPtr<ISchema> schema = locator->locate(wide(structType));
        if (!schema) throw Failure(kMissing, "error: class " + structType + " is not known");
        addStructs(words, *schema->layout());
    } else if (isNumberType(type)) {
        addNumbers(type, words);
    } else if (metadata::isTextType(type)) {
        addTexts(words);
    } else {
        addBase64(words);
    }
}

void NewValue::addNumbers(std::uint32_t type, const std::vector<std::string>& words) {
    const std::vector<std::string_view> numbers = splitAtBlanks(words);
    const std::uint32_t components = metadata::componentCount(type);
    if (numbers.size() % components != 0)
        throw wrong("a " + typeName(type) + " takes " + std::to_string(components) +
                    " numbers, and here are " + std::to_string(numbers.size()));
    for (const std::string_view number : numbers) mustAdd(bytes_, type, number);
}

void NewValue::addTexts(const std::vector<std::string>& words) {
    for (const std::string& word : words) {
        const WideString text = wide(word);
        append(bytes_, text.string(), (text.length() + 1) * sizeof(char16_t));
    }
}

void NewValue::addBase64(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words) text += word;
    const std::size_t size = StringAlgorithm::DecodeBase64(text.data(), text.size(), nullptr, 0);
    bytes_.resize(size);
    StringAlgorithm::DecodeBase64(text.data(), text.size(), bytes_.data(), size);
    std::string again(StringAlgorithm::EncodeBase64(bytes_.data(), size, nullptr, 0), '\0');
    StringAlgorithm::EncodeBase64(bytes_.data(), size, again.data(), again.size());
    if (again != text) throw wrong("the value is no Base64");
}

void NewValue::addStructs(const std::vector<std::string>& words, IStructLayout& layout) {
    const std::vector<std::string_view> numbers = splitAtBlanks(words);
    std::uint64_t each = 0;
    for (std::uint32_t i = 0; i < layout.fieldCount(); ++i) each += layout.field(i)->count;
    if (each == 0 || numbers.size() % each != 0)
        throw wrong("a struct of this class takes " + std::to_string(each) + " numbers, and here are " +
                    std::to_string(numbers.size()));
    for (std::size_t at = 0; at < numbers.size();)
        for (std::uint32_t i = 0; i < layout.fieldCount(); ++i) {
            const IStructLayout::tField& field = *layout.field(i);
            addField(field, numbers.data() + at);
            at += field.count;
        }
}

// A member whose value lies elsewhere takes room and has no elements.
void NewValue::addField(const IStructLayout::tField& field, const std::string_view* numbers) {
    if (field.count != 0 && !isNumberType(field.type))
        throw wrong("the field " + utf8(field.name) + " holds no numbers, and only these can be given");
    const std::size_t end = bytes_.size() + field.size;
    for (std::uint32_t i = 0; i < field.count; ++i) mustAdd(bytes_, field.type, numbers[i]);
    bytes_.resize(end);
}

bool NewValue::storeTo(IPrimitive& primitive) const {
    if (primitive.uri().value() && !primitive.setUri(WideString())) return false;
    const std::uint64_t count = bytes_.size() / std::max(1u, primitive.elementSize());
    if (count > 0xFFFFFFFF || !primitive.resize(static_cast<std::uint32_t>(count))) return false;
    return count == 0 || primitive.writeValues(bytes_.data(), 0, static_cast<std::uint32_t>(count));
}

std::uint32_t typeNamed(const std::string& name) {
    for (std::uint32_t type = metadata::kBinary; type <= metadata::kStruct; ++type)
        if (typeName(type) == name) return type;
    return 0;
}

Failure unknownType(const std::string& type) {
    Nearest nearest(type);
    for (const std::string& each : kindAndTypeNames()) nearest.offer(each);
    return wrong(shown(type) + " is neither node, group, link or table nor a type" + nearest.question());
}

std::vector<std::string> kindAndTypeNames() {
    std::vector<std::string> names{"node", "group", "link", "table"};
    for (std::uint32_t type = metadata::kBinary; type <= metadata::kStruct; ++type)
        names.push_back(typeName(type));
    return names;
}

}  // namespace qvt
