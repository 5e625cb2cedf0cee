#include "norvane/platform/core/xml/XMLParser.h"

#include <expat.h>

#include <algorithm>
#include <cstddef>
#include <exception>
#include <new>
#include <string>
#include <string_view>
#include <type_traits>
#include <typeinfo>
#include <utility>

#include "core/xml/EntityReferences.h"
#include "norvane/platform/core/io/FileReader.h"
#include "norvane/platform/core/io/MemoryReader.h"
#include "norvane/platform/core/xml/IXMLParseListener.h"
#include "norvane/platform/core/xml/IXMLPauses.h"

namespace norvane::platform::core::xml {

struct XMLParser::State {
    explicit State(XMLCallback& receiver) : callback(receiver) {}

    XMLCallback& callback;
    bool isBusy = false;
    XML_Parser running = nullptr;  // while expat knows the place
    tPlace lastPlace;
    std::string wrong;

    void begin(XML_Parser parser) {
        isBusy = true;
        running = parser;
        lastPlace = {};
        wrong.clear();
    }

    void end(const tPlace& place, const std::string& error) {
        running = nullptr;
        lastPlace = place;
        wrong = error;
    }
};

namespace {

constexpr std::size_t kPiece = std::size_t{1} << 16;
constexpr std::size_t kLargestPiece = std::size_t{1} << 28;

struct FreeParser {
    void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
};
using ParserHandle = std::unique_ptr<std::remove_pointer_t<XML_Parser>, FreeParser>;

tPlace placeOf(XML_Parser parser) {
    return {XML_GetCurrentLineNumber(parser), XML_GetCurrentColumnNumber(parser) + 1,
            static_cast<std::uint64_t>(std::max<XML_Index>(XML_GetCurrentByteIndex(parser), 0))};
}

// A host may have made a reader of its own of one of ours.
bool runsCodeOfHost(const io::IDataReader& reader) {
    return typeid(reader) != typeid(io::MemoryReader) && typeid(reader) != typeid(io::FileReader);
}

// One document on its way through expat. No exception may fly through expat's own frames: what a callback
// throws is kept, stops the parser, and is thrown again when expat has returned.
class Run {
  public:
    explicit Run(XMLCallback& callback)
        : callback_(callback),
          pauses_(dynamic_cast<IXMLPauses*>(&callback)),
          parser_(XML_ParserCreate(nullptr)) {
        if (!parser_) throw std::bad_alloc();
        XML_SetUserData(parser_.get(), this);
        XML_SetElementHandler(parser_.get(), onStart, onEnd);
        XML_SetCharacterDataHandler(parser_.get(), onText);
        XML_SetCommentHandler(parser_.get(), onComment);
        XML_SetProcessingInstructionHandler(parser_.get(), onInstruction);
        XML_SetStartDoctypeDeclHandler(parser_.get(), onDoctype);
        XML_SetSkippedEntityHandler(parser_.get(), onSkippedEntity);
    }

    XML_Parser parser() const { return parser_.get(); }
    const std::string& wrong() const { return wrong_; }
    tPlace place() const { return isStopped() ? stopPlace_ : placeOf(parser()); }

    void read(io::IDataReader& reader) {
        const bool isForeign = runsCodeOfHost(reader);
        std::size_t wanted = kPiece;
        for (bool atEnd = false; !atEnd && !isStopped();) {
            void* buffer = XML_GetBuffer(parser_.get(), static_cast<int>(wanted));
            if (!buffer) throw std::bad_alloc();
            if (isForeign) pause();
            const std::size_t count = fill(reader, static_cast<char*>(buffer), wanted);
            atEnd = count < wanted;
            eventCame_ = false;
            parse(count, atEnd);
            // Expat looks at an unfinished tag from its beginning each time, so one that fills whole pieces
            // is met with larger and larger ones.
            wanted = eventCame_ ? kPiece : std::min(wanted * 2, kLargestPiece);
        }
    }

    void pause() {
        if (pauses_) pauses_->pausing();
    }

  private:
    static std::size_t fill(io::IDataReader& reader, char* buffer, std::size_t size) {
        std::size_t filled = 0;
        while (filled < size) {
            const std::size_t count = reader.read(buffer + filled, size - filled);
            if (count == 0) break;
            filled += std::min(count, size - filled);
        }
        return filled;
    }

    void parse(std::size_t size, bool isLast) {
        const XML_Status status = XML_ParseBuffer(parser_.get(), static_cast<int>(size), isLast);
        if (thrown_) std::rethrow_exception(thrown_);
        if (status != XML_STATUS_ERROR || isStopped()) return;
        const XML_Error error = XML_GetErrorCode(parser_.get());
        if (error == XML_ERROR_NO_MEMORY) throw std::bad_alloc();
        wrong_ = XML_ErrorString(error);
        stopPlace_ = placeOf(parser());
    }

    bool isStopped() const { return thrown_ || !wrong_.empty(); }

    void refuse(const char* text) {
        wrong_ = text;
        stop();
    }

    // Expat moves on to the end of the tag before it stops.
    void stop() {
        stopPlace_ = placeOf(parser());
        XML_StopParser(parser(), XML_FALSE);
    }

