// The documents in examples/documents: real data, read with its types.
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>

#include "unit/xml/Documents.h"
#include "xml/Keywords.h"

namespace norvane::platform::data::test {
namespace {

std::string sample(const std::string& name) {
    std::ifstream file(std::filesystem::path(QVT_SAMPLES_DIR) / name, std::ios::binary);
    EXPECT_TRUE(file.is_open()) << name;
    return {std::istreambuf_iterator<char>(file), {}};
}

using Counts = std::map<std::string, std::uint64_t>;

// What the records below the root are, by the names of their elements. A record that came from a class and
// was not changed is counted as brought in, one that was changed as overridden.
struct Census {
    explicit Census(IDataStore& counted) : store(counted) {
        std::vector<std::uint32_t> left{0};
        while (!left.empty()) {
            const std::uint32_t offset = left.back();
            left.pop_back();
            count(offset);
            const Owned<Metadata::Set> set = Metadata::openSet(&store, offset);
            if (!set) continue;
            const std::vector<std::uint32_t> children = set->children();
            left.insert(left.end(), children.begin(), children.end());
        }
    }

    void count(std::uint32_t offset) {
        const Record::Snapshot record(&store, offset);
        const auto kind = static_cast<Record::Kind>(record->kind());
        const std::uint8_t flags = record->load(Record::field::flags);
        if ((flags & Record::kFixed) != 0) {
            ++broughtIn;
            if ((flags & Record::kInherited) != 0) return;
            ++overridden[kind == Record::Kind::primitive ? "values" : "tables"];
        }
        ++elements;
        if (kind == Record::Kind::root)
            ++byName["root"];
        else if (kind == Record::Kind::table)
            countObject("table", record->load(Record::field::tableClassSize));
        else if (kind == Record::Kind::container)
            countContainer(*record);
        else
            countValue(offset);
    }

    void countContainer(const Record::View& record) {
        countObject(keywordOf(Record::Kind::container, record.load(Record::field::containerKind))->name,
                    record.load(Record::field::classTextSize));
    }

    // A class text of one NUL comes from a class that nobody knows.
    void countObject(const char* name, std::uint32_t classTextSize) {
        ++byName[name];
        if (classTextSize > 2) ++classed;
    }

    void countValue(std::uint32_t offset) {
        const Design::Primitive primitive(&store, offset);
        const std::uint32_t type = primitive.dataType();
        ++byName[keywordOf(Record::Kind::primitive, type)->name];
        ++values;
        if (primitive.hasUri()) {
            ++external;
            return;
        }
        if (type == metadata::kBinary) embeddedBytes += primitive.count();
        if (metadata::isTextType(type)) countStrings(primitive);
        if (type == metadata::kStruct) structBytes[narrow(primitive.structType())] += primitive.count();
    }

    void countStrings(const Design::Primitive& primitive) {
        std::u16string units(primitive.count(), u'\0');
        primitive.readValues(units.data(), 0, primitive.count());
        strings += static_cast<std::uint64_t>(std::count(units.begin(), units.end(), u'\0'));
    }

    IDataStore& store;
    Counts byName;
    Counts overridden;
    Counts structBytes;
    std::uint64_t elements = 0;
    std::uint64_t values = 0;
    std::uint64_t classed = 0;
    std::uint64_t broughtIn = 0;
    std::uint64_t external = 0;
    std::uint64_t embeddedBytes = 0;
    std::uint64_t strings = 0;
};

// A document with its types in a store beside it or in itself.
class Sample {
  public:
    explicit Sample(const std::string& name) : Sample(name, "") {}
    Sample(const std::string& name, const std::string& library) {
        locator_ = ISchemaLocator::make(library.empty() ? &store : &types_);
        if (!library.empty()) read(types_, sample(library));
        reports = read(store, sample(name), locator_.get());
    }

    ISchemaLocator* locator() { return locator_.get(); }
    std::string written() { return test::written(store, locator()); }

  private:
    MemoryDataStore types_;

  public:
    MemoryDataStore store;
    std::vector<std::string> reports;

