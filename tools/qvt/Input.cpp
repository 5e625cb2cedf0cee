#include "Input.h"

#include <strings.h>

#include <cstring>

#include "Names.h"
#include "Options.h"
#include "norvane/platform/core/io/FileReader.h"
#include "norvane/platform/core/io/MemoryReader.h"
#include "norvane/platform/core/xml/XMLParser.h"

namespace qvt {

namespace {

constexpr std::size_t kPiece = std::size_t{1} << 16;

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

    bool isRoot = false;

    void startElement(const char* name, const char* const* attributes) override {
        for (; *attributes && !isRoot; attributes += 2)
            isRoot = ::strcasecmp(name, "root") == 0 && std::strcmp(attributes[0], "name") == 0;
        throw Found();
    }
    void endElement(const char*) override {}
    void comment(const char*) override {}
    void processingInstruction(const char*, const char*) override {}
    void characterData(const char*, int) override {}
};

}  // namespace

Input::Input(const std::string& path) : name_(path == "-" ? "<stdin>" : path) {
    core::io::FileReader fromFile(path);
    core::io::FileReader fromInput(0);
    bytes_ = contentsOf(path == "-" ? fromInput : fromFile, name_);
}

bool isRootDocument(std::string_view bytes) {
    FirstTag callback;
    core::xml::XMLParser parser(callback);
    core::io::MemoryReader reader(bytes);
    try {
        parser.parseDocument(&reader);
    } catch (const FirstTag::Found&) {  // the only way to stop a parse that goes well
    }
    return callback.isRoot;
}

}  // namespace qvt
