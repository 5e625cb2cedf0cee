#include "norvane/platform/core/xml/XMLSerializer.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "core/xml/Escape.h"
#include "norvane/platform/core/string/StringAlgorithm.h"

namespace norvane::platform::core::xml {
namespace {

using string::StringAlgorithm;

std::u16string_view textOf(const tWChar* text) {
    return text ? std::u16string_view(text) : std::u16string_view();
}

// Bytes on their way to a writer, collected until there are many.
class Output {
  public:
    void attach(io::IDataWriter* writer) {
        writer_ = writer;
        used_ = 0;
    }

    void put(std::string_view bytes) {
        if (bytes.size() <= buffer_.size() - used_) {
            std::memcpy(buffer_.data() + used_, bytes.data(), bytes.size());
            used_ += bytes.size();
        } else {
            putPieces(bytes);
        }
    }

    void putPieces(std::string_view bytes) {
        while (bytes.size() > buffer_.size() - used_) {
            const std::size_t count = bytes.copy(buffer_.data() + used_, buffer_.size() - used_);
            used_ += count;
            bytes.remove_prefix(count);
            flush();
        }
        used_ += bytes.copy(buffer_.data() + used_, bytes.size());
    }

    void put(char byte) { *room(1) = byte, ++used_; }

    void putEscaped(std::u16string_view text, Context context) {
        constexpr std::size_t kStep = 1024;
        const tWChar* from = text.data();
        const tWChar* end = from + text.size();
        while (from < end) {
            const auto count = std::min<std::size_t>(kStep, static_cast<std::size_t>(end - from));
            char* to = room(count * kMostBytesPerUnit);
            taken(escape(from, from + count, end, to, context));
        }
    }

    // Space for `size` bytes, and how far it was used.
    char* room(std::size_t size) {
        if (buffer_.size() - used_ < size) flush();
        return buffer_.data() + used_;
    }
    void taken(const char* end) { used_ = static_cast<std::size_t>(end - buffer_.data()); }

    void flush() {
        const std::size_t size = std::exchange(used_, 0);
        for (std::size_t done = 0; writer_ && done < size;) {
            const std::size_t count = writer_->write(buffer_.data() + done, size - done);
            if (count == 0) {
                writer_ = nullptr;
                throw std::runtime_error("the writer takes no more bytes");
            }
            done += std::min(count, size - done);
        }
    }

  private:
    io::IDataWriter* writer_ = nullptr;
    std::size_t used_ = 0;
    std::array<char, std::size_t{1} << 16> buffer_;
};

struct Level {
    std::uint32_t nameSize;
    bool hasText = false;
    bool hasElements = false;
};

constexpr std::size_t kDeepestIndent = 40;

}  // namespace

struct XMLSerializer::State {
    Output output;
    std::string names;  // of the open elements, one behind the other
    std::vector<Level> levels;
    bool tagIsOpen = false;
    tWChar high = 0;  // first half of a surrogate pair whose other half may come with the next piece of text

    void reset() {
        names.clear();
        levels.clear();
        tagIsOpen = false;
        high = 0;
    }

    void endRun() {
        if (std::exchange(high, tWChar{0}) != 0) putLoneHalf();
    }

    void putLoneHalf() { output.taken(putReplacement(output.room(3))); }

    void endTag() {
        if (std::exchange(tagIsOpen, false)) output.put('>');
    }

    void newLine(std::size_t depth) {
        static constexpr std::string_view kBlanks =
            "                                                                                ";
        static_assert(kBlanks.size() == 2 * kDeepestIndent);
        output.put('\n');
        output.put(kBlanks.substr(0, 2 * std::min(depth, kDeepestIndent)));
    }

    // The second half of a pair, taken off `text`, if the first half waits for it.
    void joinHalves(std::u16string_view& text) {
        const tWChar first = std::exchange(high, tWChar{0});
        if (first == 0) return;
        if (!isLowSurrogate(text.front())) return putLoneHalf();
        output.taken(putPair(first, text.front(), output.room(4)));
        text.remove_prefix(1);
    }

