// All operations on a model one of whose records is damaged: a field with an extreme value, a record cut
// short, a record that is gone. Nothing may crash, hang, or read what is not there (run with
// AddressSanitizer).
#include <algorithm>

#include "contract/Operations.h"

namespace norvane::platform::test {
namespace {

struct FieldPlace {
    std::size_t position;
    std::size_t width;
};

std::vector<FieldPlace> fieldsOf(int kind) {
    std::vector<FieldPlace> fields{{0, 1}};
    if (kind == 3)
        for (std::size_t position : {1u, 5u}) fields.push_back({position, 4});
    if (kind == 5) fields.push_back({1, 4});
    if (kind != 0 && kind != 1 && kind != 2 && kind != 4) return fields;
    for (std::size_t position : {1u, 5u, 9u, 14u}) fields.push_back({position, 4});
    fields.push_back({13, 1});
    if (kind == 4) fields.push_back({18, 1});
    const std::vector<std::size_t> sizes[] = {{18}, {18, 22, 26, 30, 34, 38}, {22, 26, 30}, {}, {19, 23, 27}};
    for (std::size_t position : sizes[kind]) fields.push_back({position, 4});
    return fields;
}

// What a field is set to: limits, and offsets of other records, the root and the record itself among them.
std::vector<std::uint64_t> extremesFor(const ModelStore& store, Offset offset, std::size_t width) {
    if (width == 1) return {0, 1, 2, 3, 4, 5, 6, 0xFF};
    return {0, 1, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFE, 0xFFFFFFFF, offset, store.recordCount() / 2};
}

// Read-only looks and changes at everything that can be reached, down to a depth: a damaged tree may have no
// end.
class Explorer {
  public:
    explicit Explorer(Model& model) : model_(model) {}

    void exploreAll() {
        for (const char16_t* name : {u"top", u"lib"}) {
            const auto container = IContainerFrontEnd::find(&model_.store, name);
            if (container) explore(*container, 0);
        }
        IContainerFrontEnd::toplevel(&model_.store, WideString());
        IContainerFrontEnd::toplevel(&model_.store, u"new");
    }

  private:
    static constexpr int kDepth = 3;

    void explore(IContainer& container, int depth) {
        if (depth > kDepth || ++visited_ > 60) return;
        look(container);
        const auto properties = container.properties();
        for (int i = 0; i < 12; ++i, properties->next()) explore(properties->value().get(), depth);
        const auto containers = container.containers();
        for (int i = 0; i < 12; ++i, containers->next()) {
            const auto child = containers->value();
            if (child) explore(*child, depth + 1);
        }
        while (containers->previous() || properties->previous()) {
        }
        change(container);
    }

    void look(IContainer& container) {
        container.path();
        container.parent();
        container.className();
        container.contains(u"g.inner.x");
        container.find(WideString());
        container.find(u"g");
        container.findProperty(u"t.m");
        container.conforms(model_.schema.get(), false);
        container.localised(container.localeAt(container.localisedCount()));
        const auto faceted = container.find(WideString());
        if (ILink* link = ILink::to(faceted.get())) {
            link->resolve(nullptr);
            link->setTarget(u"top.g");
        }
    }

    void change(IContainer& container) {
        container.setLocalised(u"de", u"neu");
        container.makePrimitive(u"made", kInt32);
        container.makeContainer(kNode, u"made2", model_.schema.get());
        container.rename(u"renamed");
        container.copy(u"g", u"copy", false);
        container.copyTo(&model_.store, u"top.copied");
        model_.from->merge(container.find(WideString()));
        model_.from->add(container.find(WideString()));
        for (const char16_t* name : {u"g", u"t", u"p", u"x", u"made", u"T"}) container.remove(name);
    }

    void explore(IProperty* property, int depth) {
        if (!property || depth > kDepth || ++visited_ > 60) return;
        property->path();
        property->parent();
        property->localised(property->localeAt(0));
        property->setLocalised(u"de", u"neu");
        if (IPrimitive* primitive = IPrimitive::to(property)) explore(*primitive);
        if (ITable* table = ITable::to(property)) explore(*table, depth);
        property->rename(u"renamed");
        property->setFlags(1);
        property->clearFlags(4);
    }

