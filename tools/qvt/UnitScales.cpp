#include "UnitScales.h"

#include <array>
#include <cctype>
#include <cmath>
#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>

#include "norvane/platform/data/format/xml/UnitTable.h"

namespace qvt {

namespace {

using norvane::platform::data::format::xml::dimensionKeyOf;
using norvane::platform::data::format::xml::kUnitTable;

// Powers of kilogram, meter, second, ampere, kelvin, mole, candela, bit.
using Powers = std::array<int, 8>;

struct Part {
    const char* name;
    long double factor;
    Powers powers;
};

constexpr Powers kNumber{0, 0, 0, 0, 0, 0, 0, 0};
constexpr Powers kMass{1, 0, 0, 0, 0, 0, 0, 0};
constexpr Powers kLength{0, 1, 0, 0, 0, 0, 0, 0};
constexpr Powers kArea{0, 2, 0, 0, 0, 0, 0, 0};
constexpr Powers kVolume{0, 3, 0, 0, 0, 0, 0, 0};
constexpr Powers kTime{0, 0, 1, 0, 0, 0, 0, 0};
constexpr Powers kFrequency{0, 0, -1, 0, 0, 0, 0, 0};
constexpr Powers kSpeed{0, 1, -1, 0, 0, 0, 0, 0};
constexpr Powers kForce{1, 1, -2, 0, 0, 0, 0, 0};
constexpr Powers kPressure{1, -1, -2, 0, 0, 0, 0, 0};
constexpr Powers kEnergy{1, 2, -2, 0, 0, 0, 0, 0};
constexpr Powers kPower{1, 2, -3, 0, 0, 0, 0, 0};
constexpr Powers kCurrent{0, 0, 0, 1, 0, 0, 0, 0};
constexpr Powers kCharge{0, 0, 1, 1, 0, 0, 0, 0};
constexpr Powers kVoltage{1, 2, -3, -1, 0, 0, 0, 0};
constexpr Powers kResistance{1, 2, -3, -2, 0, 0, 0, 0};
constexpr Powers kConductance{-1, -2, 3, 2, 0, 0, 0, 0};
constexpr Powers kCapacitance{-1, -2, 4, 2, 0, 0, 0, 0};
constexpr Powers kInductance{1, 2, -2, -2, 0, 0, 0, 0};
constexpr Powers kFlux{1, 2, -2, -1, 0, 0, 0, 0};
constexpr Powers kFluxDensity{1, 0, -2, -1, 0, 0, 0, 0};
constexpr Powers kMagneticField{0, -1, 0, 1, 0, 0, 0, 0};
constexpr Powers kTemperature{0, 0, 0, 0, 1, 0, 0, 0};
constexpr Powers kAmount{0, 0, 0, 0, 0, 1, 0, 0};
constexpr Powers kLight{0, 0, 0, 0, 0, 0, 1, 0};
constexpr Powers kLuminance{0, -2, 0, 0, 0, 0, 1, 0};
constexpr Powers kViscosity{1, -1, -1, 0, 0, 0, 0, 0};
constexpr Powers kDiffusion{0, 2, -1, 0, 0, 0, 0, 0};
constexpr Powers kStorage{0, 0, 0, 0, 0, 0, 0, 1};

constexpr long double kPi = 3.14159265358979323846264338327950288L;
constexpr long double kGravity = 9.80665L;
constexpr long double kSurveyFoot = 1200.0L / 3937.0L;

// What names of units are made of, in lower case. A name that stands for several sizes is left out.
constexpr Part kParts[] = {
    {"unitless", 1, kNumber},
    {"meter", 1, kLength},
    {"inch", 0.0254L, kLength},
    {"foot", 0.3048L, kLength},
    {"yard", 0.9144L, kLength},
    {"mile", 1609.344L, kLength},
    {"milestatute", 1609.344L, kLength},
    {"mile_statute", 1609.344L, kLength},
    {"mile_nautical_int", 1852, kLength},
    {"milenauticalint", 1852, kLength},
    {"mile_nautical_uk", 1853.184L, kLength},
    {"milenautical_uk", 1853.184L, kLength},
    {"milenauticaluk", 1853.184L, kLength},
    {"mile_us_survey", 5280 * kSurveyFoot, kLength},
    {"surveymile", 5280 * kSurveyFoot, kLength},
    {"foot_us_survey", kSurveyFoot, kLength},
    {"surveyfoot", kSurveyFoot, kLength},
    {"surveyinch", kSurveyFoot / 12, kLength},
    {"surveyyard", 3 * kSurveyFoot, kLength},
    {"surveyrod", 16.5L * kSurveyFoot, kLength},
    {"furlong", 201.168L, kLength},
    {"fathom", 1.8288L, kLength},
    {"hand", 0.1016L, kLength},
    {"mil", 0.0000254L, kLength},
    {"micron", 1e-6L, kLength},
    {"angstrom", 1e-10L, kLength},
    {"astronomicalunit", 149597870700.0L, kLength},
    {"lightyear", 9460730472580800.0L, kLength},
    {"acre", 4046.8564224L, kArea},
    {"section", 2589988.110336L, kArea},
    {"township", 36 * 2589988.110336L, kArea},
    {"hectare", 10000, kArea},
    {"are", 100, kArea},
    {"centare", 1, kArea},
    {"barn", 1e-28L, kArea},
    {"circularmil", kPi / 4 * 0.0000254L * 0.0000254L, kArea},
    {"liter", 0.001L, kVolume},
    {"stere", 1, kVolume},
    {"board_foot", 0.3048L * 0.3048L * 0.0254L, kVolume},
    {"cordfirewood", 128 * 0.3048L * 0.3048L * 0.3048L, kVolume},
    {"registerton", 100 * 0.3048L * 0.3048L * 0.3048L, kVolume},
    {"gallon", 3.785411784e-3L, kVolume},
    {"gallon_us_fluid", 3.785411784e-3L, kVolume},
    {"usgallon", 3.785411784e-3L, kVolume},
    {"gallon_imp", 4.54609e-3L, kVolume},
    {"impgallon", 4.54609e-3L, kVolume},
    {"quart", 3.785411784e-3L / 4, kVolume},
    {"quart_us_fluid", 3.785411784e-3L / 4, kVolume},
    {"quart_imp", 4.54609e-3L / 4, kVolume},
    {"pint", 3.785411784e-3L / 8, kVolume},
    {"pint_us_fluid", 3.785411784e-3L / 8, kVolume},
    {"pint_imp", 4.54609e-3L / 8, kVolume},
    {"cup_us", 3.785411784e-3L / 16, kVolume},
    {"fluidounce_us", 3.785411784e-3L / 128, kVolume},
    {"fluidounce_imp", 4.54609e-3L / 160, kVolume},
    {"barrel_petroleum", 42 * 3.785411784e-3L, kVolume},
    {"gram", 0.001L, kMass},
    {"pound", 0.45359237L, kMass},
    {"poundmass", 0.45359237L, kMass},
    {"poundsmass", 0.45359237L, kMass},
    {"pound_avoirdupois", 0.45359237L, kMass},
    {"pound_troy", 0.3732417216L, kMass},
    {"ounce", 0.028349523125L, kMass},
    {"ounce_avoirdupois", 0.028349523125L, kMass},
    {"ounce_troy", 0.0311034768L, kMass},
    {"stone", 6.35029318L, kMass},
    {"shortton", 907.18474L, kMass},
    {"longton", 1016.0469088L, kMass},
    {"hundredweight_long", 50.80234544L, kMass},
    {"hundredweight_short", 45.359237L, kMass},
    {"carat_metric", 0.0002L, kMass},
    {"pennyweight", 0.00155517384L, kMass},
    {"grain", 0.00006479891L, kMass},
    {"dalton", 1.66053906660e-27L, kMass},
    {"second", 1, kTime},
    {"sec", 1, kTime},
    {"minute", 60, kTime},
    {"min", 60, kTime},
    {"hour", 3600, kTime},
    {"day", 86400, kTime},
    {"week", 604800, kTime},
    {"fortnight", 1209600, kTime},
    {"year_julian", 31557600, kTime},
    {"year_gregorian", 31556952, kTime},
    {"century_julian", 3155760000.0L, kTime},
    {"millenium_julian", 31557600000.0L, kTime},
    {"millenium_gregorian", 31556952000.0L, kTime},
    {"radian", 1, kNumber},
    {"degree", kPi / 180, kNumber},
    {"grad", kPi / 200, kNumber},
    {"anglesecond", kPi / 648000, kNumber},
    {"arcsecond", kPi / 648000, kNumber},
    {"angleminute", kPi / 10800, kNumber},
    {"arcminute", kPi / 10800, kNumber},
    {"steradian", 1, kNumber},
    {"cycle", 1, kNumber},
    {"revolution", 1, kNumber},
    {"flash", 1, kNumber},
    {"hertz", 1, kFrequency},
    {"knot", 1852.0L / 3600, kSpeed},
    {"knot_uk", 1853.184L / 3600, kSpeed},
    {"newton", 1, kForce},
    {"dyne", 0.00001L, kForce},
    {"kilogramforce", kGravity, kForce},
    {"poundforce", 0.45359237L * kGravity, kForce},
    {"lbforce", 0.45359237L * kGravity, kForce},
    {"ounceforce", 0.028349523125L * kGravity, kForce},
    {"kip", 453.59237L * kGravity, kForce},
    {"pascal", 1, kPressure},
    {"bar", 100000, kPressure},
    {"bar_absolute", 100000, kPressure},
    {"atmosphere_standard", 101325, kPressure},
    {"atmosphere_metric", 98066.5L, kPressure},
    {"torr", 101325.0L / 760, kPressure},
    {"joule", 1, kEnergy},
    {"erg", 1e-7L, kEnergy},
    {"electronvolt", 1.602176634e-19L, kEnergy},
    {"calorie_thermochemical", 4.184L, kEnergy},
    {"intlcalorie", 4.1868L, kEnergy},
    {"intlkilocalorie", 4186.8L, kEnergy},
    {"britishthermalunit_int", 1055.05585262L, kEnergy},
    {"intlbritishthermalunit", 1055.05585262L, kEnergy},
    {"intlthousandbritishthermalunit", 1055055.85262L, kEnergy},
    {"intlmillionbritishthermalunit", 1055055852.62L, kEnergy},
    {"watt", 1, kPower},
    {"horsepower_metric", 75 * kGravity, kPower},
    {"horsepower_imperial_mechanical", 550 * 0.3048L * 0.45359237L * kGravity, kPower},
    {"horsepower_imperial_electrical", 746, kPower},
    {"ampere", 1, kCurrent},
    {"coulomb", 1, kCharge},
    {"volt", 1, kVoltage},
    {"volt_electricpotential", 1, kVoltage},
    {"abvolt", 1e-8L, kVoltage},
    {"ohm", 1, kResistance},
    {"siemens", 1, kConductance},
    {"mho", 1, kConductance},
    {"farad", 1, kCapacitance},
    {"henry", 1, kInductance},
    {"weber", 1, kFlux},
    {"maxwell", 1e-8L, kFlux},
    {"tesla", 1, kFluxDensity},
    {"gauss", 0.0001L, kFluxDensity},
    {"gamma", 1e-9L, kFluxDensity},
    {"oersted", 250 / kPi, kMagneticField},
    {"kelvin", 1, kTemperature},
    {"celsius", 1, kTemperature},
    {"degreecelsius", 1, kTemperature},
    {"fahrenheit", 5.0L / 9, kTemperature},
    {"degreefahrenheit", 5.0L / 9, kTemperature},
    {"mole", 1, kAmount},
    {"candela", 1, kLight},
    {"lumen", 1, kLight},
    {"nit", 1, kLuminance},
    {"poise", 0.1L, kViscosity},
    {"stokes", 0.0001L, kDiffusion},
    {"bit", 1, kStorage},
    {"byte", 8, kStorage},
};

struct Prefix {
    const char* name;
    long double factor;
};

constexpr Prefix kPrefixes[] = {
    {"yotta", 1e24L},  {"zetta", 1e21L},  {"exa", 1e18L},    {"peta", 1e15L},   {"tera", 1e12L},
    {"giga", 1e9L},    {"mega", 1e6L},    {"meg", 1e6L},     {"kilo", 1e3L},    {"hecto", 1e2L},
    {"deca", 1e1L},    {"deka", 1e1L},    {"deci", 1e-1L},   {"centi", 1e-2L},  {"milli", 1e-3L},
    {"micro", 1e-6L},  {"nano", 1e-9L},   {"pico", 1e-12L},  {"femto", 1e-15L}, {"atto", 1e-18L},
    {"zepto", 1e-21L}, {"yocto", 1e-24L}, {"kibi", 1024.0L}, {"mebi", 0x1p20L}, {"gibi", 0x1p30L},
    {"tebi", 0x1p40L}, {"pebi", 0x1p50L}, {"exbi", 0x1p60L}, {"zebi", 0x1p70L}, {"yobi", 0x1p80L},
    {"million", 1e6L},
};

// Absolute temperatures, whose zeros differ too.
struct Temperature {
    const char* name;
    UnitScale scale;
};

constexpr Temperature kTemperatures[] = {
    {"DegreeKelvin", {1, 0}},
    {"DegreeCelsius", {1, 273.15L}},
    {"DegreeFahrenheit", {5.0L / 9, 459.67L * 5 / 9}},
    {"Rankine", {5.0L / 9, 0}},
};

struct Size {
    long double factor = 1;
    Powers powers = kNumber;
};

std::string inLowerCase(std::string_view text) {
    std::string result(text);
    for (char& c : result) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return result;
}

bool begins(std::string_view text, std::string_view with) { return text.substr(0, with.size()) == with; }

// Reads a name as people do: [Square|Cubic] [prefix] part, one beside the other, and Per in front of all that
// the rest is divided by.
class UnitName {
  public:
    explicit UnitName(std::string name) : name_(std::move(name)), rest_(name_) {}

