#include "xml/ValueWriter.h"

#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>

#include "norvane/platform/core/string/StringAlgorithm.h"
#include "norvane/platform/data/metadata/IStructLayout.h"
#include "records/SmallBlock.h"
#include "xml/Element.h"
#include "xml/NumberText.h"
#include "xml/NumberTypes.h"

namespace norvane::platform::data {
namespace {

using core::string::StringAlgorithm;
using metadata::IStructLayout;

// A value read for writing, with zero bytes behind it. Its size is that of the record; bytes that make no
// whole element are zero.
class Value {
  public:
    explicit Value(const Design::Primitive& primitive)
        : size(sizeOf(primitive)), scratch_(Record::checkedSize(std::uint64_t{size} + kWidestNumber)) {
        if (size != 0) count = primitive.readValues(scratch_.bytes(), 0, primitive.count());
        const std::size_t filled = std::size_t{count} * primitive.elementSize();
        std::memset(scratch_.bytes() + filled, 0, std::size_t{size} + kWidestNumber - filled);
    }

    const std::byte* bytes() const { return scratch_.bytes(); }
    std::u16string_view units() const { return {reinterpret_cast<const char16_t*>(bytes()), count}; }

    std::uint32_t count = 0;
    const std::uint32_t size;

  private:
    // 0 for one without elements, and for one that is longer than the whole record by now.
    static std::uint32_t sizeOf(const Design::Primitive& primitive) {
        const bool isThere = primitive.count() != 0 &&
                             primitive.store()->recordSize(primitive.offset()) >= primitive.valueSize();
        return isThere ? primitive.valueSize() : 0;
    }

    Record::SmallBlock<256> scratch_;
};

// Numbers on their way to the serializer, many at a time.
class NumberRun {
  public:
    NumberRun(XMLSerializer& serializer, std::uint32_t type)
        : serializer_(serializer), index_(numberIndex(type)) {}

    void add(const std::byte* number) {
        if (sizeof text_ - length_ < kNumberTextSize) flush();
        length_ += formatNumber(number, text_ + length_, index_);
    }
    void addBlank() { text_[length_++] = ' '; }
    void flush() {
        serializer_.addPlainText({text_, length_});
        length_ = 0;
    }

  private:
    XMLSerializer& serializer_;
    int index_;
    std::size_t length_ = 0;
    char text_[2048];
};

// Writes the text of one value.
class TextWriter {
  public:
    TextWriter(XMLSerializer& serializer, bool hasNames) : serializer_(serializer), hasNames_(hasNames) {}

    void binary(const Value& value) {
        std::string text(StringAlgorithm::EncodeBase64(value.bytes(), value.count, nullptr, 0), '\0');
        StringAlgorithm::EncodeBase64(value.bytes(), value.count, text.data(), text.size());
        openVal(hasNames_);
        serializer_.addPlainText(text);
        closeVal(hasNames_);
    }

    // One string, or one `val` for each. What no NUL ends is not written.
    void strings(const Value& value) {
        const std::u16string_view units = value.units();
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
        NumberRun run(serializer_, type);
        for (std::size_t i = 0; i < value.count; ++i) {
            if (i != 0) run.addBlank();
            run.add(value.bytes() + i * step);
        }
        run.flush();
        closeVal(hasNames_);
    }

    void structs(const Value& value, const std::u16string& type, metadata::ISchemaLocator* locator) {
        openVal(hasNames_);
        const SharedPtr<metadata::ISchema> schema = locate(locator, type);
        IStructLayout* layout = schema ? schema->layout() : nullptr;
        if (layout && layout->byteSize() != 0) {
            const std::byte* at = value.bytes();
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
                if (at != value.bytes()) serializer_.addPlainText(" ");
                if (isNumeric(field.type)) print(at, field.type);
                serializer_.addPlainText({text_, length_});  // a text repeats the number before it
            }
        }
        return at;
    }

    void print(const std::byte* element, std::uint32_t type) {
        length_ = formatNumber(element, text_, numberIndex(type));
    }

    void openVal(bool isNeeded) {
        if (isNeeded) serializer_.startPlainElement("val");
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
