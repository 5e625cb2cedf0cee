#include "xml/ValueReader.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <utility>
#include <vector>

#include "norvane/platform/core/string/StringAlgorithm.h"
#include "norvane/platform/data/metadata/IStructLayout.h"
#include "xml/Attributes.h"
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

// The elements of a value one behind the other, and which of them are numbers.
class Numbers {
  public:
    Numbers(std::size_t width, std::size_t expected)
        : width_(width), elements_(expected * width + kWidestNumber) {
        isGiven_.reserve(expected);
    }

    // Copies as much as the widest number: a copy of one known size is a single move.
    void add(const std::byte* number, bool isGiven) {
        const std::size_t at = isGiven_.size() * width_;
        if (at + kWidestNumber > elements_.size()) elements_.resize(elements_.size() * 2);
        std::memcpy(&elements_[at], number, kWidestNumber);
        isGiven_.push_back(isGiven ? 1 : 0);
    }

    const std::byte* elements() const { return elements_.data(); }
    const std::vector<unsigned char>& isGiven() const { return isGiven_; }

  private:
    std::size_t width_;
    std::vector<std::byte> elements_;
    std::vector<unsigned char> isGiven_;
};

// Most values are one number, which needs no memory on its way. False, with nothing stored, for any other.
bool readOnlyNumber(Design::Primitive& primitive, const std::string& text, int index) {
    Tokenizer tokens(text);
    tokens.next();
    std::byte number[kWidestNumber];
    return tokens.end() == text.data() + text.size() &&
           parseNumber(tokens.begin(), tokens.end(), number, index) && primitive.writeValues(number, 0, 1);
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

void readBinary(Design::Primitive& primitive, const std::string& text) {
    std::vector<std::byte> bytes(StringAlgorithm::DecodeBase64(text.data(), text.size(), nullptr, 0));
    StringAlgorithm::DecodeBase64(text.data(), text.size(), bytes.data(), bytes.size());
    writeOrThrow(primitive, bytes.data(), 0, bytes.size());
}

void readText(Design::Primitive& primitive, const std::string& text, std::uint32_t start) {
    const std::u16string units = decode(text);
    writeOrThrow(primitive, units.c_str(), start, std::uint64_t{units.size()} + 1);
}

void readNumbers(Design::Primitive& primitive, const std::string& text) {
    const int index = numberIndex(primitive.dataType());
    if (readOnlyNumber(primitive, text, index)) return;
    Numbers numbers(primitive.elementSize(), std::min<std::size_t>(primitive.count(), text.size() / 2 + 1));
    std::byte number[kWidestNumber] = {};
    for (Tokenizer tokens(text); tokens.next();) {
        const bool isGiven = parseNumber(tokens.begin(), tokens.end(), number, index);
        numbers.add(number, isGiven);
    }
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
