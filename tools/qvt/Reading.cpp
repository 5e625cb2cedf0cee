#include "Reading.h"

#include <exception>
#include <string>

#include "MissingClasses.h"
#include "Options.h"
#include "Progress.h"
#include "UnknownUnits.h"
#include "norvane/platform/core/io/MemoryReader.h"
#include "norvane/platform/core/storage/datastore/StoreError.h"
#include "norvane/platform/core/xml/DiagnosingReader.h"
#include "norvane/platform/data/format/xml/IErrorReporter.h"
#include "norvane/platform/data/format/xml/IXMLFrontEnd.h"

namespace qvt {

namespace {

using core::storage::datastore::StoreError;
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

constexpr const char* kSubset = "document type with an internal subset";

// The parser's own words for a stray character say once more what the message says already.
std::string wordsFor(const std::string& text) {
    return text == "not well-formed (invalid token)" ? "invalid token" : text;
}

// A document type with declarations of its own may well be well-formed.
std::string reasonOf(const DocumentReader& reader) {
    if (reader.stopText() == kSubset) return std::string("a ") + kSubset + " is not read";
    return (reader.isMalformed() ? "not well-formed: " : "reading stopped: ") + wordsFor(reader.stopText());
}

[[noreturn]] void failAt(const Input& input, const DocumentReader& reader) {
    throw Failure(kMissing, placeIn(input.name(), reader.stopPlace()) + ": error: " + reasonOf(reader));
}

}  // namespace

// The container form lets exceptions out; the store form does not, but a store of which one came throws it
// again in the end. The reader has heard of all of them.
template <class Target>
void Reading::read(Target* target, const Input& input) {
    DocumentReader reader(input, input.bytes(), messages_.isQuiet());
    Reporter reporter(messages_, input, reader);
    MissingClasses classes(locator_, [&] { return placeIn(input.name(), reader.place()); });
    try {
        IXMLFrontEnd::parse(target, &reader, &classes, nullptr, &reporter);
    } catch (const StoreError&) {
        throw;
    } catch (const std::exception&) {
        if (!reader.DiagnosingReader::stopped()) throw;
    }
    if (reader.DiagnosingReader::stopped()) failAt(input, reader);
    classes.tell(messages_);
    warnOfUnknownUnits(input, messages_);
}

void Reading::into(IDataStore& store, const Input& input) { read(&store, input); }

void Reading::into(IContainer& container, const Input& input) { read(&container, input); }

}  // namespace qvt
