// Stores whose records are whole but contradict each other: rings, children in two lists, parents elsewhere,
// texts without their end, kinds that are none. `check` names each; every operation comes to an end and
// changes nothing but what it was asked to change.
#include <algorithm>
#include <map>
#include <set>

#include "contract/Operations.h"
#include "norvane/platform/data/integrity/Integrity.h"

namespace norvane::platform::test {
namespace {

using ::testing::TestWithParam;

struct Tamper {
    std::string name;
    std::string code;  // what `check` calls it
    std::function<void(IDataStore& store)> act;
};

void PrintTo(const Tamper& tamper, std::ostream* out) { *out << tamper.name; }

constexpr std::size_t kParent = 1, kLocale = 9, kChildren = 14, kDefaults = 22;

Offset listOf(IDataStore& store, std::u16string_view path) { return record(store, path).children(); }

void addTo(IDataStore& store, std::u16string_view path, Offset value) {
    const Offset list = listOf(store, path);
    const std::vector<unsigned char> empty{3};
    if (list == noRecord())
        overwrite(store, recordAt(store, path), kChildren, store.append(empty.data(), 1), 4);
    store.extend(listOf(store, path), &value, sizeof value);
}

void setField(IDataStore& store, std::u16string_view path, std::size_t position, Offset value) {
    overwrite(store, recordAt(store, path), position, value, 4);
}

void appendTo(IDataStore& store, std::u16string_view path, const std::vector<unsigned char>& bytes) {
    addTo(store, path, store.append(bytes.data(), static_cast<std::uint32_t>(bytes.size())));
}

std::vector<Tamper> rings() {
    return {
        {"RingOfLists", "cycle", [](IDataStore& s) { addTo(s, u"top/g/inner", recordAt(s, u"top")); }},
        {"GroupListsItself", "cycle", [](IDataStore& s) { addTo(s, u"top/g", recordAt(s, u"top/g")); }},
        {"TableListsItself", "cycle", [](IDataStore& s) { addTo(s, u"top/t", recordAt(s, u"top/t")); }},
        {"RingOfListsAndParents", "cycle",
         [](IDataStore& s) {
             addTo(s, u"top/g/inner", recordAt(s, u"top/g"));
             setField(s, u"top/g", kParent, recordAt(s, u"top/g/inner"));
         }},
        {"RingOfParents", "parent",
         [](IDataStore& s) { setField(s, u"top/g", kParent, recordAt(s, u"top/g/inner")); }},
        {"OwnParent", "parent", [](IDataStore& s) { setField(s, u"top/t", kParent, recordAt(s, u"top/t")); }},
    };
}

std::vector<Tamper> misplacedChildren() {
    return {
        {"ChildInTwoLists", "listed-twice", [](IDataStore& s) { addTo(s, u"top/g", recordAt(s, u"top/p")); }},
        {"ChildTwiceInOneList", "listed-twice",
         [](IDataStore& s) { addTo(s, u"top", recordAt(s, u"top/g")); }},
        {"ChildOfATableInAGroup", "listed-twice",
         [](IDataStore& s) { addTo(s, u"top/g", recordAt(s, u"top/t/inner")); }},
        {"ParentElsewhere", "parent",
         [](IDataStore& s) { setField(s, u"top/p", kParent, recordAt(s, u"top/x")); }},
        {"ParentThatIsAPrimitive", "parent",
         [](IDataStore& s) { setField(s, u"top/g", kParent, recordAt(s, u"top/p")); }},
        {"ParentThatIsNotThere", "parent", [](IDataStore& s) { setField(s, u"top/t", kParent, 12345); }},
        {"ListOfTwo", "shared", [](IDataStore& s) { setField(s, u"top/x", kChildren, listOf(s, u"top/g")); }},
        {"DanglingChild", "child-dangling", [](IDataStore& s) { addTo(s, u"top/t", 12345); }},
        {"ListedRoot", "child-kind", [](IDataStore& s) { addTo(s, u"top/g", 0); }},
        {"ListedList", "child-kind", [](IDataStore& s) { addTo(s, u"top/t", listOf(s, u"top")); }},
        {"UnknownKind", "kind",
         [](IDataStore& s) {
             appendTo(s, u"top/g", {9, 1, 2, 3});
         }},
        {"KindAlone", "too-short", [](IDataStore& s) { appendTo(s, u"top/t", {1}); }},
    };
}

std::vector<Tamper> wrongSatellites() {
    return {
        {"ChildrenInALocale", "children",
         [](IDataStore& s) { setField(s, u"top/g", kChildren, record(s, u"top/g").locale()); }},
        {"ChildrenInThemselves", "children",
         [](IDataStore& s) { setField(s, u"top/t", kChildren, recordAt(s, u"top/t")); }},
        {"LocaleOfTwo", "shared",
         [](IDataStore& s) { setField(s, u"top/p", kLocale, record(s, u"top/g").locale()); }},
        {"LocaleThatIsAList", "locale",
         [](IDataStore& s) { setField(s, u"top/g", kLocale, listOf(s, u"top/g")); }},
        {"DefaultsThatAreChildren", "shared",
         [](IDataStore& s) { setField(s, u"top/t", kDefaults, listOf(s, u"top/t")); }},
        {"DefaultsThatAreALocale", "defaults",
         [](IDataStore& s) { setField(s, u"top/t", kDefaults, record(s, u"top/g").locale()); }},
    };
}

// A text all of whose units are letters.
void fillText(IDataStore& store, Offset offset, std::size_t position, std::size_t size) {
    for (std::size_t at = 0; at < size; at += 2) overwrite(store, offset, position + at, u'x', 2);
}

std::vector<Tamper> wrongBytes() {
    return {
        {"NameWithoutItsEnd", "text", [](IDataStore& s) { fillText(s, recordAt(s, u"top/g"), 31, 4); }},
        {"ClassTextWithoutItsEnd", "text",
         [](IDataStore& s) { fillText(s, recordAt(s, u"top/x"), 31 + 4, record(s, u"top/x").at(23)); }},
        {"StructTypeWithoutItsEnd", "text",
         [](IDataStore& s) {
             const RawRecord st = record(s, u"top/st");
             fillText(s, recordAt(s, u"top/st"), 42 + st.at(26) + st.at(30), st.at(34));
         }},
        {"TextsThatAreNoPairs", "locale-pairs",
         [](IDataStore& s) {
             const Offset locale = record(s, u"top/g").locale();
             overwrite(s, locale, RawRecord(s, locale).size() - 2, u'x', 2);
         }},
        {"SizeBeyondTheRecord", "size", [](IDataStore& s) { setField(s, u"top/p", 38, 0xFFFFFFF0u); }},
        {"SizesThatWrapAround", "size",
         [](IDataStore& s) {
             const Offset st = recordAt(s, u"top/st");
             overwrite(s, st, 26, 0xFFFFFFFCu, 4);
             overwrite(s, st, 30, 8, 4);
         }},
    };
}

std::vector<Tamper> allTampers() {
    std::vector<Tamper> all;
    for (const auto& some : {rings(), misplacedChildren(), wrongSatellites(), wrongBytes()})
        all.insert(all.end(), some.begin(), some.end());
    return all;
}

std::string nameOfTamper(const ::testing::TestParamInfo<Tamper>& info) { return info.param.name; }

// A model, and a group beside it that no operation is asked about.
struct Tampered {
    explicit Tampered(const Tamper& tamper) : model((makeAside(store), store)) {
        for (const char16_t* path : {u"aside", u"aside/p", u"aside/g"}) {
            const RawRecord entity = record(store, path);
            for (const Offset each : {recordAt(store, path), entity.locale(), entity.children()})
                if (each != noRecord()) asideRecords.push_back(each);
        }
        for (const char16_t* path : {u"top/l", u"top/p", u"top/s", u"top/st", u"top/t/m", u"top/u"})
            offsets[path] = recordAt(store, path);
        for (const auto& [path, offset] : offsets) EXPECT_NE(offset, noRecord());
        EXPECT_GE(asideRecords.size(), 5u);
        tamper.act(store);
    }