  private:
    SharedPtr<ISchemaLocator> locator_;
};

// What is written, read into a store of its own with the same types.
std::string writtenAgain(const std::string& text, const std::string& library) {
    MemoryDataStore types;
    MemoryDataStore store;
    const SharedPtr<ISchemaLocator> locator = ISchemaLocator::make(library.empty() ? &store : &types);
    if (!library.empty()) read(types, sample(library));
    EXPECT_THAT(read(store, text, locator.get()), IsEmpty());
    return written(store, locator.get());
}

TEST(Samples, IfcDocumentHasTheElementsOfItsSource) {
    Sample document("ifc-small.xml", "ifc-small.lib.xml");
    EXPECT_THAT(document.reports, IsEmpty());
    const Census census(document.store);
    EXPECT_EQ(census.elements, 2907U);
    EXPECT_EQ(census.values, 1716U);
    EXPECT_EQ(census.byName,
              (Counts{{"root", 1},     {"group", 86},   {"node", 627},     {"link", 436}, {"table", 41},
                      {"binary", 1},   {"uuid", 153},   {"string", 927},   {"time", 69},  {"uri", 1},
                      {"version", 6},  {"bool", 76},    {"int8", 20},      {"uint8", 13}, {"int16", 8},
                      {"uint16", 15},  {"int32", 103},  {"int64", 8},      {"scalar", 7}, {"double", 157},
                      {"vector2", 25}, {"vector3", 29}, {"matrix4x4", 33}, {"struct", 65}}));
    EXPECT_EQ(census.classed, 648U);
    EXPECT_EQ(census.broughtIn, 1905U);
    EXPECT_EQ(census.overridden, (Counts{{"values", 1102}}));
    EXPECT_EQ(census.external, 0U);
    EXPECT_EQ(census.embeddedBytes, 6618U);
    EXPECT_EQ(census.strings, 1183U);
    EXPECT_EQ(document.store.version(), 1U);
}

TEST(Samples, IfcStructsHaveTheSizeOfTheirTypes) {
    Sample document("ifc-small.xml", "ifc-small.lib.xml");
    std::uint64_t structs = 0;
    for (const auto& [type, bytes] : Census(document.store).structBytes) {
        const SharedPtr<metadata::ISchema> schema =
            document.locator()->locate(WideString(wide(type).c_str()));
        ASSERT_TRUE(schema) << type;
        EXPECT_EQ(bytes % schema->layout()->byteSize(), 0U);
        structs += bytes / schema->layout()->byteSize();
    }
    EXPECT_EQ(structs, 65U);
}

TEST(Samples, IfcDocumentIsWrittenTheSameWayOnceMore) {
    const std::string text = Sample("ifc-small.xml", "ifc-small.lib.xml").written();
    EXPECT_EQ(writtenAgain(text, "ifc-small.lib.xml"), text);
}

TEST(Samples, IfcLibraryHasTheElementsOfItsSource) {
    Sample document("ifc-small.lib.xml");
    EXPECT_THAT(document.reports, IsEmpty());
    const Census census(document.store);
    EXPECT_EQ(census.elements, 794U);
    EXPECT_EQ(census.byName, (Counts{{"root", 1},
                                     {"group", 13},
                                     {"table", 195},
                                     {"binary", 1},
                                     {"uuid", 49},
                                     {"string", 404},
                                     {"time", 37},
                                     {"uri", 3},
                                     {"bool", 10},
                                     {"int8", 8},
                                     {"uint8", 7},
                                     {"int32", 1},
                                     {"int64", 10},
                                     {"scalar", 9},
                                     {"double", 43},
                                     {"vector3", 3}}));
    EXPECT_EQ(census.values, 585U);
    EXPECT_EQ(census.broughtIn, 0U);
    EXPECT_EQ(census.strings, 493U);
}

TEST(Samples, IfcLibraryIsWrittenTheSameWayOnceMore) {
    const std::string text = Sample("ifc-small.lib.xml").written();
    EXPECT_EQ(writtenAgain(text, ""), text);
}

TEST(Samples, GltfDocumentHasTheElementsOfItsSource) {
    Sample document("gltf-small.xml");
    EXPECT_THAT(document.reports, IsEmpty());
    const Census census(document.store);
    EXPECT_EQ(census.elements, 882U);
    EXPECT_EQ(census.values, 362U);
    EXPECT_EQ(census.byName,
              (Counts{{"root", 1},      {"group", 88},     {"node", 217},   {"link", 151},   {"table", 63},
                      {"binary", 30},   {"string", 38},    {"uri", 12},     {"version", 10}, {"bool", 25},
                      {"uint8", 2},     {"uint16", 23},    {"uint32", 29},  {"uint64", 10},  {"scalar", 51},
                      {"double", 22},   {"vector2", 17},   {"vector3", 50}, {"vector4", 5},  {"matrix2x2", 7},
                      {"matrix3x3", 7}, {"matrix4x4", 11}, {"struct", 13}}));
    EXPECT_EQ(census.classed, 144U);
    EXPECT_EQ(census.broughtIn, 495U);
    EXPECT_EQ(census.overridden, (Counts{{"tables", 21}, {"values", 144}}));
    EXPECT_EQ(census.external, 25U);
    EXPECT_EQ(census.embeddedBytes, 15642U);
    EXPECT_EQ(census.strings, 60U);
    EXPECT_EQ(document.store.version(), 2U);
}

TEST(Samples, GltfStructsHaveTheSizeOfTheirTypes) {
    Sample document("gltf-small.xml");
    std::uint64_t structs = 0;
    Counts structBytes = Census(document.store).structBytes;
    EXPECT_EQ(structBytes.size(), 6U);
    for (const auto& [type, bytes] : structBytes) {
        const SharedPtr<metadata::ISchema> schema =
            document.locator()->locate(WideString(wide(type).c_str()));
        ASSERT_TRUE(schema) << type;
        EXPECT_EQ(bytes % schema->layout()->byteSize(), 0U);
        structs += bytes / schema->layout()->byteSize();
    }
    EXPECT_EQ(structs, 688U + 9U)
        << "three members of types are made for three structs each, without numbers";
}

TEST(Samples, GltfDocumentIsWrittenTheSameWayOnceMore) {
    const std::string text = Sample("gltf-small.xml").written();
    EXPECT_EQ(writtenAgain(text, ""), text);
}

TEST(Samples, LeaveNothingOpen) {
    Sample document("ifc-small.xml", "ifc-small.lib.xml");
    document.written();
    EXPECT_EQ(openCounts(document.store), 0U);
}

}  // namespace
}  // namespace norvane::platform::data::test
