#include "Differences.h"

#include <algorithm>
#include <map>
#include <utility>

#include "Describe.h"

namespace qvt {

namespace {

std::string orNone(const std::string& text) { return text.empty() ? "none" : text; }

std::string arrow(const std::string& from, const std::string& to) {
    return orNone(from) + " -> " + orNone(to);
}

std::string originOf(const Object& object) {
    if (isInherited(object)) return "inherited";
    return isOverridden(object) ? "overridden" : "own";
}

bool isOptional(const Object& object) { return (flagsOf(object) & metadata::kOptional) != 0; }

bool isRoot(const Side& side) { return side.view.hasRoot() && side.view.isRoot(side.object); }

std::vector<std::byte> bytesOf(IPrimitive& primitive) {
    std::vector<std::byte> bytes(std::size_t{primitive.count()} * primitive.elementSize());
    if (!primitive.readValues(bytes.data(), 0, primitive.count())) bytes.clear();
    return bytes;
}

class Changes {
  public:
    Changes(const Side& left, const Side& right) : left_(left), right_(right) {}

    std::vector<Change> all() {
        addText("kind", isRoot(left_) ? "root" : kindOf(left_.object),
                isRoot(right_) ? "root" : kindOf(right_.object));
        addText("type", typeOf(left_.object), typeOf(right_.object));
        addText("class", classOf(left_.object), classOf(right_.object));
        addNames();
        addText("target", targetOf(left_.object), targetOf(right_.object));
        addValue();
        add("optional", isOptional(left_.object), isOptional(right_.object));
        add("defaults", defaultsJson(left_.object), defaultsJson(right_.object));
        if (isRoot(left_) && isRoot(right_)) addRoot();
        return std::move(changes_);
    }

  private:
    void addText(const char* what, const std::string& from, const std::string& to) {
        if (from == to) return;
        changes_.push_back({what, orNull(from), orNull(to),
                            std::string(what) + " " + arrow(printable(from), printable(to))});
    }

    void add(const char* what, const Json& from, const Json& to) {
        if (from == to) return;
        changes_.push_back(
            {what, from, to, std::string(what) + " " + printable(arrow(dumped(from), dumped(to)))});
    }

    void addRoot() {
        addText("name", left_.view.rootName(), right_.view.rootName());
        add("version", left_.view.version(), right_.view.version());
    }

    // Of display names those alone that differ.
    void addNames() {
        std::map<std::string, std::pair<std::string, std::string>> names;
        for (const auto& [locale, text] : displayNamesOf(left_.object)) names[locale].first = text;
        for (const auto& [locale, text] : displayNamesOf(right_.object)) names[locale].second = text;
        Change change{"names", Json::object(), Json::object(), ""};
        for (const auto& [locale, texts] : names) {
            const auto& [from, to] = texts;
            if (from == to) continue;
            if (!from.empty()) change.from[locale] = from;
            if (!to.empty()) change.to[locale] = to;
            change.text += (change.text.empty() ? "name " : ", ") + printable(locale) + " " +
                           arrow(from.empty() ? "" : inQuotes(from), to.empty() ? "" : inQuotes(to));
        }
        if (!change.text.empty()) changes_.push_back(std::move(change));
    }

    // One line tells what was before and what is now, with unit and origin; each is a change of its own.
    void addValue() {
        IPrimitive* left = left_.object.primitive();
        IPrimitive* right = right_.object.primitive();
        const std::size_t before = changes_.size();
        if (left && right) {
            addText("unit", unitOf(left_.object), unitOf(right_.object));
            addText("locale", utf8(left->locale()), utf8(right->locale()));
            addText("uri", utf8(left->uri()), utf8(right->uri()));
            if (!isSameValue(*left, *right))
                changes_.push_back({"value", valueJson(left_.object, left_.view.locator()),
                                    valueJson(right_.object, right_.view.locator()), ""});
        }
        const bool isTold = changes_.size() != before;
        if (isTold) tellTogether(before, *left, *right);
        addText("origin", originOf(left_.object), originOf(right_.object));
        if (isTold && changes_.back().what == "origin") changes_.back().text.clear();
    }

    // The same number may be of another type.
    bool isSameValue(IPrimitive& left, IPrimitive& right) const {
        if (left.dataType() != right.dataType())
            return valueJson(left_.object, left_.view.locator()) ==
                   valueJson(right_.object, right_.view.locator());
        return left.count() == right.count() && bytesOf(left) == bytesOf(right);
    }

    void tellTogether(std::size_t first, IPrimitive& left, IPrimitive& right) {
        for (std::size_t i = first; i < changes_.size(); ++i)
            if (changes_[i].what != "locale") changes_[i].text.clear();
        const std::string from = inWords(left_, left);
        const std::string to = inWords(right_, right);
        const bool isLocaleAlone = changes_.size() == first + 1 && changes_.back().what == "locale";
        if (isLocaleAlone) return;
        Change& last = changes_.back();
        const std::string told = from == to ? placeOfFirst(left, right) : arrow(from, to);
        last.text += (last.text.empty() ? "value " : ", value ") + told;
    }

    static std::string inWords(const Side& side, IPrimitive& primitive) {
        const Object& object = side.object;
        const std::string unit = unitOf(object);
        std::string words = shortValueOf(primitive, side.view.locator());
        if (!unit.empty()) words += (words.empty() ? "" : " ") + printable(unit);
        const std::string origin = originOf(object);
        return origin == "own" ? words : words + (words.empty() ? "" : " ") + "(" + origin + ")";
    }

    // Where the beginnings that are shown are the same.
    static std::string placeOfFirst(IPrimitive& left, IPrimitive& right) {
        const std::vector<std::byte> from = bytesOf(left);
        const std::vector<std::byte> to = bytesOf(right);
        const auto differ = std::mismatch(from.begin(), from.end(), to.begin(), to.end()).first;
        const auto size = static_cast<std::ptrdiff_t>(std::max(1u, left.elementSize()));
        return "differs from element " + std::to_string((differ - from.begin()) / size) + " on (of " +
               std::to_string(left.count()) + " and " + std::to_string(right.count()) + ")";
    }

    const Side& left_;
    const Side& right_;
    std::vector<Change> changes_;
};

}  // namespace

std::vector<Change> changesBetween(const Side& left, const Side& right) { return Changes(left, right).all(); }

}  // namespace qvt
