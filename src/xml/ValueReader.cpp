#include "xml/ValueReader.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <utility>
#include <vector>

#include "norvane/platform/core/string/StringAlgorithm.h"
#include "norvane/platform/data/metadata/IStructLayout.h"
#include "xml/Attributes.h"
#include "xml/NumberList.h"
#include "xml/NumberText.h"
#include "xml/NumberTypes.h"
#include "xml/Tokenizer.h"

namespace norvane::platform::data {
namespace {

using core::string::StringAlgorithm;
using metadata::IStructLayout;

// Bytes that a number of that type is read in: narrow integers come as 32-bit ones.
constexpr std::size_t readWidth(std::uint32_t type) {
    return metadata::elementSize(type) == kWidestNumber ? kWidestNumber : 4;
}

void writeOrThrow(Design::Primitive& primitive, const void* source, std::uint32_t start,
                  std::uint64_t count) {
    if (count == 0 || primitive.isInert()) return;
    if (!primitive.writeValues(source, start, Record::checkedSize(count))) throw TooLarge();
}

// Lays the numbers of a text into structs of one layout, one after the other.
class StructReader {
  public:
    StructReader(const std::string& text, IStructLayout& layout)
        : tokens_(text), layout_(layout), fieldCount_(layout.fieldCount()) {}

    // The structs end where `size` does. Room for a spill is behind them.
    std::vector<std::byte> read(std::uint64_t size) {
        bytes_.resize(size + kWidestNumber);
        for (std::uint64_t index = 0; position_ < size; ++index) {
            const IStructLayout::tField* field =
                layout_.field(static_cast<std::uint32_t>(index % fieldCount_));
            if (!field || !readField(*field, size)) break;
        }
        return std::move(bytes_);
    }

  private:
    // False at the end of the tokens.
    bool readField(const IStructLayout::tField& field, std::uint64_t size) {
        if (field.count == 0) position_ += field.size;  // a URI: no number, but room
        for (std::uint32_t i = 0; i < field.count && position_ < size; ++i) {
            if (!tokens_.next()) return false;
            if (isNumeric(field.type)) readNumber(field.type);
            position_ += field.size / field.count;
        }
        return true;
    }

    void readNumber(std::uint32_t type) {
        std::byte number[kWidestNumber];
        if (parseNumber(tokens_.begin(), tokens_.end(), number, numberIndex(type)))
            std::memcpy(bytes_.data() + position_, number, readWidth(type));
    }

    Tokenizer tokens_;
    IStructLayout& layout_;
    std::uint32_t fieldCount_;
    std::vector<std::byte> bytes_;
    std::uint64_t position_ = 0;
};

}  // namespace

std::uint32_t presetCount(std::uint32_t type, const char* dimension) {
    if (type >= metadata::kVector2 && type <= metadata::kMatrix4x4) return metadata::componentCount(type);
    unsigned count = 0;
    return dimension && std::sscanf(dimension, "%u", &count) == 1 ? count : 0;
}

void decodeBase64(const std::string& text, std::string& bytes) {
    bytes.resize(StringAlgorithm::DecodeBase64(text.data(), text.size(), nullptr, 0));
    StringAlgorithm::DecodeBase64(text.data(), text.size(), bytes.data(), bytes.size());
}

void readBinary(Design::Primitive& primitive, const std::string& text) {
    std::string bytes;
    decodeBase64(text, bytes);
    writeOrThrow(primitive, bytes.data(), 0, bytes.size());
}

void readText(Design::Primitive& primitive, const std::string& text, std::uint32_t start) {
    const std::u16string units = decode(text);
    writeOrThrow(primitive, units.c_str(), start, std::uint64_t{units.size()} + 1);
}

void readNumbers(Design::Primitive& primitive, const std::string& text) {
    NumberList numbers;
    numbers.read(text, primitive.dataType());
    primitive.overlayValues(numbers.elements(), numbers.isGiven());
}

void readStructs(Design::Primitive& primitive, const std::string& text,
                 const SharedPtr<metadata::ISchema>& schema) {
    IStructLayout* layout = schema ? schema->layout() : nullptr;
    if (!layout || layout->valueCount() == 0) return;
    const std::uint64_t structs = Tokenizer::count(text) / layout->valueCount();
    const std::uint64_t size = structs * layout->byteSize();
    if (size > primitive.store()->recordLimit()) throw TooLarge();
    const std::vector<std::byte> bytes = StructReader(text, *layout).read(size);
    writeOrThrow(primitive, bytes.data(), 0, size);
}

}  // namespace norvane::platform::data