    static void makeAside(ModelStore& into) {
        const auto aside = IContainerFrontEnd::toplevel(&into, u"aside");
        write<std::int32_t>(*aside->makePrimitive(u"p", kInt32), {1, 2, 3});
        aside->makeContainer(kGroup, u"g", nullptr)->setLocalised(u"en", u"aside");
    }

    // The records of that group as they are now.
    std::vector<std::vector<unsigned char>> aside() {
        std::vector<std::vector<unsigned char>> records;
        for (const Offset each : asideRecords) records.push_back(RawRecord(store, each).bytes());
        return records;
    }

    // Opens each handle anew. Those that the store no longer leads to stay as they are.
    void reopen() {
        model.top = opened(model.top, IContainerFrontEnd::find(&store, u"top"));
        model.g = opened(model.g, model.top->find(u"g"));
        model.node = opened(model.node, model.g->find(u"inner"));
        if (const auto link = model.top->find(u"l"); ILink::to(link.get())) model.link = link;
        for (auto& [property, path] : properties()) {
            const auto fresh = model.top->findProperty(path);
            if (fresh && fresh->kind() == (*property)->kind()) *property = fresh;
        }
        model.properties = model.top->properties();
        model.containers = model.top->containers();
        model.members = model.table(model.t).properties();
    }

