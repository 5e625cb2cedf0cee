#include "records/Dump.h"

#include <cstdio>

namespace norvane::platform::data::Record {

namespace {

void line(std::string& out, std::uint64_t position, std::uint64_t width, const std::string& text) {
    char head[64];
    std::snprintf(head, sizeof head, "%6llu %6llu  ", static_cast<unsigned long long>(position),
                  static_cast<unsigned long long>(width));
    out += head + text + "\n";
}

std::string number(std::uint32_t value) {
    char text[48];
    std::snprintf(text, sizeof text, "%u (0x%X)", value, value);
    return text;
}

std::string hexadecimal(const std::byte* bytes, std::uint64_t size) {
    std::string text;
    char each[4];
    for (std::uint64_t i = 0; i < size; ++i) {
        std::snprintf(each, sizeof each, i == 0 ? "%02X" : " %02X", std::to_integer<unsigned>(bytes[i]));
        text += each;
    }
    return text;
}

// Printable ASCII as it stands, every other code unit as \uXXXX; so a NUL shows.
std::string quoted(const Section& section) {
    std::string text = "\"";
    for (std::uint32_t i = 0; i + 1 < section.size; i += 2) {
        char16_t unit = 0;
        std::memcpy(&unit, section.begin + i, sizeof unit);
        char escaped[8];
        std::snprintf(escaped, sizeof escaped, "\\u%04X", static_cast<unsigned>(unit));
        const bool isPlain = unit >= 0x20 && unit < 0x7F && unit != u'"' && unit != u'\\';
        text += isPlain ? std::string(1, static_cast<char>(unit)) : std::string(escaped);
    }
    text += '"';
    if (section.size % 2 != 0) text += " and " + hexadecimal(section.begin + section.size - 1, 1);
    return text;
}

void dumpFields(std::string& out, const View& record, const Format& format) {
    for (const FieldRow& row : format.fields) {
        const std::string name = std::string(row.name) + " = ";
        if (std::uint64_t{row.position} + row.width > record.size())
            line(out, row.position, row.width, name + "missing");
        else if (row.width == 1)
            line(out, row.position, 1, name + number(record.loadAt<std::uint8_t>(row.position)));
        else
            line(out, row.position, 4, name + number(record.loadAt<std::uint32_t>(row.position)));
    }
}

std::uint64_t dumpSections(std::string& out, const View& record, const Format& format) {
    std::uint64_t end = format.fixedSize;
    for (const SectionRow& row : format.sections) {
        const Section section = record.section(U32{row.sizePosition});
        const auto told = record.loadAt<std::uint32_t>(row.sizePosition);
        std::string text = std::string(row.name) + " = ";
        text += row.isText ? quoted(section) : hexadecimal(section.begin, section.size);
        if (told != section.size) text += " cut short, " + std::to_string(told) + " bytes told";
        line(out, end, section.size, text);
        end += told;
    }
    return end;
}

}  // namespace

std::string dump(const View& record) {
    std::string out;
    const Format* format = record.size() == 0 ? nullptr : formatOf(record.kind());
    std::uint64_t end = 0;
    if (format) {
        dumpFields(out, record, *format);
        end = dumpSections(out, record, *format);
    }
    if (format && format->kind == Kind::offsets)
        for (std::uint32_t i = 0; i < record.valueCount(); ++i, end += 4)
            line(out, end, 4, "value " + std::to_string(i) + " = " + number(record.value(i)));
    if (end < record.size())
        line(out, end, record.size() - end,
             (format ? "surplus = " : "bytes = ") + hexadecimal(record.bytes() + end, record.size() - end));
    return out;
}

}  // namespace norvane::platform::data::Record
