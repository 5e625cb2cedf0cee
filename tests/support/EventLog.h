// What a parser reports, as text.
#pragma once

#include <cstddef>
#include <string>

#include "norvane/platform/core/xml/XMLCallback.h"

namespace norvane::platform::test {

// Writes each call to a text: <name attribute=value>, </name>, <!--comment-->, <?target data?>, and a run of
// character data, in however many pieces it came, as [text].
class EventLog : public core::xml::XMLCallback {
  public:
    const std::string& text() const { return text_; }

    void startElement(const char* name, const char* const* attributes) override {
        std::string tag = std::string("<") + name;
        for (; *attributes; attributes += 2) tag += std::string(" ") + attributes[0] + "=" + attributes[1];
        add(tag + ">");
    }
    void endElement(const char* name) override { add(std::string("</") + name + ">"); }
    void comment(const char* text) override { add(std::string("<!--") + text + "-->"); }
    void processingInstruction(const char* target, const char* data) override {
        add(std::string("<?") + target + " " + data + "?>");
    }
    void characterData(const char* text, int length) override {
        if (inText_)
            text_.pop_back();
        else
            text_ += "[";
        text_.append(text, static_cast<std::size_t>(length)) += "]";
        inText_ = true;
        happened();
    }

    void add(const std::string& event) {
        text_ += event;
        inText_ = false;
        happened();
    }

  protected:
    // Called after each call was written down.
    virtual void happened() {}

  private:
    std::string text_;
    bool inText_ = false;
};

}  // namespace norvane::platform::test
