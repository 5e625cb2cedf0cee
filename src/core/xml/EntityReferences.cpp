#include "core/xml/EntityReferences.h"

#include <string>

namespace norvane::platform::core::xml {
namespace {

bool isPredefined(std::string_view name) {
    return name == "lt" || name == "gt" || name == "amp" || name == "apos" || name == "quot";
}

// The ASCII characters of UTF-16 text, all others as "?".
std::string narrowed(std::string_view bytes, std::size_t lowByte) {
    std::string result;
    for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
        const bool isAscii = bytes[at + 1 - lowByte] == '\0';
        result += isAscii ? bytes[at + lowByte] : '?';
    }
    return result;
}

bool refersToUndefined(std::string_view tag) {
    for (std::size_t at = tag.find('&'); at != std::string_view::npos; at = tag.find('&', at + 1)) {
        const std::string_view reference = tag.substr(at + 1);
        if (!reference.starts_with('#') && !isPredefined(reference.substr(0, reference.find(';'))))
            return true;
    }
    return false;
}

}  // namespace

bool hasUndefinedEntity(std::string_view tag) {
    if (tag.size() < 2) return false;
    if (tag[0] == '\0') return refersToUndefined(narrowed(tag, 1));
    if (tag[1] == '\0') return refersToUndefined(narrowed(tag, 0));
    return refersToUndefined(tag);
}

}  // namespace norvane::platform::core::xml
