#include "xml/ValueWriter.h"

#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "norvane/platform/core/string/StringAlgorithm.h"
#include "norvane/platform/data/metadata/IStructLayout.h"
#include "xml/Element.h"
#include "xml/NumberText.h"
#include "xml/NumberTypes.h"

namespace norvane::platform::data {
namespace {

using core::string::StringAlgorithm;
using metadata::IStructLayout;

// A value read for writing, with zero bytes behind it. Its size is that of the record; bytes that make no
// whole element stay zero.
struct Value {
    explicit Value(const Design::Primitive& primitive) : count(primitive.count()) {
        if (count == 0 || primitive.store()->recordSize(primitive.offset()) < primitive.valueSize()) {
            count = 0;
            return;
        }
        size = primitive.valueSize();
        bytes.resize(std::uint64_t{size} + kWidestNumber);
        count = primitive.readValues(bytes.data(), 0, count);
    }

    std::uint32_t count;
    std::uint32_t size = 0;
    std::vector<std::byte> bytes;
};

// Writes the text of one value.
class TextWriter {
  public:
    TextWriter(XMLSerializer& serializer, bool hasNames) : serializer_(serializer), hasNames_(hasNames) {}

    void binary(const Value& value) {
        std::string text(StringAlgorithm::EncodeBase64(value.bytes.data(), value.count, nullptr, 0), '\0');
        StringAlgorithm::EncodeBase64(value.bytes.data(), value.count, text.data(), text.size());
        openVal(hasNames_);
        serializer_.addPlainText(text);
        closeVal(hasNames_);
    }

    // One string, or one `val` for each. What no NUL ends is not written.
    void strings(const Value& value) {
        std::u16string units(value.count, u'\0');
        std::memcpy(units.data(), value.bytes.data(), units.size() * 2);
        const bool isOne = units.find(u'\0') == units.size() - 1;
        for (std::u16string_view left = units; left.find(u'\0') != left.npos;) {
            const std::size_t end = left.find(u'\0');
            openVal(hasNames_ || !isOne);
            serializer_.addCharacterData(left.data(), end);
            closeVal(hasNames_ || !isOne);
            left.remove_prefix(end + 1);
        }
    }

    void numbers(const Value& value, std::uint32_t type) {
        openVal(hasNames_);
        const std::size_t step = value.size / value.count;
        for (std::size_t i = 0; i < value.count; ++i) {
            if (i != 0) serializer_.addPlainText(" ");
            number(&value.bytes[i * step], type);
        }
        closeVal(hasNames_);
    }

    void structs(const Value& value, const std::u16string& type, metadata::ISchemaLocator* locator) {
        openVal(hasNames_);
        const SharedPtr<metadata::ISchema> schema = locate(locator, type);
        IStructLayout* layout = schema ? schema->layout() : nullptr;
        if (layout && layout->byteSize() != 0) {
            const std::byte* at = value.bytes.data();
            for (std::uint32_t left = value.size / layout->byteSize(); left != 0; --left)
                at = oneStruct(value, at, *layout);
        }
        closeVal(hasNames_);
    }

  private:
    // The position moves over fields that have elements only, so that behind others the numbers are read in
    // front of their places.
    const std::byte* oneStruct(const Value& value, const std::byte* at, IStructLayout& layout) {
        const std::uint32_t fieldCount = layout.fieldCount();
        for (std::uint32_t index = 0; index < fieldCount; ++index) {
            const IStructLayout::tField& field = *layout.field(index);
            for (std::uint32_t i = 0; i < field.count; ++i, at += field.size / field.count) {
                if (at != value.bytes.data()) serializer_.addPlainText(" ");
                if (isNumeric(field.type)) print(at, field.type);
                serializer_.addPlainText({text_, length_});  // a text repeats the number before it
            }
        }
        return at;
    }

    void number(const std::byte* element, std::uint32_t type) {
        print(element, type);
        serializer_.addPlainText({text_, length_});
    }

    void print(const std::byte* element, std::uint32_t type) {
        length_ = formatNumber(element, text_, numberIndex(type));
    }

    void openVal(bool isNeeded) {
        if (isNeeded) serializer_.startElement(u"val", nullptr);
    }
    void closeVal(bool isNeeded) {
        if (isNeeded) serializer_.endElement(false);
    }

    XMLSerializer& serializer_;
    bool hasNames_;
    char text_[kNumberTextSize];
    std::size_t length_ = 0;
};

}  // namespace

void writeValue(const Design::Primitive& primitive, XMLSerializer& serializer, bool hasNames,
                metadata::ISchemaLocator* locator) {
    const std::uint32_t type = primitive.dataType();
    if (type == metadata::kStruct && !locator) return;
    const Value value(primitive);
    if (value.count == 0) return;
    TextWriter writer(serializer, hasNames);
    if (type == metadata::kBinary)
        writer.binary(value);
    else if (metadata::isTextType(type))
        writer.strings(value);
    else if (type == metadata::kStruct)
        writer.structs(value, primitive.structType(), locator);
    else
        writer.numbers(value, type);
}

}  // namespace norvane::platform::data
