#include "integrity/RecordCheck.h"

#include <array>

#include "integrity/Pairs.h"
#include "records/NameMap.h"

namespace norvane::platform::data::integrity {

using namespace Record;

namespace {

constexpr std::array<std::uint8_t, 25> kElementSizes{0, 1, 2, 2, 2, 2, 2, 1, 1, 1, 2, 2, 4,
                                                     4, 8, 8, 4, 8, 8, 8, 8, 8, 8, 8, 1};
constexpr std::uint32_t kFirstTextType = 2;
constexpr std::uint32_t kLastTextType = 6;
constexpr std::uint32_t kStructType = 24;
constexpr std::uint32_t kFirstUnit = 0x1000;  // below it no unit has a dimension
constexpr std::uint8_t kHighestContainerKind = 2;
constexpr std::uint8_t kKnownFlags = kOptional | kFixed | kInherited | kHasUri;

std::string number(std::uint64_t value) { return std::to_string(value); }

// Whether a text stands in the section as it should: whole code units, a NUL among them.
bool isSoundText(const Section& section) {
    return section.size % 2 == 0 && View::textOf(section).size() * 2 < section.size;
}

// One record under examination.
class Examination {
  public:
    Examination(std::uint32_t offset, const View& record, Findings& findings)
        : offset_(offset),
          record_(record),
          kind_(static_cast<Kind>(record.kind())),
          format_(formatOf(kind_)),
          findings_(findings) {}

    void run() {
        checkSizes();
        for (const SectionRow& row : format_.sections)
            if (row.isText && kind_ != Kind::locale) checkText(row);
        if (isEntity(record_.kind())) checkEntity();
        if (kind_ == Kind::container) checkContainer();
        if (kind_ == Kind::primitive) checkPrimitive();
        if (kind_ == Kind::table) checkTable();
        if (kind_ == Kind::locale) checkPairs();
    }

  private:
    void checkSizes() {
        if (kind_ == Kind::offsets) {
            if ((record_.size() - kOffsetsHeader) % 4 != 0)
                error(code::kListSize, number(record_.size()) + " bytes are no whole number of values.");
            return;
        }
        std::uint64_t needed = format_.fixedSize;
        for (const SectionRow& row : format_.sections) needed += told(row);
        const std::string sizes =
            "Its parts take " + number(needed) + " bytes, and it has " + number(record_.size()) + ".";
        if (needed > record_.size()) error(code::kSize, sizes);
        if (needed < record_.size()) error(code::kSlack, sizes);
    }

    void checkText(const SectionRow& row) {
        const Section section = record_.section(U32{row.sizePosition});
        if (told(row) == 0 || section.size != told(row)) return;
        if (!isSoundText(section))
            error(code::kText, "The " + std::string(row.name) + " has no NUL within its " +
                                   number(section.size) + " bytes.");
    }

    void checkEntity() {
        if (const std::uint32_t count = record_.load(field::openCount))
            error(code::kOpenCount, "It counts as open " + number(count) + " times.");
        const std::uint8_t flags = record_.load(field::flags);
        const bool hasOddUri = (flags & kHasUri) && kind_ != Kind::primitive;
        if ((flags & ~kKnownFlags) || hasOddUri)
            warning(code::kFlags, "Its flags are " + number(flags) + ", of which some mean nothing here.");
        if (record_.load(nameSizeField(kind_)) == 0) error(code::kNoName, "It has no name.");
        if (kind_ != Kind::root) checkName(record_.name());
    }

    void checkName(const std::u16string& name) {
        if (name.empty()) warning(code::kNameEmpty, "Its name is empty.");
        if (name.find(u'.') != name.npos)
            warning(code::kNameDot, "Its name holds a dot, so that no path leads to it.");
        if (isReserved(name)) warning(code::kNameReserved, "Its name is reserved: it is not found by it.");
    }

    void checkContainer() {
        const std::uint8_t kind = record_.load(field::containerKind);
        if (kind > kHighestContainerKind)
            warning(code::kContainerKind, "Its container kind is " + number(kind) + ", which is none.");
    }

    void checkPrimitive() {
        const std::uint32_t type = record_.load(field::dataType);
        if (type == 0 || type >= kElementSizes.size())
            warning(code::kDataType, "Its type code is " + number(type) + ", which is no type.");
        if (record_.load(field::children) != 0)
            warning(code::kUnusedField, "The children field of a primitive is not 0.");
        const std::uint32_t unit = record_.load(field::unit);
        if (unit != 0 && unit < kFirstUnit)
            warning(code::kUnit, "Unit " + number(unit) + " belongs to no dimension.");
        if (type != kStructType && record_.load(field::structTypeSize) != 0)
            warning(code::kStructType, "It names a struct type and is no struct.");
        checkValue(type);
    }

