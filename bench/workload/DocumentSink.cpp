#include "workload/DocumentSink.h"

#include <charconv>
#include <iterator>

namespace bench {

DocumentSink::DocumentSink() : text_("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n") {}

void DocumentSink::beginTag(std::string_view element, const Name& name) {
    text_.append("<").append(element);
    attribute("name", name.text);
}

void DocumentSink::attribute(std::string_view name, std::string_view value) {
    text_.append(" ").append(name).append("=\"").append(value).append("\"");
}

void DocumentSink::endTag(std::string_view element) { text_.append("</").append(element).append(">\n"); }

void DocumentSink::number(Type type, double value) {
    constexpr auto kGeneral = std::chars_format::general;
    char text[64];
    char* const end = std::end(text);
    if (type < Type::scalar)
        text_.append(text, std::to_chars(text, end, static_cast<std::int64_t>(value)).ptr);
    else if (type == Type::scalar)
        text_.append(text, std::to_chars(text, end, static_cast<float>(value), kGeneral, 7).ptr);
    else
        text_.append(text, std::to_chars(text, end, value, kGeneral, 7).ptr);
}

void DocumentSink::open(std::string_view element, const Name& name, std::string_view className) {
    beginTag(element, name);
    if (!className.empty()) attribute("class", className);
    text_.append(">\n");
    open_.emplace_back(element);
}

void DocumentSink::close() {
    endTag(open_.back());
    open_.pop_back();
}

void DocumentSink::numbers(Type type, const Name& name, std::string_view unit, const double* values,
                           std::uint64_t count) {
    beginTag(elementOf(type), name);
    if (!unit.empty()) attribute("units", unit);
    text_ += '>';
    for (std::uint64_t i = 0; i < count; ++i) {
        if (i != 0) text_ += ' ';
        number(type, values[i]);
    }
    endTag(elementOf(type));
}

void DocumentSink::text(const Name& name, const Name& text) {
    beginTag("string", name);
    text_.append(">").append(text.text);
    endTag("string");
}

}  // namespace bench