    template <class Call>
    static void guarded(void* self, Call call) {
        Run& run = *static_cast<Run*>(self);
        if (run.isStopped()) return;  // expat may finish the tag in which it was stopped
        run.eventCame_ = true;
        try {
            call(run);
        } catch (...) {
            run.thrown_ = std::current_exception();
            run.stop();
        }
    }

    static void onStart(void* self, const XML_Char* name, const XML_Char** attributes) {
        guarded(self, [=](Run& run) {
            if (run.mayHideEntities_ && *attributes && run.tagHasUndefinedEntity())
                run.refuse("undefined entity");
            else
                run.callback_.startElement(name, attributes);
        });
    }

    static void onEnd(void* self, const XML_Char* name) {
        guarded(self, [=](Run& run) { run.callback_.endElement(name); });
    }

    static void onText(void* self, const XML_Char* text, int length) {
        guarded(self, [=](Run& run) { run.callback_.characterData(text, length); });
    }

    static void onComment(void* self, const XML_Char* text) {
        guarded(self, [=](Run& run) { run.callback_.comment(text); });
    }

    static void onInstruction(void* self, const XML_Char* target, const XML_Char* data) {
        guarded(self, [=](Run& run) { run.callback_.processingInstruction(target, data); });
    }

    static void onDoctype(void* self, const XML_Char*, const XML_Char* systemId, const XML_Char* publicId,
                          int hasInternalSubset) {
        guarded(self, [=](Run& run) {
            if (hasInternalSubset) run.refuse("document type with an internal subset");
            run.mayHideEntities_ = systemId || publicId;
        });
    }

    // Where a DOCTYPE names an external subset, expat takes any entity for one that is declared there and
    // passes over it. Text would be lost without a word, so such a document is as wrong as one without the
    // DOCTYPE.
    static void onSkippedEntity(void* self, const XML_Char*, int) {
        guarded(self, [](Run& run) { run.refuse("undefined entity"); });
    }

    // In attributes, expat passes over such entities without telling anybody; only the tag's own bytes show
    // them.
    bool tagHasUndefinedEntity() const {
        int offset = 0;
        int size = 0;
        const char* bytes = XML_GetInputContext(parser_.get(), &offset, &size);
        if (!bytes) return false;
        const auto length = static_cast<std::size_t>(XML_GetCurrentByteCount(parser_.get()));
        return hasUndefinedEntity({bytes + offset, length});
    }

    XMLCallback& callback_;
    IXMLPauses* pauses_;  // the callback, if it wants to hear of pauses
    ParserHandle parser_;
    std::exception_ptr thrown_;
    std::string wrong_;
    tPlace stopPlace_;
    bool eventCame_ = false;
    bool mayHideEntities_ = false;
};

std::string describe(const std::exception_ptr& thrown) {
    try {
        std::rethrow_exception(thrown);
    } catch (const std::exception& exception) {
        return exception.what();
    } catch (...) {
        return "unknown exception";
    }
}

// Calls `finished` when the parse is left, in whatever way.
class Audience {
  public:
    explicit Audience(io::IDataReader* reader) : listener_(dynamic_cast<IXMLParseListener*>(reader)) {}
    Audience(const Audience&) = delete;
    Audience& operator=(const Audience&) = delete;
    ~Audience() {
        if (listener_) listener_->finished();
    }

    void parsing(const XMLParser& parser) {
        if (listener_) listener_->parsing(parser);
    }
    void stopped(const tPlace& place, const std::string& text) {
        if (listener_) listener_->stopped(place, text.c_str());
    }

  private:
    IXMLParseListener* listener_;
};

}  // namespace

// Lets the next parse begin, in whatever way this one is left.
class XMLParser::Ending {
  public:
    explicit Ending(State& state) : state_(state) {}
    Ending(const Ending&) = delete;
    Ending& operator=(const Ending&) = delete;
    ~Ending() {
        state_.running = nullptr;
        state_.isBusy = false;
    }

  private:
    State& state_;
};

XMLParser::XMLParser(XMLCallback& callback, tracer::ISink*) : state_(new State(callback)) {}

XMLParser::~XMLParser() = default;

bool XMLParser::parseDocument(io::IDataReader* reader) {
    if (!reader || state_->isBusy) return false;
    Run run(state_->callback);
    state_->begin(run.parser());
    const Ending ending(*state_);
    Audience audience(reader);
    audience.parsing(*this);
    std::exception_ptr thrown;
    const auto attempt = [&thrown](auto&& step) {
        try {
            step();
        } catch (...) {
            if (!thrown) thrown = std::current_exception();
        }
    };
    attempt([&] { run.read(*reader); });
    attempt([&] { run.pause(); });
    state_->end(run.place(), run.wrong());
    if (thrown || !state_->wrong.empty())
        audience.stopped(state_->lastPlace, thrown ? describe(thrown) : state_->wrong);
    if (thrown) std::rethrow_exception(thrown);
    return state_->wrong.empty();
}

tPlace XMLParser::place() const { return state_->running ? placeOf(state_->running) : state_->lastPlace; }

const char* XMLParser::errorText() const { return state_->wrong.empty() ? nullptr : state_->wrong.c_str(); }

}  // namespace norvane::platform::core::xml