    void explore(IPrimitive& primitive) {
        std::vector<char> bytes(64);
        const std::uint32_t element = std::max(primitive.elementSize(), 1u);
        primitive.readValues(bytes.data(), 0, std::min<std::uint32_t>(primitive.count(), 64 / element));
        primitive.readValues(bytes.data(), primitive.count() - 1, 1);
        primitive.writeValues(bytes.data(), 0, 64 / element);
        primitive.writeValues(bytes.data(), 1, 1);
        primitive.structType();
        primitive.locale();
        primitive.setLocale(u"de");
        primitive.setStructType(u"lib.T");
        primitive.resize(3);
        primitive.setUri(u"file:x");
        primitive.uri();
    }

    void explore(ITable& table, int depth) {
        table.find(u"inner.x");
        table.conforms(model_.schema.get());
        for (std::uint32_t i = 0; i < std::min(table.count() + 1, 12u); ++i)
            explore(table.at(i).get(), depth + 1);
        table.makeByDimension(u"made", 0x2000);
        table.makeTable(u"made2", model_.schema.get());
        table.addDefault(0x5019, 16);
        for (std::uint32_t i = 0; i < table.defaultCount(); ++i) table.defaultUnit(table.defaultDimension(i));
        const auto filter = table.properties();
        for (int i = 0; i < 12; ++i, filter->next()) filter->value();
        for (int i = 0; i < 12 && filter->previous(); ++i) filter->value();
        for (const char16_t* name : {u"m", u"inner", u"made"}) table.remove(name);
    }

    Model& model_;
    int visited_ = 0;
};

// All operations with handles that were opened before the damage, then their closing.
void runAll(Model& model) {
    static const std::vector<Operation> operations = allOperations();
    for (const Operation& each : operations)
        if (each.name.rfind("close", 0) != 0 && each.name != "tableRemove") each.run(model);
    model.closeAll();
}

using Damage = std::function<void(ModelStore& store)>;

void expectSurvival(const Damage& damage) {
    {
        ModelStore memory;
        Model model(memory);
        damage(memory);
        runAll(model);
    }
    {
        ModelStore memory;
        Model model(memory);
        auto schema = model.schema;
        auto locator = model.locator;
        auto from = model.from;
        model.closeAll();
        model.schema = schema;
        model.locator = locator;
        model.from = from;
        damage(memory);
        Explorer(model).exploreAll();
    }
}

std::uint64_t recordsOfAModel() {
    ModelStore memory;
    Model model(memory);
    return memory.size();
}

class DamagedRecordTest : public ::testing::TestWithParam<Offset> {};

TEST_P(DamagedRecordTest, SurvivesExtremeFields) {
    ModelStore sample;
    Model model(sample);
    const RawRecord record(sample, GetParam());
    if (record.size() == 0) return;

    for (const FieldPlace field : fieldsOf(record.kind())) {
        if (field.position + field.width > record.size()) continue;
        for (const std::uint64_t value : extremesFor(sample, GetParam(), field.width))
            expectSurvival(
                [&](ModelStore& store) { overwrite(store, GetParam(), field.position, value, field.width); });
    }
}

TEST_P(DamagedRecordTest, SurvivesAnyShortening) {
    ModelStore sample;
    Model model(sample);
    const std::size_t size = RawRecord(sample, GetParam()).size();

    for (const std::size_t cut :
         {0u, 1u, 4u, 5u, 13u, 17u, 18u, 21u, 22u, 30u, 31u, 33u, 34u, 41u, 42u, 45u, 50u}) {
        if (cut >= size) break;
        expectSurvival([&](ModelStore& store) {
            const auto bytes = RawRecord(store, GetParam()).bytes();
            store.write(GetParam(), bytes.data(), static_cast<std::uint32_t>(cut), true);
        });
    }
}

TEST_P(DamagedRecordTest, SurvivesItsLoss) {
    expectSurvival([](ModelStore& store) { store.remove(GetParam()); });
}

INSTANTIATE_TEST_SUITE_P(EachRecord, DamagedRecordTest,
                         ::testing::Range(Offset{0}, static_cast<Offset>(recordsOfAModel())));

}  // namespace
}  // namespace norvane::platform::test
