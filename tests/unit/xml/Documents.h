// Documents in and out of stores, for the tests of this folder.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "model/Container.h"
#include "model/Open.h"
#include "model/Primitive.h"
#include "model/Table.h"
#include "norvane/platform/core/io/MemoryReader.h"
#include "norvane/platform/core/io/MemoryWriter.h"
#include "norvane/platform/core/storage/datastore/MemoryDataStore.h"
#include "norvane/platform/core/string/StringAlgorithm.h"
#include "norvane/platform/core/xml/DiagnosingReader.h"
#include "norvane/platform/data/format/xml/IErrorReporter.h"
#include "norvane/platform/data/format/xml/IURIResolver.h"
#include "norvane/platform/data/format/xml/IXMLFrontEnd.h"
#include "norvane/platform/data/metadata/tDataType.h"
#include "norvane/platform/data/structure/ContainerKind.h"
#include "norvane/platform/data/structure/IContainerFrontEnd.h"
#include "records/Dump.h"

namespace norvane::platform::data::test {

using core::io::MemoryReader;
using core::io::MemoryWriter;
using core::storage::datastore::MemoryDataStore;
using core::string::StringAlgorithm;
using core::xml::DiagnosingReader;
using format::xml::IErrorReporter;
using format::xml::IXMLFrontEnd;
using metadata::ISchemaLocator;
using structure::IContainer;
using testing::ElementsAre;
using testing::IsEmpty;

inline std::string narrow(std::u16string_view text) {
    return StringAlgorithm::UTF8Encode(text.data(), text.size());
}

inline std::u16string wide(std::string_view text) {
    std::u16string result;
    StringAlgorithm::UTF8Decode(text, result);
    return result;
}

// Remembers what it is told.
struct Reports : IErrorReporter {
    void report(WideString message) override { texts.push_back(narrow(message.view())); }

    std::vector<std::string> texts;
};

// Reads a document and gives the reports.
inline std::vector<std::string> read(IDataStore& store, std::string_view document,
                                     ISchemaLocator* locator = nullptr) {
    MemoryReader reader(document);
    Reports reports;
    IXMLFrontEnd::parse(&store, &reader, locator, nullptr, &reports);
    return reports.texts;
}

// Puts the place in front of each report, as a host would.
struct PlacedReports : IErrorReporter {
    explicit PlacedReports(const DiagnosingReader& asked) : reader(asked) {}
    void report(WideString message) override {
        texts += lineAndColumn(reader.place()) + narrow(message.view()) + "\n";
    }
    static std::string lineAndColumn(const core::xml::tPlace& place) {
        return std::to_string(place.line) + ":" + std::to_string(place.column) + " ";
    }

    const DiagnosingReader& reader;
    std::string texts;
};

// Reads a document and gives the reports, a line each; then, behind a "!", where and why the parse has
// stopped ahead of the end.
inline std::string placedReports(IDataStore& store, std::string_view document, ISchemaLocator* locator) {
    MemoryReader bytes(document);
    DiagnosingReader reader(bytes);
    PlacedReports reports(reader);
    IXMLFrontEnd::parse(&store, &reader, locator, nullptr, &reports);
    if (!reader.stopped()) return reports.texts;
    return reports.texts + PlacedReports::lineAndColumn(reader.stopPlace()) + "! " + reader.stopText() + "\n";
}

inline std::vector<std::string> readInto(IContainer& container, std::string_view document,
                                         ISchemaLocator* locator = nullptr) {
    MemoryReader reader(document);
    Reports reports;
    IXMLFrontEnd::parse(&container, &reader, locator, nullptr, &reports);
    return reports.texts;
}

inline const std::string kHeader = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

// The document without its header.
inline std::string written(IDataStore& store, ISchemaLocator* locator = nullptr, std::uint32_t offset = 0) {
    MemoryWriter writer;
    IXMLFrontEnd::serialize(&store, &writer, locator, offset);
    EXPECT_TRUE(writer.closed());
    EXPECT_EQ(writer.text().substr(0, kHeader.size()), kHeader);
    return writer.text().substr(kHeader.size());
}

inline std::string inRoot(std::string_view content) {
    return "<root name=\"r\">" + std::string(content) + "</root>";
}

inline std::string inGroup(std::string_view content) {
    return inRoot("<group name=\"g\">" + std::string(content) + "</group>");
}

// A store that a document was read into.
class Document {
  public:
    explicit Document(std::string_view document, ISchemaLocator* locator = nullptr)
        : reports(read(store, document, locator)) {}

