// A primitive's values in their plain form: every operation reads the record, puts its sections together anew
// and writes it. The library must leave the same bytes and answer the same.
#pragma once

#include <optional>
#include <string>

#include "norvane/platform/data/metadata/tDataType.h"
#include "support/RecordBytes.h"

namespace norvane::platform::test::reference {

// A primitive record taken apart.
struct PlainSections {
    PlainSections(IDataStore& store, std::uint32_t offset) {
        const RecordBytes record = recordAt(store, offset);
        header = record.part(0, 42);
        std::size_t position = 42;
        for (int i = 0; i < 4; ++i) {
            section[i] = record.part(position, record.u32At(26 + 4 * static_cast<std::size_t>(i)));
            position += section[i].size();
        }
    }

    void replace(int which, const std::string& bytes) {
        section[which] = bytes;
        header.replace(26 + 4 * static_cast<std::size_t>(which), 4, RecordBytes().u32(bytes.size()).bytes());
    }
    void store(IDataStore& to, std::uint32_t offset) const {
        putAt(to, offset, RecordBytes(header + section[0] + section[1] + section[2] + section[3]));
    }

    std::string header;
    std::string section[4];
};

class PlainPrimitive {
  public:
    PlainPrimitive(IDataStore& store, std::uint32_t offset)
        : store_(store), offset_(offset), type_(recordAt(store, offset).u32At(22)) {
        valueSize_ = recordAt(store, offset).u32At(38);
        hasUri_ = (recordAt(store, offset).u8At(13) & 8) != 0;
    }

    std::uint32_t valueSize() const { return valueSize_; }

    bool setStructType(const std::u16string& name) {
        if (type_ != 24) return false;
        rebuild(2, RecordBytes().text(name).bytes());
        return true;
    }

    bool setUri(const std::optional<std::u16string>& uri) {
        PlainSections sections(store_, offset_);
        sections.header[13] = static_cast<char>(uri ? sections.header[13] | 8 : sections.header[13] & 247);
        sections.replace(3, uri ? RecordBytes().text(*uri).bytes() : std::string());
        sections.store(store_, offset_);
        valueSize_ = static_cast<std::uint32_t>(sections.section[3].size());
        hasUri_ = uri.has_value();
        return true;
    }

    void setUnits(std::uint32_t id) {
        PlainSections sections(store_, offset_);
        sections.header.replace(18, 4, RecordBytes().u32(id).bytes());
        sections.store(store_, offset_);
    }

    // Without a tag the struct type goes as well, while its size field stays and zeros end the record.
    void setLocale(const std::optional<std::u16string>& tag) {
        if (tag) return rebuild(0, RecordBytes().text(*tag).bytes());
        PlainSections sections(store_, offset_);
        sections.replace(0, "");
        const std::string lost(sections.section[2].size(), '\0');
        putAt(store_, offset_,
              RecordBytes(sections.header + sections.section[1] + sections.section[3] + lost));
    }

    bool resize(std::uint32_t count) {
        if (hasUri_) return false;
        setValue(std::string(std::size_t{elementSize()} * count, '\0'));
        return true;
    }

    // Where the value is empty and `start` is not 0, the source is the base of the whole array; unless it is
    // one element by itself.
    bool writeValues(const char* source, std::uint32_t start, std::uint32_t count, bool isElement = false) {
        if (count == 0 || hasUri_ || elementSize() == 0) return false;
        const std::uint32_t existing = valueSize_ / elementSize();
        const std::size_t position = std::size_t{elementSize()} * start;
        const std::size_t size = std::size_t{elementSize()} * count;
        PlainSections sections(store_, offset_);
        if (existing == 0 && start == 0) {
            setValue(std::string(source, size));
        } else if (existing == 0) {
            setValue(std::string(position, '\0') + std::string(isElement ? source : source + position, size));
        } else if (start + count <= existing) {
            sections.section[3].replace(position, size, source, size);
            sections.store(store_, offset_);
        } else {
            std::string value = sections.section[3].substr(0, valueSize_);
            value.resize(position + size, '\0');
            value.replace(position, size, source, size);
            setValue(value);
        }
        return true;
    }

    std::uint32_t readValues(char* target, std::uint32_t start, std::uint32_t count) const {
        if (valueSize_ == 0 || count == 0 || hasUri_ || elementSize() == 0) return 0;
        if (start + count > valueSize_ / elementSize()) return 0;
        const PlainSections sections(store_, offset_);
        sections.section[3].copy(target, std::size_t{elementSize()} * count,
                                 std::size_t{elementSize()} * start);
        return count;
    }

  private:
    std::uint32_t elementSize() const { return data::metadata::elementSize(type_); }
    void rebuild(int which, const std::string& bytes) {
        PlainSections sections(store_, offset_);
        sections.replace(which, bytes);
        sections.store(store_, offset_);
    }
    void setValue(const std::string& value) {
        rebuild(3, value);
        valueSize_ = static_cast<std::uint32_t>(value.size());
    }

    IDataStore& store_;
    std::uint32_t offset_;
    std::uint32_t type_;
    std::uint32_t valueSize_ = 0;
    bool hasUri_ = false;
};

}  // namespace norvane::platform::test::reference