    ModelStore store;
    Model model;
    std::vector<Offset> asideRecords;
    std::map<std::u16string_view, Offset> offsets;  // by path, before the store was tampered with

  private:
    static SharedPtr<IContainer> opened(const SharedPtr<IContainer>& before,
                                        const SharedPtr<IContainer>& fresh) {
        return fresh ? fresh : before;
    }

    std::vector<std::pair<SharedPtr<IProperty>*, const char16_t*>> properties() {
        return {{&model.p, u"p"}, {&model.s, u"s"},   {&model.st, u"st"},        {&model.u, u"u"},
                {&model.t, u"t"}, {&model.m, u"t.m"}, {&model.inner, u"t.inner"}};
    }
};

class TamperTest : public TestWithParam<Tamper> {
  protected:
    ~TamperTest() noexcept override = default;
};

std::set<std::string> errorCodesOf(IDataStore& store) {
    std::set<std::string> errors;
    for (const auto& each : data::integrity::check(store).findings)
        if (each.severity == data::integrity::Severity::error) errors.insert(each.code);
    return errors;
}

TEST_P(TamperTest, IsNamed) {
    Tampered tampered(GetParam());
    tampered.model.closeAll();

    const std::set<std::string> errors = errorCodesOf(tampered.store);

    EXPECT_EQ(errors.count(GetParam().code), 1u) << ::testing::PrintToString(errors);
}

// The operations that only look.
bool onlyLooks(const std::string& operation) {
    static const std::set<std::string> names{"frontEndFind",
                                             "version",
                                             "name",
                                             "path",
                                             "store",
                                             "parent",
                                             "className",
                                             "isEmpty",
                                             "kind",
                                             "contains",
                                             "find",
                                             "findWithoutText",
                                             "findProperty",
                                             "properties",
                                             "containers",
                                             "conformsPath",
                                             "conformsPathByClass",
                                             "conforms",
                                             "localisedCount",
                                             "localeAt",
                                             "localised",
                                             "groupTo",
                                             "nodeTo",
                                             "linkTo",
                                             "facetsContainer",
                                             "resolve",
                                             "resolveInStore",
                                             "target",
                                             "primitiveTo",
                                             "tableTo",
                                             "propertyNext",
                                             "propertyPrevious",
                                             "propertyValue",
                                             "containerNext",
                                             "containerPrevious",
                                             "containerValue",
                                             "memberNext",
                                             "memberPrevious",
                                             "memberValue",
                                             "propertyName",
                                             "propertyPath",
                                             "propertyStore",
                                             "propertyKind",
                                             "propertyParent",
                                             "propertyLocalisedCount",
                                             "propertyLocaleAt",
                                             "propertyLocalised",
                                             "flags",
                                             "count",
                                             "elementSize",
                                             "valueBytes",
                                             "dataType",
                                             "units",
                                             "structType",
                                             "uri",
                                             "locale",
                                             "readValues",
                                             "tableFind",
                                             "tableProperties",
                                             "tableConforms",
                                             "tableCount",
                                             "at",
                                             "defaultCount",
                                             "defaultDimension",
                                             "defaultType",
                                             "defaultUnit",
                                             "tableClassName"};
    return names.count(operation) != 0;
}

// The one record that an operation is about, where it is about one alone.
std::u16string_view onlyTarget(const std::string& operation) {
    static const std::map<std::string, std::u16string_view> targets{
        {"setTarget", u"top/l"},       {"removeTarget", u"top/l"},    {"setStructType", u"top/st"},
        {"setUri", u"top/p"},          {"leaveUri", u"top/u"},        {"setLocale", u"top/p"},
        {"removeLocale", u"top/st"},   {"writeInPlace", u"top/p"},    {"writePastTheEnd", u"top/p"},
        {"resize", u"top/p"},          {"resizeToNothing", u"top/p"}, {"storeStrings", u"top/s"},
        {"setFlags", u"top/t/m"},      {"clearFlags", u"top/t/m"},    {"renameInContainer", u"top/p"},
        {"renameInTable", u"top/t/m"},
    };
    const auto found = targets.find(operation);
    return found == targets.end() ? std::u16string_view() : found->second;
}

using Contents = std::vector<std::vector<unsigned char>>;

// Both as if nothing were open.
std::set<Offset> changedRecords(Contents before, Contents after) {
    const auto close = [](std::vector<unsigned char>& record) {
        const bool isEntity = record.size() > 8 && (record[0] < 3 || record[0] == 4);
        if (isEntity) std::fill(record.begin() + 5, record.begin() + 9, 0);
    };
    std::set<Offset> changed;
    for (Offset offset = 0; offset < before.size(); ++offset) {
        close(before[offset]);
        close(after[offset]);
        if (before[offset] != after[offset]) changed.insert(offset);
    }
    return changed;
}

void expectOnlyWhatWasAsked(const Operation& operation, Tampered& tampered) {
    const auto aside = tampered.aside();
    const Contents before = contentsOf(tampered.store);
    const std::u16string_view path = onlyTarget(operation.name);
    const Offset target = path.empty() ? noRecord() : tampered.offsets.at(path);

    operation.run(tampered.model);
    const std::set<Offset> changed = changedRecords(before, contentsOf(tampered.store));
    tampered.model.closeAll();

    EXPECT_EQ(tampered.aside(), aside) << operation.name;
    if (onlyLooks(operation.name)) {
        EXPECT_EQ(changed, std::set<Offset>{}) << operation.name;
    }
    if (target == noRecord()) return;
    EXPECT_TRUE(changed.empty() || changed == std::set<Offset>{target})
        << operation.name << " changed " << ::testing::PrintToString(changed);
}

TEST_P(TamperTest, OpenHandlesDoWhatTheyAreAskedAndNoMore) {
    for (const Operation& each : allOperations()) {
        Tampered tampered(GetParam());
        expectOnlyWhatWasAsked(each, tampered);
    }
}

// Handles opened on the tampered store, as far as there are any.
TEST_P(TamperTest, FreshHandlesDoWhatTheyAreAskedAndNoMore) {
    for (const Operation& each : allOperations()) {
        Tampered tampered(GetParam());
        tampered.reopen();
        expectOnlyWhatWasAsked(each, tampered);
    }
}

// Taking the locale away from a struct leaves its struct type where its value was.
bool mayLeaveAnError(const Operation& operation) { return operation.name == "removeLocale"; }

TEST(SoundStoreTest, StaysSoundWhateverIsAskedOfTheModel) {
    const std::vector<Operation> operations = allOperations();
    for (std::size_t first = 0; first < operations.size(); ++first)
        for (const std::size_t step : {0u, 1u, 7u, 40u}) {
            const Operation& a = operations[first];
            const Operation& b = operations[(first + step) % operations.size()];
            const bool closes = a.name.rfind("close", 0) == 0 || a.name == "tableRemove";
            if (mayLeaveAnError(a) || mayLeaveAnError(b) || closes) continue;
            ModelStore store;
            {
                Model model(store);
                a.run(model);
                b.run(model);
                model.closeAll();
            }
            EXPECT_EQ(errorCodesOf(store), std::set<std::string>{}) << a.name << ", then " << b.name;
        }
}

TEST(SoundStoreTest, LosesTheEndOfAStructTypeWithTheLocale) {
    ModelStore store;
    Model model(store);
    write(model.primitive(model.st), std::vector<unsigned char>(40, 1));

    model.primitive(model.st).setLocale(WideString());
    model.closeAll();

    EXPECT_EQ(errorCodesOf(store), std::set<std::string>{"text"});
}

INSTANTIATE_TEST_SUITE_P(Each, TamperTest, ::testing::ValuesIn(allTampers()), nameOfTamper);

}  // namespace
}  // namespace norvane::platform::test