    std::uint32_t at(std::string_view path) { return Metadata::resolvePath(&store, 0, wide(path)); }
    bool has(std::string_view path) { return at(path) != IDataStore::BADOFF; }

    // To be looked at while the store does not change.
    Record::Snapshot record(std::string_view path) { return {&store, at(path)}; }
    std::uint8_t flags(std::string_view path) { return record(path)->load(Record::field::flags); }

    // The elements of a value, as numbers of that type.
    template <class T>
    std::vector<T> values(std::string_view path) {
        const Design::Primitive primitive(&store, at(path));
        EXPECT_EQ(primitive.elementSize(), sizeof(T)) << path;
        std::vector<T> result(primitive.valueSize() / sizeof(T));
        primitive.readValues(result.data(), 0, primitive.count());
        return result;
    }
    std::vector<int> bytes(std::string_view path) {
        const Record::Snapshot primitive = record(path);
        const Record::Section value = primitive->section(Record::field::valueSize);
        std::vector<int> result(value.size);
        for (std::uint32_t i = 0; i < value.size; ++i) result[i] = std::to_integer<int>(value.begin[i]);
        return result;
    }
    // Text with its NULs shown as "|".
    std::string text(std::string_view path) {
        const std::vector<char16_t> units = values<char16_t>(path);
        std::u16string text(units.begin(), units.end());
        for (char16_t& unit : text) unit = unit == 0 ? u'|' : unit;
        return narrow(text);
    }

    std::string written(ISchemaLocator* locator = nullptr) { return test::written(store, locator); }

    MemoryDataStore store;
    std::vector<std::string> reports;
};

// Types for class texts and structs: the tables of a document.
class Library {
  public:
    explicit Library(std::string_view content) : document_(inRoot(content)) {
        EXPECT_THAT(document_.reports, IsEmpty());
        locator_ = ISchemaLocator::make(&document_.store);
    }

    ISchemaLocator* locator() { return locator_.get(); }
    Document& document() { return document_; }

  private:
    Document document_;
    SharedPtr<ISchemaLocator> locator_;
};

// The bytes of every record of a store, one record a line: for stores that must be equal.
inline std::string recordsOf(IDataStore& store) {
    std::ostringstream out;
    out << "version " << store.version() << '\n';
    for (std::uint32_t offset = 0; offset < store.size(); ++offset) {
        const std::uint32_t size = store.recordSize(offset);
        out << offset << ':';
        std::string bytes(size, '\0');
        if (size != 0) store.read(offset, bytes.data(), 0xFFFFFFFF);
        for (const char each : bytes) {
            constexpr char kDigits[] = "0123456789abcdef";
            const auto byte = static_cast<unsigned char>(each);
            out << kDigits[byte >> 4] << kDigits[byte & 15];
        }
        out << '\n';
    }
    return out.str();
}

// The sum of all open counts.
inline std::uint32_t openCounts(IDataStore& store) {
    std::uint32_t sum = 0;
    for (std::uint32_t offset = 0; offset < store.size(); ++offset) {
        const Record::Snapshot record(&store, offset);
        if (Record::isEntity(record->kind())) sum += record->load(Record::field::openCount);
    }
    return sum;
}

}  // namespace norvane::platform::data::test
