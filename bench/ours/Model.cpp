#include "ours/Model.h"

#include <cstring>

#include "norvane/platform/core/io/MemoryReader.h"
#include "norvane/platform/data/format/xml/IErrorReporter.h"

namespace bench {
namespace {

using namespace norvane::platform;
namespace metadata = data::metadata;
namespace structure = data::structure;

class Refuser final : public data::format::xml::IErrorReporter {
  public:
    void report(WideString) override { throw std::runtime_error("the document was not read whole"); }
};

std::uint32_t typeCode(Type type) {
    static constexpr std::uint32_t kCodes[] = {metadata::kBool,    metadata::kInt32,    metadata::kUint8,
                                               metadata::kInt64,   metadata::kScalar,   metadata::kDouble,
                                               metadata::kVector3, metadata::kMatrix4x4};
    return kCodes[static_cast<std::size_t>(type)];
}

template <class Number>
void write(IPrimitive& primitive, const double* values, std::uint64_t count) {
    std::vector<Number> numbers(count);
    for (std::uint64_t i = 0; i < count; ++i) numbers[i] = static_cast<Number>(values[i]);
    require(primitive.writeValues(numbers.data(), 0, static_cast<std::uint32_t>(count)), "not written");
}

template <class Number>
void writeOne(IPrimitive& primitive, double value) {
    const auto number = static_cast<Number>(value);
    require(primitive.writeValues(&number, 0, 1), "not written");
}

WideString toWide(const Name& name) { return {name.wide.data(), name.wide.size()}; }

// Builds what it is told. The root comes with the first group below it, and bears no name.
class ModelSink final : public Sink {
  public:
    explicit ModelSink(IDataStore& store) : store_(store), locator_(ISchemaLocator::make(&store)) {}

    void open(std::string_view element, const Name& name, std::string_view className) override {
        if (element == "root") return;
        if (element == "table")
            table_ = open_.back()->makeTable(toWide(name), nullptr);
        else if (open_.empty())
            open_.push_back(IContainerFrontEnd::toplevel(&store_, toWide(name)));
        else
            openBelow(element == "group" ? structure::kGroup : structure::kNode, name, className);
    }

    void close() override {
        if (table_.get())
            table_.reset();
        else if (!open_.empty())
            open_.pop_back();
    }

    void numbers(Type type, const Name& name, std::string_view unit, const double* values,
                 std::uint64_t count) override {
        const auto primitive = make(name, typeCode(type), unit);
        if (count == 1)
            writeSingle(*primitive, type, values[0]);
        else if (type == Type::int32)
            write<std::int32_t>(*primitive, values, count);
        else
            require(primitive->writeValues(values, 0, static_cast<std::uint32_t>(count)), "not written");
    }

    void text(const Name& name, const Name& text) override {
        const auto primitive = make(name, metadata::kString, {});
        const WideString value = toWide(text);
        require(primitive->writeValues(value.string(), 0, static_cast<std::uint32_t>(value.length() + 1)),
                "not written");
    }

  private:
    void openBelow(std::uint32_t kind, const Name& name, std::string_view className) {
        SharedPtr<metadata::ISchema> schema;
        if (!className.empty()) schema = locator_->locate(wide(className));
        open_.push_back(open_.back()->makeContainer(kind, toWide(name), schema.get()));
    }

    // A member of a class is there already.
    SharedPtr<IPrimitive> make(const Name& name, std::uint32_t type, std::string_view unit) {
        if (table_.get()) return table_->makePrimitive(toWide(name), type, unitId(unit));
        auto made = open_.back()->makePrimitive(toWide(name), type);
        if (made.get()) return made;
        const auto property = open_.back()->findProperty(toWide(name));
        return {property, IPrimitive::to(property.get())};
    }

    static void writeSingle(IPrimitive& primitive, Type type, double value) {
        switch (type) {
            case Type::boolean:
            case Type::uint8:
                return writeOne<std::uint8_t>(primitive, value);
            case Type::int32:
                return writeOne<std::int32_t>(primitive, value);
            case Type::int64:
                return writeOne<std::int64_t>(primitive, value);
            case Type::scalar:
                return writeOne<float>(primitive, value);
            default:
                return writeOne<double>(primitive, value);
        }
    }

