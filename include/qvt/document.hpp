#pragma once

#include <sys/stat.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <optional>
#include <stdexcept>
#include <stop_token>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "norvane/platform/core/io/FileReader.h"
#include "norvane/platform/core/io/FileWriter.h"
#include "norvane/platform/core/io/MemoryReader.h"
#include "norvane/platform/core/io/MemoryWriter.h"
#include "norvane/platform/core/xml/DiagnosingReader.h"
#include "norvane/platform/data/format/xml/IErrorReporter.h"
#include "norvane/platform/data/format/xml/IXMLFrontEnd.h"
#include "qvt/model.hpp"

namespace qvt {

/// Something that is wrong in a document.
struct Diagnostic {
    std::string file;          ///< As it was given; empty for a document in memory.
    std::uint64_t line = 0;    ///< From 1; 0 if it has no place.
    std::uint64_t column = 0;  ///< In characters, from 1.
    std::string element;       ///< The element that was skipped; empty where all reading ended.
    std::string words;         ///< What is wrong, in lower case.

    /// As compilers write it: "plant.xml:41:7: error: vec3 : unknown element, skipping".
    std::string text() const {
        std::string result = file.empty() ? std::string("<document>") : file;
        if (line) result += ":" + std::to_string(line) + ":" + std::to_string(column);
        return result + ": error: " + (element.empty() ? words : element + " : " + words);
    }
};

/// How a document is read or written.
struct DocumentOptions {
    const Classes* classes = nullptr;  ///< Without them classes are ignored, and structs are refused.
    /// Called now and then with the bytes that are done, and of how many; 0 if that is not known.
    std::function<void(std::uint64_t done, std::uint64_t whole)> progress = {};
    /// Ends the work early where it asks for that.
    std::stop_token stop = {};
};

/// What came of reading a document. True if it was read to its end, whatever was skipped in it.
struct ImportResult {
    std::vector<Diagnostic> reports;  ///< One for each element that was skipped with all its content.
    /// Why reading has ended early: no such file, a document that is not well-formed, a failure of the store.
    /// What was read until then is in the store.
    std::optional<Diagnostic> end;
    bool cancelled = false;  ///< The stop token has asked for it; `end` is set, too.

    /// True if the document was read to its end.
    explicit operator bool() const { return !end; }
};

/// What came of writing a document.
struct ExportResult {
    std::string error;  ///< Why the file was not written; it is as it was before then.
    /// The stop token has asked for it; the file is as it was.
    bool cancelled = false;

    /// True if the file was written.
    explicit operator bool() const { return error.empty() && !cancelled; }
};

namespace detail {

constexpr std::string_view kCancelled = "cancelled";

/// Passes bytes on, and asks in between whether to go on.
class WatchedReader : public core::io::IDataReader {
  public:
    WatchedReader(core::io::IDataReader& reader, std::uint64_t whole, const DocumentOptions& options)
        : reader_(reader), whole_(whole), options_(options) {}
    ~WatchedReader() noexcept override {}

    bool open() override { return opened = reader_.open(); }
    void close() override { reader_.close(); }
    std::size_t read(void* buffer, std::size_t size) override {
        cancelled = cancelled || options_.stop.stop_requested();
        if (cancelled) return 0;
        const std::size_t got = reader_.read(buffer, size);
        done_ += got;
        if (got && options_.progress) options_.progress(done_, whole_);
        return got;
    }

    bool opened = false;
    bool cancelled = false;

  private:
    core::io::IDataReader& reader_;
    std::uint64_t whole_;
    std::uint64_t done_ = 0;
    const DocumentOptions& options_;
};

/// Notes each report with its place.
class Reports : public data::format::xml::IErrorReporter {
  public:
    Reports(const core::xml::DiagnosingReader& reader, const std::string& file,
            std::vector<Diagnostic>& notes)
        : reader_(reader), file_(file), notes_(notes) {}
    ~Reports() noexcept override {}

    void report(core::string::WideString message) override {
        constexpr std::string_view kBetween = " : ";
        const core::xml::tPlace place = reader_.place();
        const std::string text = utf8(message);
        const std::size_t at = std::min(text.find(kBetween), text.size());
        const std::size_t behind = std::min(at + kBetween.size(), text.size());
        notes_.push_back({file_, place.line, place.column, text.substr(0, at), text.substr(behind)});
    }

