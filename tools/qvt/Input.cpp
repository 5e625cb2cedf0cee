#include "Input.h"

#include <algorithm>
#include <cctype>
#include <cstring>

#include "Names.h"
#include "Options.h"
#include "Text.h"
#include "norvane/platform/core/io/FileReader.h"
#include "norvane/platform/core/io/MemoryReader.h"
#include "norvane/platform/core/xml/XMLParser.h"

namespace qvt {

namespace {

constexpr std::size_t kPiece = std::size_t{1} << 16;

bool isFileStore(std::string_view path) {
    constexpr std::string_view kSuffix = ".qvt";
    return path.size() > kSuffix.size() && path.substr(path.size() - kSuffix.size()) == kSuffix;
}

[[noreturn]] void cannotRead(const std::string& name, const std::string& why) {
    throw Failure(kMissing, name + ": error: cannot read it: " + why);
}

std::string contentsOf(core::io::FileReader& reader, const std::string& name) {
    std::string bytes;
    if (!reader.open()) cannotRead(name, reader.error());
    for (std::size_t count = kPiece; count != 0;) {
        const std::size_t filled = bytes.size();
        bytes.resize(filled + kPiece);
        count = reader.read(bytes.data() + filled, kPiece);
        bytes.resize(filled + count);
    }
    reader.close();
    if (reader.failed()) cannotRead(name, reader.error());
    return bytes;
}

// Stops the parse at the first tag.
class FirstTag : public core::xml::XMLCallback {
  public:
    struct Found {};

    core::xml::XMLParser* parser = nullptr;
    DocumentElement element;

    void startElement(const char* name, const char* const* attributes) override {
        element.keyword = name;
        for (char& c : element.keyword) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        for (; *attributes; attributes += 2)
            if (std::strcmp(attributes[0], "name") == 0) setName(attributes[1]);
        element.position = static_cast<std::size_t>(parser->place().byte);
        throw Found();
    }
    void endElement(const char*) override {}
    void comment(const char*) override {}
    void processingInstruction(const char*, const char*) override {}
    void characterData(const char*, int) override {}

  private:
    void setName(const char* name) {
        element.name = name;
        element.hasName = true;
    }
};

// ASCII in the encoding that the document's byte order mark tells.
std::string encodedLike(std::string_view bytes, std::string_view ascii) {
    const bool isLittle = bytes.substr(0, 2) == "\xFF\xFE";
    const bool isBig = bytes.substr(0, 2) == "\xFE\xFF";
    if (!isLittle && !isBig) return std::string(ascii);
    std::string result;
    for (const char c : ascii) {
        if (isBig) result += '\0';
        result += c;
        if (isLittle) result += '\0';
    }
    return result;
}

}  // namespace

Input::Input(const std::string& path) : name_(path == "-" ? "<stdin>" : path) {
    if (isFileStore(path))
        throw Failure(kMissing,
                      name_ + ": error: this build of qvt reads documents only; file stores are not in it");
    core::io::FileReader fromFile(path);
    core::io::FileReader fromInput(0);
    bytes_ = contentsOf(path == "-" ? fromInput : fromFile, name_);
}

DocumentElement documentElementOf(std::string_view bytes) {
    FirstTag callback;
    core::xml::XMLParser parser(callback);
    callback.parser = &parser;
    core::io::MemoryReader reader(bytes);
    try {
        parser.parseDocument(&reader);
    } catch (const FirstTag::Found&) {  // the only way to stop a parse that goes well
    }
    return callback.element;
}

std::string wrappedInGroup(std::string_view bytes, const DocumentElement& element) {
    std::string result(bytes.substr(0, element.position));
    result += encodedLike(bytes, "<group name=\"\">");
    result += bytes.substr(element.position);
    result += encodedLike(bytes, "</group>");
    return result;
}

}  // namespace qvt