    void characterData(std::u16string_view text) {
        if (text.empty()) return;
        beginText();
        joinHalves(text);
        if (!text.empty() && isHighSurrogate(text.back())) {
            high = text.back();
            text.remove_suffix(1);
        }
        output.putEscaped(text, Context::text);
    }

    void beginText() {
        endTag();
        if (!levels.empty()) levels.back().hasText = true;
    }

    // `addName` adds the name to those of the open elements.
    template <class AddName>
    void openElement(AddName addName) {
        endRun();
        endTag();
        if (!levels.empty() && !levels.back().hasText) {
            levels.back().hasElements = true;
            newLine(levels.size());
        }
        const std::size_t before = names.size();
        addName(names);
        levels.push_back({static_cast<std::uint32_t>(names.size() - before)});
        output.put('<');
        output.put(std::string_view(names).substr(before));
        tagIsOpen = true;
    }

    void putAttribute(std::string_view name, std::u16string_view value) {
        output.put(' ');
        output.put(name);
        output.put("=\"");
        output.putEscaped(value, Context::attribute);
        output.put('"');
    }

    void closeElement() {
        endRun();
        const Level level = levels.back();
        levels.pop_back();
        const std::size_t before = names.size() - level.nameSize;
        if (std::exchange(tagIsOpen, false)) {
            output.put("/>");
        } else {
            if (level.hasElements && !level.hasText) newLine(levels.size());
            output.put("</");
            output.put(std::string_view(names).substr(before));
            output.put('>');
        }
        names.resize(before);
        if (levels.empty()) output.put('\n');
    }
};

XMLSerializer::XMLSerializer(QVTUUID&) : state_(new State) {}

XMLSerializer::~XMLSerializer() = default;

void XMLSerializer::attach(io::IDataWriter* writer) {
    state_->reset();
    state_->output.attach(writer);
}

void XMLSerializer::detach() {
    state_->endRun();
    state_->output.flush();
    state_->output.attach(nullptr);
}

void XMLSerializer::emitXMLHeader() { state_->output.put("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"); }

void XMLSerializer::startElement(const tWChar* name, const tWChar*) {
    state_->openElement([name](std::string& names) { StringAlgorithm::UTF8Encode(textOf(name), names); });
}

void XMLSerializer::startPlainElement(std::string_view name) {
    state_->openElement([name](std::string& names) { names.append(name); });
}

void XMLSerializer::addAttribute(const tWChar* name, const tWChar* value, const tWChar*) {
    if (!state_->tagIsOpen) return;
    Output& output = state_->output;
    output.put(" ");
    output.putEscaped(textOf(name), Context::attribute);
    output.put("=\"");
    output.putEscaped(textOf(value), Context::attribute);
    output.put("\"");
}

void XMLSerializer::addTextAttribute(std::string_view name, std::u16string_view value) {
    if (state_->tagIsOpen) state_->putAttribute(name, value);
}

void XMLSerializer::addPlainAttribute(std::string_view name, std::string_view value) {
    if (!state_->tagIsOpen) return;
    Output& output = state_->output;
    output.put(' ');
    output.put(name);
    output.put("=\"");
    output.put(value);
    output.put('"');
}

void XMLSerializer::addCharacterData(const tWChar* text) { state_->characterData(textOf(text)); }

void XMLSerializer::addCharacterData(const tWChar* text, std::size_t length) {
    if (text) state_->characterData({text, length});
}

void XMLSerializer::addPlainText(std::string_view text) {
    if (text.empty()) return;
    state_->endRun();
    state_->beginText();
    state_->output.put(text);
}

void XMLSerializer::endElement(bool) {
    if (!state_->levels.empty()) state_->closeElement();
}

}  // namespace norvane::platform::core::xml
