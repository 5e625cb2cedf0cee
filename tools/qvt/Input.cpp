#include "Input.h"

#include <cctype>

#include "FileStores.h"
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

    std::string name;

    void startElement(const char* element, const char* const*) override {
        name = element;
        for (char& c : name) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
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
    if (beginsAsFileStore(bytes_))
        throw Failure(kMissing, name_ + (isFileStore(path)
                                             ? ": error: a file store, where a document is wanted"
                                             : ": error: a file store, but its name does not end in .qvt"));
}

std::string outermostElement(std::string_view bytes) {
    FirstTag callback;
    core::xml::XMLParser parser(callback);
    core::io::MemoryReader reader(bytes);
    try {
        parser.parseDocument(&reader);
    } catch (const FirstTag::Found&) {  // the only way to stop a parse that goes well
    }
    return callback.name;
}

}  // namespace qvt