  private:
    const core::xml::DiagnosingReader& reader_;
    const std::string& file_;
    std::vector<Diagnostic>& notes_;
};

inline Store& storeOf(Store& store) { return store; }
inline Store& storeOf(const Container& container) { return *container.get()->store(); }
inline Store* targetOf(Store& store) { return &store; }
inline IContainer* targetOf(const Container& container) { return container.get(); }

/// `Into` is a store or a container. `failure` says why reading broke off, after it did.
template <class Into, class Failure>
ImportResult import(Into& into, core::io::IDataReader& source, const std::string& file, std::uint64_t whole,
                    const DocumentOptions& options, Failure failure) {
    ImportResult result;
    WatchedReader watched(source, whole, options);
    core::xml::DiagnosingReader reader(watched);
    Reports reports(reader, file, result.reports);
    {
        const auto guard = hold(storeOf(into));
        data::format::xml::IXMLFrontEnd::parse(
            targetOf(into), &reader, options.classes ? options.classes->get() : nullptr, nullptr, &reports);
    }
    result.cancelled = watched.cancelled;
    std::string broken = watched.cancelled ? std::string(kCancelled) : failure();
    if (!watched.opened && broken.empty()) broken = "cannot be opened";
    if (!broken.empty())
        result.end = Diagnostic{file, 0, 0, {}, std::move(broken)};
    else if (reader.stopped())
        result.end =
            Diagnostic{file, reader.stopPlace().line, reader.stopPlace().column, {}, reader.stopText()};
    return result;
}

template <class Into>
ImportResult importFile(Into& into, const std::string& path, const DocumentOptions& options) {
    struct stat about = {};
    const std::uint64_t whole = ::stat(path.c_str(), &about) == 0 && S_ISREG(about.st_mode)
                                    ? static_cast<std::uint64_t>(about.st_size)
                                    : 0;
    core::io::FileReader file(path);
    return import(into, file, path, whole, options, [&] { return file.error(); });
}

template <class Into>
ImportResult importText(Into& into, std::string_view document, const DocumentOptions& options) {
    core::io::MemoryReader text(document);
    return import(into, text, {}, document.size(), options, [] { return std::string(); });
}

inline ImportResult nowhere() {
    ImportResult result;
    result.end = Diagnostic{{}, 0, 0, {}, "there is no container to read into"};
    return result;
}

/// Passes bytes on, and takes no more when it is told to stop.
class WatchedWriter : public core::io::IDataWriter {
  public:
    WatchedWriter(core::io::IDataWriter& writer, const DocumentOptions& options)
        : writer_(writer), options_(options) {}
    ~WatchedWriter() noexcept override {}

    bool open() override { return opened_ = writer_.open(); }
    void close() override { writer_.close(); }
    std::size_t write(const void* buffer, std::size_t size) override {
        cancelled = cancelled || options_.stop.stop_requested();
        const std::size_t taken = opened_ && !cancelled ? writer_.write(buffer, size) : 0;
        done_ += taken;
        refused = refused || taken == 0;
        if (taken && options_.progress) options_.progress(done_, 0);
        return taken;
    }

    bool cancelled = false;
    bool refused = false;

  private:
    core::io::IDataWriter& writer_;
    const DocumentOptions& options_;
    bool opened_ = false;
    std::uint64_t done_ = 0;
};

inline void serialize(Store& store, core::io::IDataWriter& writer, const DocumentOptions& options) {
    const auto guard = hold(store);
    data::format::xml::IXMLFrontEnd::serialize(&store, &writer,
                                               options.classes ? options.classes->get() : nullptr, 0);
}

}  // namespace detail

/// Reads the file as the tree of a store that is empty, and flushes the store. Holds the guard. Nothing is
/// taken back where reading ends early.
inline ImportResult importDocument(Store& store, const std::string& path,
                                   const DocumentOptions& options = {}) {
    return detail::importFile(store, path, options);
}
/// The same with a document in memory.
inline ImportResult importText(Store& store, std::string_view document, const DocumentOptions& options = {}) {
    return detail::importText(store, document, options);
}
/// Reads what the file's outermost element holds into a container, whose name and class stay. Does not flush.
/// What the store throws comes out.
inline ImportResult importDocument(const Container& into, const std::string& path,
                                   const DocumentOptions& options = {}) {
    return into ? detail::importFile(into, path, options) : detail::nowhere();
}
/// The same with a document in memory.
inline ImportResult importText(const Container& into, std::string_view document,
                               const DocumentOptions& options = {}) {
    return into ? detail::importText(into, document, options) : detail::nowhere();
}

/// Writes the whole store as a document. The file takes its name when it is complete; until then, and
/// whenever that fails, one of that name stays as it was. Holds the guard.
inline ExportResult exportDocument(Store& store, const std::string& path,
                                   const DocumentOptions& options = {}) {
    ExportResult result;
    core::io::FileWriter file(path);
    detail::WatchedWriter writer(file, options);
    try {
        detail::serialize(store, writer, options);
    } catch (const std::runtime_error&) {
        if (!writer.refused) throw;  // not the serializer's
    }
    result.cancelled = writer.cancelled;
    if (!result.cancelled && (file.failed() || writer.refused))
        result.error = file.failed() ? file.error() : std::string("cannot be written");
    return result;
}

/// The whole store as a document in memory. Holds the guard.
inline std::string exportText(Store& store, const DocumentOptions& options = {}) {
    core::io::MemoryWriter text;
    detail::serialize(store, text, options);
    return text.text();
}

}  // namespace qvt