    void checkValue(std::uint32_t type) {
        const Section value = record_.section(field::valueSize);
        if (record_.load(field::flags) & kHasUri) {
            if (!isSoundText(value)) warning(code::kUri, "Its URI has no NUL at its end.");
            return;
        }
        const std::uint32_t element = elementSizeOf(type);
        if (element != 0 && value.size % element != 0)
            warning(code::kValueSize, "Its value has " + number(value.size) + " bytes, and an element " +
                                          number(element) + ".");
        else if (type >= kFirstTextType && type <= kLastTextType && !endsInNul(value))
            warning(code::kValueText, "The last string of its value has no NUL.");
    }

    static bool endsInNul(const Section& value) {
        return value.size < 2 ||
               (value.begin[value.size - 1] == std::byte{0} && value.begin[value.size - 2] == std::byte{0});
    }

    void checkTable() {
        if (record_.load(field::unit) != 0)
            warning(code::kUnusedField, "The unit field of a table is not 0.");
    }

    void checkPairs() {
        const Section payload = record_.section(field::payloadSize);
        if (wholePairsSize(payload) != payload.size)
            error(code::kLocalePairs, "Its texts are no pairs of a locale and what is said in it.");
    }

    std::uint32_t told(const SectionRow& row) const { return record_.load(U32{row.sizePosition}); }
    void error(const char* code, std::string text) { findings_.error(code, offset_, std::move(text)); }
    void warning(const char* code, std::string text) { findings_.warning(code, offset_, std::move(text)); }

    std::uint32_t offset_;
    const View& record_;
    Kind kind_;
    const Format& format_;
    Findings& findings_;
};

void put(std::string& bytes, U32 field, std::uint32_t value) {
    std::memcpy(bytes.data() + field.position, &value, sizeof value);
}

std::string bytesOf(const Section& section) {
    return section.size == 0 ? std::string()
                             : std::string(reinterpret_cast<const char*>(section.begin), section.size);
}

// A text as readers end it, with its NUL.
std::string endedText(const Section& section) {
    const std::u16string text = View::textOf(section);
    return std::string(reinterpret_cast<const char*>(text.c_str()), (text.size() + 1) * 2);
}

std::string normalSection(const View& record, Kind kind, const SectionRow& row) {
    const Section section = record.section(U32{row.sizePosition});
    if (kind == Kind::locale) return bytesOf({section.begin, wholePairsSize(section)});
    const bool isName = isEntity(record.kind()) && row.sizePosition == nameSizeField(kind).position;
    const bool isAbsent = section.size == 0 && !isName;
    if (!row.isText || isAbsent || isSoundText(section)) return bytesOf(section);
    return endedText(section);
}

}  // namespace

std::uint32_t elementSizeOf(std::uint32_t dataType) {
    return dataType < kElementSizes.size() ? kElementSizes[dataType] : 0;
}

bool isWholeRecord(const View& record) {
    return formatOf(record.kind()) && record.isWhole(static_cast<Kind>(record.kind()));
}

void checkRecord(std::uint32_t offset, const View& record, Findings& findings) {
    const Format* format = formatOf(record.kind());
    if (!format)
        findings.error(code::kKind, offset, "Its first byte is " + number(record.kind()) + ", no kind.");
    else if (record.size() < format->fixedSize)
        findings.error(code::kTooShort, offset,
                       "It has " + number(record.size()) + " bytes, and no " + format->name +
                           " has fewer than " + number(format->fixedSize) + ".");
    else
        Examination(offset, record, findings).run();
}

std::string normalForm(const View& record) {
    const auto kind = static_cast<Kind>(record.kind());
    if (kind == Kind::offsets) return bytesOf({record.bytes(), kOffsetsHeader + record.valueCount() * 4});
    std::string bytes = bytesOf({record.bytes(), formatOf(kind).fixedSize});
    if (isEntity(record.kind())) put(bytes, field::openCount, 0);
    for (const SectionRow& row : formatOf(kind).sections) {
        const std::string section = normalSection(record, kind, row);
        put(bytes, U32{row.sizePosition}, static_cast<std::uint32_t>(section.size()));
        bytes += section;
    }
    return bytes;
}

}  // namespace norvane::platform::data::integrity
