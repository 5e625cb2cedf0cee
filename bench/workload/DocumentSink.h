// A workload as a document.
#pragma once

#include <string>
#include <vector>

#include "workload/Workload.h"

namespace bench {

// Collects the text. Lines are not indented: in a deep document blanks would be most of what is read.
class DocumentSink final : public Sink {
  public:
    DocumentSink();

    void open(std::string_view element, const Name& name, std::string_view className) override;
    void close() override;
    void numbers(Type type, const Name& name, std::string_view unit, const double* values,
                 std::uint64_t count) override;
    void text(const Name& name, const Name& text) override;

    const std::string& document() const { return text_; }

  private:
    void beginTag(std::string_view element, const Name& name);
    void attribute(std::string_view name, std::string_view value);
    void number(Type type, double value);
    void endTag(std::string_view element);

    std::string text_;
    std::vector<std::string> open_;
};

}  // namespace bench
