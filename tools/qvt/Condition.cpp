#include "Condition.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <utility>

#include "Nearest.h"
#include "Options.h"
#include "UnitScales.h"
#include "Units.h"
#include "Values.h"
#include "norvane/platform/data/format/xml/UnitTable.h"

namespace qvt {

namespace {

constexpr const char* kBlanks = " \t";

// The text is read anew: what has been rounded to a longer number would be rounded twice.
template <class T>
T rounded(const char* begin, const char* end, long double number) {
    T result = 0;
    if (std::from_chars(begin, end, result).ec == std::errc()) return result;
    const T limit = std::fabs(number) > 1 ? std::numeric_limits<T>::infinity() : T{0};
    return number < 0 ? -limit : limit;
}

std::string trimmed(const std::string& text) {
    const std::size_t begin = text.find_first_not_of(kBlanks);
    if (begin == std::string::npos) return "";
    return text.substr(begin, text.find_last_not_of(kBlanks) + 1 - begin);
}

// A number and its unit, where the blank between them is missing; empty if it is not that.
std::string numberNear(const std::string& text) {
    long double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const std::string name = trimmed(std::string(end, text.data() + text.size()));
    const std::string unit = unitIdOf(name) != 0 ? name : unitNear(name);
    if (error != std::errc() || unit.empty()) return "";
    return "\"" + std::string(text.data(), end) + " " + unit + "\"";
}

bool sharesDimension(std::uint32_t left, std::uint32_t right) {
    return data::format::xml::dimensionKeyOf(left) == data::format::xml::dimensionKeyOf(right);
}

}  // namespace

Condition::Condition(const std::string& text) : glob_("") {
    std::string rest = trimmed(text);
    takeOperator(rest);
    text_ = rest;
    glob_ = Glob(rest);
    takeNumber(rest, text);
    const bool takesText =
        operator_ == Operator::like || operator_ == Operator::equal || operator_ == Operator::unequal;
    if (!number_ && !takesText)
        throw Failure(kUsage, "error: --value " + text + ": \"" + rest + "\" is no number to compare with" +
                                  Nearest::asQuestion(numberNear(rest)));
}

void Condition::takeOperator(std::string& rest) {
    static constexpr std::pair<const char*, Operator> kOperators[] = {
        {"<=", Operator::atMost}, {">=", Operator::atLeast}, {"!=", Operator::unequal},
        {"==", Operator::equal},  {"=", Operator::equal},    {"<", Operator::less},
        {">", Operator::greater},
    };
    for (const auto& [word, meaning] : kOperators) {
        if (rest.rfind(word, 0) != 0) continue;
        operator_ = meaning;
        rest = trimmed(rest.substr(std::string(word).size()));
        return;
    }
}

void Condition::takeNumber(const std::string& text, const std::string& whole) {
    isTruth_ = text == "true" || text == "false";
    if (isTruth_) number_ = text == "true" ? 1 : 0;
    const std::size_t sign = text.size() > 1 && text[0] == '+' ? 1 : 0;
    long double number = 0;
    const auto [end, error] = std::from_chars(text.data() + sign, text.data() + text.size(), number);
    if (error != std::errc()) return;
    double_ = rounded<double>(text.data() + sign, end, number);
    single_ = rounded<float>(text.data() + sign, end, number);
    const std::string rest(end, text.data() + text.size());
    if (rest.empty())
        number_ = number;
    else if (const std::string name = trimmed(rest); name != rest) {
        takeUnit(name, whole);
        if (unit_ != 0) number_ = number;
    }
}

// What stands behind a number may be a text all the same, but hardly one that looks like a unit.
void Condition::takeUnit(const std::string& name, const std::string& whole) {
    unit_ = unitIdOf(name);
    const std::string near = unit_ == 0 ? unitNear(name) : std::string();
    if (!near.empty())
        throw Failure(kUsage, "error: --value " + whole + ": no unit " + name + Nearest::asQuestion(near));
}

bool Condition::isMetBy(IPrimitive& primitive) {
    if (primitive.uri().value()) return false;
    if (!metadata::isTextType(primitive.dataType())) return number_ && isMetByNumbers(primitive);
    if (unit_ != 0) return false;
    const std::vector<std::string> texts = Value(primitive, nullptr).texts();
    return std::any_of(texts.begin(), texts.end(), [this](const auto& text) { return isMetByText(text); });
}

bool Condition::isMetByText(const std::string& text) const {
    switch (operator_) {
        case Operator::like:
            return glob_.matches(text);
        case Operator::equal:
            return text == text_;
        case Operator::unequal:
            return text != text_;
        default:
            return false;
    }
}

bool Condition::isMetByNumbers(IPrimitive& primitive) {
    const std::optional<Wanted> wanted = wantedFor(primitive);
    if (!wanted || (isTruth_ && primitive.dataType() != metadata::kBool)) return false;
    return Value(primitive, nullptr).hasNumber([&](long double number) {
        return isMetByNumber(number, wanted->number, wanted->slack);
    });
}

bool Condition::isMetByNumber(long double number, long double wanted, long double slack) const {
    const bool isEqual = number == wanted || std::fabs(number - wanted) <= slack;
    switch (operator_) {
        case Operator::like:
        case Operator::equal:
            return isEqual;
        case Operator::unequal:
            return !isEqual;
        case Operator::less:
            return !isEqual && number < wanted;
        case Operator::atMost:
            return isEqual || number < wanted;
        case Operator::greater:
            return !isEqual && number > wanted;
        case Operator::atLeast:
            return isEqual || number > wanted;
    }
    return false;
}

std::optional<Condition::Wanted> Condition::wantedFor(IPrimitive& primitive) {
    const std::uint32_t unit = primitive.units();
    const std::uint32_t type = primitive.dataType();
    if (unit_ == 0 || unit_ == unit) return Wanted{asKept(type), 0};
    return converted(unit, type == metadata::kScalar ? 1e-6L : 1e-12L);
}

// What was rounded on its way is equal if it is so to within the rounding, which is that of the largest
// number on the way: near zero of the one scale the other may be far from its own.
std::optional<Condition::Wanted> Condition::converted(std::uint32_t unit, long double precision) {
    if (!sharesDimension(unit_, unit)) return std::nullopt;
    const std::optional<UnitScale> from = scaleOf(unit_);
    const std::optional<UnitScale> to = scaleOf(unit);
    if (!from || !to) {
        incomparable_ = unit;
        return std::nullopt;
    }
    const long double coherent = *number_ * from->factor + from->offset;
    const long double largest = std::fmax(std::fabs(*number_ * from->factor), std::fabs(coherent));
    return Wanted{(coherent - to->offset) / to->factor, precision * largest / to->factor};
}

long double Condition::asKept(std::uint32_t type) const {
    if (type == metadata::kScalar) return single_;
    return type >= metadata::kDouble && type <= metadata::kMatrix4x4 ? double_ : *number_;
}

}  // namespace qvt