    IDataStore& store_;
    SharedPtr<ISchemaLocator> locator_;
    std::vector<SharedPtr<IContainer>> open_;
    SharedPtr<ITable> table_;
};

template <class Number>
void addNumbers(const std::vector<unsigned char>& bytes, std::uint32_t count, Digest& digest) {
    for (std::uint32_t i = 0; i < count; ++i) {
        Number number;
        std::memcpy(&number, bytes.data() + i * sizeof number, sizeof number);
        digest.add(static_cast<double>(number));
    }
}

class Walker {
  public:
    Walk run(const SharedPtr<IContainer>& start) {
        std::vector<SharedPtr<IContainer>> ahead{start};
        while (!ahead.empty()) {
            const auto container = ahead.back();
            ahead.pop_back();
            ++walk_.containers;
            visitProperties(*container->properties());
            const auto below = container->containers();
            for (auto child = below->value(); child; child = below->next() ? below->value() : nullptr)
                ahead.push_back(child);
        }
        return walk_;
    }

  private:
    void visitProperties(metadata::IPropertyFilter& filter) {
        for (auto property = filter.value(); property; property = filter.next() ? filter.value() : nullptr) {
            if (IPrimitive* primitive = IPrimitive::to(property.get()))
                visitValue(*primitive);
            else if (ITable* table = ITable::to(property.get()))
                visitProperties(*table->properties());
        }
    }

    void visitValue(IPrimitive& primitive) {
        const std::uint32_t count = primitive.count();
        const std::uint32_t size = primitive.valueBytes();
        ++walk_.values;
        walk_.elements += count;
        walk_.bytes += size;
        if (bytes_.size() < size) bytes_.resize(size);
        require(primitive.readValues(bytes_.data(), 0, count), "not read");
        add(primitive.dataType(), count);
    }

    void add(std::uint32_t type, std::uint32_t count) {
        switch (type) {
            case metadata::kString:
                return walk_.digest.add(
                    std::u16string_view(reinterpret_cast<const char16_t*>(bytes_.data()), count - 1));
            case metadata::kBool:
            case metadata::kUint8:
                return addNumbers<std::uint8_t>(bytes_, count, walk_.digest);
            case metadata::kInt32:
                return addNumbers<std::int32_t>(bytes_, count, walk_.digest);
            case metadata::kInt64:
                return addNumbers<std::int64_t>(bytes_, count, walk_.digest);
            case metadata::kScalar:
                return addNumbers<float>(bytes_, count, walk_.digest);
            default:
                return addNumbers<double>(bytes_, count, walk_.digest);
        }
    }

    Walk walk_;
    std::vector<unsigned char> bytes_;
};

void addPlaces(IContainer& container, std::vector<Place>& places) {
    const auto filter = container.properties();
    const WideString path = container.path();
    for (auto property = filter->value(); property; property = filter->next() ? filter->value() : nullptr) {
        IPrimitive* primitive = IPrimitive::to(property.get());
        if (primitive && primitive->dataType() == metadata::kDouble && primitive->count() == 1)
            places.push_back({path, property->name()});
    }
}

}  // namespace

WideString wide(std::string_view ascii) {
    const std::u16string text(ascii.begin(), ascii.end());
    return {text.data(), text.size()};
}

void import(IDataStore& store, core::io::IDataReader& reader) {
    Refuser refuser;
    const auto locator = ISchemaLocator::make(&store);
    IXMLFrontEnd::parse(&store, &reader, locator.get(), nullptr, &refuser);
}

void importText(IDataStore& store, const std::string& document) {
    core::io::MemoryReader reader(document);
    import(store, reader);
}

void build(IDataStore& store, const Recording& recording) {
    ModelSink sink(store);
    recording.replay(sink);
}

Workload workloadOf(const Arguments& arguments) {
    return {arguments.text("workload"), arguments.number("size", 1000), arguments.number("depth", 10)};
}

void fill(IDataStore& store, const Arguments& arguments) {
    const std::string document = arguments.text("document", "");
    if (document.empty()) return build(store, Recording(workloadOf(arguments)));
    importText(store, readFile(document));
}

Walk walk(const SharedPtr<IContainer>& container) { return Walker().run(container); }

SharedPtr<IContainer> top(IDataStore& store) {
    auto container = IContainerFrontEnd::find(&store, u"top");
    require(container.get() != nullptr, "the model has no group of that name");
    return container;
}

Walk walk(IDataStore& store) { return walk(top(store)); }

double readDouble(IContainer& container, const WideString& path) {
    const auto property = container.findProperty(path);
    IPrimitive* primitive = IPrimitive::to(property.get());
    double value = 0;
    require(primitive && primitive->readValues(&value, 0, 1), "no such value");
    return value;
}

std::vector<Place> placesOfDoubles(IDataStore& store) {
    std::vector<Place> places;
    std::vector<SharedPtr<IContainer>> ahead{top(store)};
    while (!ahead.empty()) {
        const auto container = ahead.back();
        ahead.pop_back();
        addPlaces(*container, places);
        const auto below = container->containers();
        for (auto child = below->value(); child; child = below->next() ? below->value() : nullptr)
            ahead.push_back(child);
    }
    return places;
}

}  // namespace bench
