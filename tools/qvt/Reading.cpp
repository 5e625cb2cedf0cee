#include "Reading.h"

#include <exception>
#include <set>
#include <string>

#include "Options.h"
#include "Progress.h"
#include "norvane/platform/core/io/MemoryReader.h"
#include "norvane/platform/core/xml/DiagnosingReader.h"
#include "norvane/platform/data/format/xml/IErrorReporter.h"
#include "norvane/platform/data/format/xml/IXMLFrontEnd.h"

namespace qvt {

namespace {

using data::format::xml::IXMLFrontEnd;

// Knows, beside the place, whether a parse was stopped by the document or by an exception.
class DocumentReader : public core::xml::DiagnosingReader {
  public:
    DocumentReader(const Input& input, std::string_view bytes, bool isQuiet)
        : DiagnosingReader(source_),
          source_(bytes),
          progress_("reading " + input.name(), bytes.size(), isQuiet) {}

    std::size_t read(void* buffer, std::size_t size) override {
        progress_.reached(given_);
        const std::size_t count = DiagnosingReader::read(buffer, size);
        given_ += count;
        return count;
    }

    void parsing(const core::xml::XMLParser& parser) override {
        parser_ = &parser;
        DiagnosingReader::parsing(parser);
    }

    using DiagnosingReader::stopped;
    void stopped(const Place& place, const char* text) override {
        isMalformed_ = parser_->errorText() != nullptr;
        DiagnosingReader::stopped(place, text);
    }

    bool isMalformed() const { return isMalformed_; }

  private:
    core::io::MemoryReader source_;
    Progress progress_;
    std::uint64_t given_ = 0;
    const core::xml::XMLParser* parser_ = nullptr;
    bool isMalformed_ = false;
};

class Reporter : public data::format::xml::IErrorReporter {
  public:
    Reporter(Messages& messages, const Input& input, const DocumentReader& reader)
        : messages_(messages), input_(input), reader_(reader) {}

    void report(WideString message) override {
        messages_.report(input_.name(), reader_.place(), utf8(message));
    }

  private:
    Messages& messages_;
    const Input& input_;
    const DocumentReader& reader_;
};

// Notes the classes that a document names and that are not found: the library passes over them in silence,
// and a document read without its class library loses its class names.
class NotingLocator : public ISchemaLocator {
  public:
    NotingLocator(ISchemaLocator& locator, const DocumentReader& reader)
        : locator_(locator), reader_(reader) {}

    SharedPtr<ISchema> locate(WideString names) override {
        SharedPtr<ISchema> schema = locator_.locate(names);
        if (names.isEmpty() || (schema && names.view().find(u';') == std::u16string_view::npos))
            return schema;
        noteMissing(utf8(names));
        return schema;
    }
    void addStore(IDataStore* store) override { locator_.addStore(store); }
    bool removeStore(IDataStore* store) override { return locator_.removeStore(store); }
    void clearStores() override { locator_.clearStores(); }

    void warn(const Messages& messages, const Input& input) const {
        if (missing_.empty()) return;
        std::string words = "class " + first_ + " is not known";
        const std::size_t others = missing_.size() - 1;
        if (others == 1) words += ", nor is another one";
        if (others > 1) words += ", nor are " + std::to_string(others) + " others";
        messages.warn(input.name(), firstPlace_, words + " (--schemas DOC says where to look)");
    }

  private:
    void noteMissing(const std::string& names) {
        for (std::size_t start = 0; start <= names.size();) {
            const std::size_t end = std::min(names.find(';', start), names.size());
            note(names.substr(start, end - start));
            start = end + 1;
        }
    }

    void note(const std::string& name) {
        if (name.empty() || missing_.count(name) != 0 || locator_.locate(wide(name))) return;
        if (missing_.empty()) {
            first_ = name;
            firstPlace_ = reader_.place();
        }
        missing_.insert(name);
    }

    ISchemaLocator& locator_;
    const DocumentReader& reader_;
    std::set<std::string> missing_;
    std::string first_;
    Place firstPlace_;
};

// The parser's own words for a stray character say once more what the message says already.
std::string wordsFor(const std::string& text) {
    return text == "not well-formed (invalid token)" ? "invalid token" : text;
}

[[noreturn]] void failAt(const Input& input, const DocumentReader& reader) {
    const char* what = reader.isMalformed() ? "not well-formed: " : "reading stopped: ";
    throw Failure(kMissing, placeIn(input.name(), reader.stopPlace()) + ": error: " + what +
                                wordsFor(reader.stopText()));
}

}  // namespace

// The container form lets exceptions out, the store form does not; both tell the reader.
template <class Target>
void Reading::read(Target* target, const Input& input, std::string_view bytes) {
    Messages silent(true);
    Messages& messages = messages_ ? *messages_ : silent;
    DocumentReader reader(input, bytes, messages.isQuiet());
    Reporter reporter(messages, input, reader);
    NotingLocator locator(locator_, reader);
    try {
        IXMLFrontEnd::parse(target, &reader, &locator, nullptr, &reporter);
    } catch (const std::exception&) {
        if (!reader.DiagnosingReader::stopped()) throw;
    }
    if (reader.DiagnosingReader::stopped()) failAt(input, reader);
    locator.warn(messages, input);
}

void Reading::into(IDataStore& store, const Input& input) { read(&store, input, input.bytes()); }

void Reading::into(IContainer& container, const Input& input) { read(&container, input, input.bytes()); }

void Reading::into(IContainer& container, const Input& input, const std::string& bytes) {
    read(&container, input, bytes);
}

}  // namespace qvt
