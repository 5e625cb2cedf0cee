// qvt dump STORE OFFSET | --all
#include "records/Dump.h"

#include <charconv>
#include <cstddef>
#include <nlohmann/json.hpp>
#include <utility>
#include <vector>

#include "Output.h"
#include "Session.h"
#include "Values.h"
#include "Verbs.h"

namespace qvt {

namespace {

std::vector<std::byte> recordAt(IDataStore& store, std::uint32_t offset) {
    std::vector<std::byte> bytes(store.recordSize(offset));
    if (!bytes.empty()) store.read(offset, bytes.data(), core::storage::datastore::kWholeRecord);
    return bytes;
}

std::string hexadecimal(const std::vector<std::byte>& bytes) {
    static constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    text.reserve(bytes.size() * 2);
    for (const std::byte byte : bytes) {
        text += kDigits[std::to_integer<unsigned>(byte) >> 4];
        text += kDigits[std::to_integer<unsigned>(byte) & 0xF];
    }
    return text;
}

const char* kindOfRecord(const std::vector<std::byte>& bytes) {
    const data::Record::View record(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
    const data::Record::Format* format = data::Record::formatOf(record.kind());
    return format ? format->name : nullptr;
}

// Puts one record after the other, in the form that was asked for.
class Records {
  public:
    Records(Output& output, const Options& options)
        : output_(output), isJson_(options.format == Format::json) {
        if (isJson_) output_.put("{\"records\":[");
    }

    // In one line.
    void line(std::uint32_t offset, const std::vector<std::byte>& bytes) {
        if (isJson_) return json(offset, bytes);
        output_.line(std::to_string(offset) + " " + std::to_string(bytes.size()) + " " + hexadecimal(bytes));
    }

    // Field by field; `offset` as it was given.
    void fields(const std::string& offset, const std::vector<std::byte>& bytes) {
        const char* kind = kindOfRecord(bytes);
        output_.line("record " + offset + ": " + (kind ? kind : "unknown kind") + ", " +
                     std::to_string(bytes.size()) + " bytes");
        output_.put(data::Record::dump({bytes.data(), static_cast<std::uint32_t>(bytes.size())}));
    }

    bool isJson() const { return isJson_; }

    void finish() {
        if (isJson_) output_.line("\n]}");
        output_.finish();
    }

  private:
    void json(std::uint32_t offset, const std::vector<std::byte>& bytes) {
        const char* kind = kindOfRecord(bytes);
        const Json row{{"offset", offset},
                       {"kind", kind ? Json(kind) : Json()},
                       {"bytes", bytes.size()},
                       {"data", hexadecimal(bytes)}};
        output_.put((std::exchange(isFirst_, false) ? "\n" : ",\n") + dumped(row));
    }

    Output& output_;
    bool isJson_;
    bool isFirst_ = true;
};

void putAll(Records& records, IDataStore& store) {
    const std::uint64_t end = store.size();
    for (std::uint64_t i = 0; i < end; ++i) {
        const auto offset = static_cast<std::uint32_t>(i);
        const std::vector<std::byte> bytes = recordAt(store, offset);
        if (!bytes.empty()) records.line(offset, bytes);
    }
}

std::uint32_t offsetIn(const std::string& text) {
    const bool isHexadecimal = text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
    const char* begin = text.data() + (isHexadecimal ? 2 : 0);
    const char* end = text.data() + text.size();
    std::uint32_t offset = 0;
    const auto result = std::from_chars(begin, end, offset, isHexadecimal ? 16 : 10);
    if (result.ec == std::errc::result_out_of_range && result.ptr == end)
        throw Failure(kUsage, "error: " + text + " is no offset: the highest are below 4294967295");
    if (result.ec != std::errc() || result.ptr != end || begin == end)
        throw Failure(kUsage, "error: " + shown(text) + " is no offset (a number, as 12 or 0xc)");
    return offset;
}

int dump(const Options& options) {
    if (options.all != options.offset.empty())
        throw Failure(kUsage, "error: dump takes either an OFFSET or --all");
    const std::uint32_t offset = options.all ? 0 : offsetIn(options.offset);
    Session session(options);
    session.closeLocator();
    const std::vector<std::byte> bytes = recordAt(session.store(), offset);
    if (!options.all && bytes.empty())
        throw Failure(kMissing, session.name() + ": error: no record at offset " + options.offset);
    Output output(options);
    Records records(output, options);
    if (options.all)
        putAll(records, session.store());
    else if (records.isJson())
        records.line(offset, bytes);
    else
        records.fields(options.offset, bytes);
    records.finish();
    return session.status();
}

}  // namespace

const Verb kDump{
    "dump",
    "print records byte by byte",
    "With an OFFSET: each field of that record, one a line, as byte position, width, name, value; then its\n"
    "texts and values. With --all: every record in order of offset, one a line: offset, size in bytes,\n"
    "bytes in hexadecimal, separated by one blank. A document's records are those that it has when read\n"
    "into an empty store. The root is at offset 0.",
    "  qvt dump plant.qvt 0\n"
    "  qvt dump plant.qvt --all",
    Verb::kStore | Verb::kSchemas | Verb::kAnswers | Verb::kJson | Verb::kRecordOptions,
    dump};

}  // namespace qvt
