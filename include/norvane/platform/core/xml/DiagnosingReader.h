#pragma once

#include <cstddef>
#include <string>

#include "norvane/platform/core/Export.h"
#include "norvane/platform/core/io/IDataReader.h"
#include "norvane/platform/core/xml/IXMLParseListener.h"
#include "norvane/platform/core/xml/XMLParser.h"

namespace norvane::platform::core::xml {

/// A reader around another one that knows where the parse stands. Asked from inside a callback, such as the
/// report of a failure, `place` is the place of what is being reported.
class QVT_CORE_API DiagnosingReader : public io::IDataReader, public IXMLParseListener {
  public:
    /// The other reader is borrowed for as long as this one lives.
    explicit DiagnosingReader(io::IDataReader& reader) : reader_(reader) {}
    DiagnosingReader(const DiagnosingReader&) = delete;
    DiagnosingReader& operator=(const DiagnosingReader&) = delete;
    ~DiagnosingReader() noexcept override {}

    /// Forgets what an earlier parse has left.
    bool open() override;
    /// Closes the other reader.
    void close() override;
    std::size_t read(void* buffer, std::size_t size) override;

    void parsing(const XMLParser& parser) override;
    void stopped(const tPlace& place, const char* text) override;
    void finished() override;

    /// As XMLParser::place, also after the parser is gone.
    tPlace place() const;
    /// True if the parse ended early; then where and why.
    bool stopped() const { return stopped_; }
    /// Where the parse ended early. The first place of a document if it did not.
    const tPlace& stopPlace() const { return stopPlace_; }
    /// Why it did, in lower case. Empty if it did not.
    const std::string& stopText() const { return stopText_; }

  private:
    io::IDataReader& reader_;
    const XMLParser* parser_ = nullptr;
    tPlace lastPlace_;
    bool stopped_ = false;
    tPlace stopPlace_;
    std::string stopText_;
};

}  // namespace norvane::platform::core::xml