    std::optional<Size> size() {
        while (!rest_.empty()) {
            if (takeWord("squared"))
                apply(1);
            else if (takePart())
                apply(1);
            else if (takeWord("per") || takeWord("inv"))
                sign_ = -1;
            else if (!takePower())
                return std::nullopt;
        }
        return size_;
    }

  private:
    bool takeWord(std::string_view word) {
        if (!begins(rest_, word)) return false;
        rest_.remove_prefix(word.size());
        return true;
    }

    bool takePower() {
        const int power = takeWord("square") ? 2 : takeWord("cubic") ? 3 : 0;
        if (power == 0 || !takePart()) return false;
        apply(power);
        return true;
    }

    // The longest that there is: Mile is no Mil, and Millimeter no Mil either.
    bool takePart() {
        std::size_t longest = 0;
        take(longest, "", 1);
        for (const Prefix& prefix : kPrefixes)
            if (begins(rest_, prefix.name)) take(longest, prefix.name, prefix.factor);
        rest_.remove_prefix(longest);
        if (longest != 0 && rest_ == "s") rest_ = {};
        return longest != 0;
    }

    void take(std::size_t& longest, std::string_view prefix, long double factor) {
        for (const Part& part : kParts) {
            const std::size_t length = prefix.size() + std::string_view(part.name).size();
            if (length <= longest || !begins(rest_.substr(prefix.size()), part.name)) continue;
            longest = length;
            last_ = {factor * part.factor, part.powers};
        }
    }

    void apply(int power) {
        size_.factor *= std::pow(last_.factor, static_cast<long double>(sign_ * power));
        for (std::size_t i = 0; i < size_.powers.size(); ++i)
            size_.powers[i] += sign_ * power * last_.powers[i];
    }

    std::string name_;
    std::string_view rest_;
    Size size_;
    Size last_;
    int sign_ = 1;
};

// Some names hold a comma and blanks, some the dimension that tells them from others of the same size.
std::optional<Size> sizeOf(std::string_view name) {
    constexpr std::string_view kTorque = "_Torque";
    name = name.substr(0, name.find(','));
    if (name.size() > kTorque.size() && name.substr(name.size() - kTorque.size()) == kTorque)
        name.remove_suffix(kTorque.size());
    return UnitName(inLowerCase(name)).size();
}

// In pressures and torques a pound is what a pound weighs.
void weighWhereMeant(Size& size, const Powers& meant) {
    Powers weighed = size.powers;
    weighed[1] += 1;
    weighed[2] -= 2;
    if (size.powers == meant || weighed != meant) return;
    size.powers = meant;
    size.factor *= kGravity;
}

using Scales = std::unordered_map<std::uint32_t, UnitScale>;

// The first unit of a dimension that can be read says what its units measure; one that measures something
// else was misread.
Scales readAll() {
    Scales scales;
    for (const Temperature& each : kTemperatures)
        for (const auto* row = kUnitTable; row->name; ++row)
            if (std::string_view(row->name) == each.name) scales.emplace(row->id, each.scale);
    std::unordered_map<std::uint32_t, Powers> dimensions;
    for (const auto* row = kUnitTable; row->name; ++row) {
        std::optional<Size> size = sizeOf(row->name);
        if (!size) continue;
        const Powers& meant = dimensions.emplace(dimensionKeyOf(row->id), size->powers).first->second;
        weighWhereMeant(*size, meant);
        if (size->powers == meant) scales.emplace(row->id, UnitScale{size->factor, 0});
    }
    return scales;
}

}  // namespace

std::optional<UnitScale> scaleOf(std::uint32_t unit) {
    static const Scales scales = readAll();
    const auto found = scales.find(unit);
    return found == scales.end() ? std::nullopt : std::optional<UnitScale>(found->second);
}

}  // namespace qvt
