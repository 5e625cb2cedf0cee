// Programs of random operations through several handles at once, each step compared with the plain model.
#include <functional>
#include <random>

#include "contract/Model.h"
#include "contract/PlainModel.h"
#include "support/Torture.h"

namespace norvane::platform::test {
namespace {

using plain::Id;
using plain::Memory;
using plain::Sort;
using plain::Text;

constexpr std::uint32_t kElement = 4;

struct ContainerHandle {
    SharedPtr<IContainer> real;
    Memory memory;
};

struct PropertyHandle {
    SharedPtr<IProperty> real;
    Memory memory;
};

class Program {
  public:
    explicit Program(unsigned seed) : random_(seed) {
        openToplevel(u"a");
        openToplevel(u"b");
    }

    ~Program() {
        while (!containers_.empty()) closeContainer(0);
        while (!properties_.empty()) closeProperty(0);
    }

    void run(int steps) {
        for (int i = 0; i < steps && !::testing::Test::HasFailure(); ++i) {
            SCOPED_TRACE(i);
            step();
            if (i % 16 == 0) compare();
        }
        compare();
    }

    // Whole trees, in the order of the lists.
    void compare() { compare(0, Store::kRoot); }

  private:
    using Store = plain::Store;

    void step() {
        if (containers_.empty()) return openToplevel(u"a");
        if (containers_.size() > 5) return closeContainer(pick(containers_.size()));
        if (properties_.size() > 5) return closeProperty(pick(properties_.size()));
        const auto which = pick(24);
        if (which < 16 || properties_.empty())
            containerStep(containers_[pick(containers_.size())], which);
        else
            propertyStep(properties_[pick(properties_.size())], which);
    }

    void containerStep(ContainerHandle& handle, std::size_t which) {
        switch (which) {
            case 0:
                return makeContainer(handle);
            case 1:
                return makePrimitive(handle);
            case 2:
                return makeTable(handle);
            case 3:
                return remove(handle);
            case 4:
                return rename(handle);
            case 5:
                return copy(handle);
            case 6:
                return copyTo(handle);
            case 7:
                return merge(handle);
            case 8:
                return addContainer(handle);
            case 9:
                return addProperty(handle);
            case 10:
                return find(handle);
            case 11:
                return findProperty(handle);
            case 12:
                return localise(handle);
            case 13:
                return compareHandle(handle);
            case 14:
                return parent(handle);
            default:
                return closeContainer(pick(containers_.size()));
        }
    }

    void propertyStep(PropertyHandle& handle, std::size_t which) {
        switch (which) {
            case 16:
                return rename(handle);
            case 17:
                return localise(handle);
            case 18:
                return changeFlags(handle);
            case 19:
                return closeProperty(pick(properties_.size()));
            default:
                break;
        }
        if (store_.at(handle.memory.id).sort == Sort::table)
            tableStep(handle, which);
        else
            primitiveStep(handle, which);
    }

    // --- containers ---

    void openToplevel(const char16_t* name) {
        auto real = IContainerFrontEnd::toplevel(&real_, name);
        auto id = store_.childOf(Store::kRoot, name);
        if (!id) {
            id = store_.make({Sort::container, name});
            store_.at(*id).kind = kGroup;
            store_.list(Store::kRoot, *id);
            containers_.push_back({std::move(real), store_.open(*id)});
            containers_.back().memory.parent.reset();  // made before it was listed
        } else {
            containers_.push_back({std::move(real), store_.open(*id)});
        }
    }

    void closeContainer(std::size_t which) {
        store_.close(containers_[which].memory);
        containers_[which].real.reset();
        containers_.erase(containers_.begin() + static_cast<std::ptrdiff_t>(which));
    }

    // The plain child, when the name is free.
    std::optional<Id> makeChild(Memory& parent, plain::Entity entity) {
        if (parent.index.count(entity.name) != 0) return {};
        const Id id = store_.make(std::move(entity));
        store_.addThrough(parent, id);
        return id;
    }

    void makeContainer(ContainerHandle& handle) {
        const Text name = someName();
        const auto kind = static_cast<std::uint32_t>(pick(4));
        auto real = handle.real->makeContainer(kind, name.c_str(), nullptr);
        plain::Entity entity{Sort::container, name};
        entity.kind = kind;
        const auto id = makeChild(handle.memory, entity);
        ASSERT_EQ(bool(real), id && kind < 3);
        if (real) containers_.push_back({std::move(real), store_.open(*id)});
    }

    void makePrimitive(ContainerHandle& handle) {
        const Text name = someName();
        const auto real = handle.real->makePrimitive(name.c_str(), kInt32);
        plain::Entity entity{Sort::primitive, name};
        entity.type = kInt32;
        keep(real, real ? real->property() : nullptr, makeChild(handle.memory, entity));
    }

    void makeTable(ContainerHandle& handle) {
        const Text name = someName();
        const auto real = handle.real->makeTable(name.c_str(), nullptr);
        keep(real, real ? real->property() : nullptr, makeChild(handle.memory, {Sort::table, name}));
    }

    template <class Facet>
    void keep(const SharedPtr<Facet>& owner, IProperty* property, std::optional<Id> id) {
        ASSERT_EQ(bool(owner), id.has_value());
        if (id) properties_.push_back({SharedPtr<IProperty>(owner, property), store_.open(*id)});
    }

    void remove(ContainerHandle& handle) {
        const Text name = someName();
        ASSERT_EQ(handle.real->remove(name.c_str()), store_.removeThrough(handle.memory, name));
    }

    template <class Handle>
    void rename(Handle& handle) {
        const Text name = someName();
        ASSERT_EQ(handle.real->rename(name.c_str()), store_.renameThrough(handle.memory, name));
    }

    struct Place {
        std::u16string_view parent;
        Text name;
        bool hasParent;
    };

    static Place placeOf(std::u16string_view path) {
        const std::size_t dot = path.rfind(u'.');
        if (dot == path.npos) return {path, Text(path), false};
        return {path.substr(0, dot), Text(path.substr(dot + 1)), true};
    }

    void copy(ContainerHandle& handle) {
        const Text source = somePath();
        const Text destination = somePath();
        const bool absolute = pick(3) == 0;
        const bool expected = plainCopy(handle.memory, source, placeOf(destination), absolute);
        ASSERT_EQ(handle.real->copy(source.c_str(), destination.c_str(), absolute), expected);
    }

    bool plainCopy(Memory& memory, const Text& source, const Place& place, bool absolute) {
        const auto original = absolute ? store_.walk(Store::kRoot, source) : store_.resolve(memory, source);
        if (!original || !store_.at(*original).isAlive) return false;
        const auto parent = place.hasParent ? store_.resolve(memory, place.parent) : memory.id;
        if (!parent || !store_.isContainer(*parent) || store_.childOf(*parent, place.name)) return false;
        const Id made = store_.clone(*original);
        store_.at(made).name = place.name;
        store_.list(*parent, made);
        if (!place.hasParent) store_.index(memory);
        return true;
    }

    void copyTo(ContainerHandle& handle) {
        const Text path = somePath();
        const bool expected = plainCopyTo(handle.memory, placeOf(path));
        ASSERT_EQ(handle.real->copyTo(&real_, path.c_str()), expected);
    }

    bool plainCopyTo(Memory& memory, const Place& place) {
        const auto parent = store_.walk(Store::kRoot, place.parent);
        if (!parent || *parent == Store::kRoot || !store_.isSet(*parent)) return false;
        const Id made = store_.clone(memory.id);
        store_.at(made).name = place.name;
        if (!store_.childOf(*parent, place.name)) store_.list(*parent, made);
        return true;
    }

    void merge(ContainerHandle& handle) {
        ContainerHandle& source = containers_[pick(containers_.size())];
        std::vector<Id> children =
            source.memory.knowsList ? store_.at(source.memory.id).children : std::vector<Id>();
        if (children.size() > source.memory.index.size()) children.resize(source.memory.index.size());
        for (Id child : children)
            if (!store_.resolve(handle.memory, store_.at(child).name))
                store_.addThrough(handle.memory, store_.clone(child));
        ASSERT_TRUE(handle.real->merge(source.real));
    }

    template <class Item>
    void add(ContainerHandle& handle, Item& item) {
        const bool expected = !store_.resolve(handle.memory, item.memory.name);
        if (expected) store_.addThrough(handle.memory, store_.cloneThrough(item.memory));
        ASSERT_EQ(handle.real->add(item.real), expected);
    }

    void addContainer(ContainerHandle& handle) { add(handle, containers_[pick(containers_.size())]); }

    void addProperty(ContainerHandle& handle) {
        if (!properties_.empty()) add(handle, properties_[pick(properties_.size())]);
    }

    void find(ContainerHandle& handle) {
        const Text path = somePath();
        const bool isAgain = pick(3) == 0;
        const auto id = isAgain ? std::optional(handle.memory.id) : store_.resolve(handle.memory, path);
        ASSERT_EQ(handle.real->contains(path.c_str()), store_.resolve(handle.memory, path).has_value());
        auto real = handle.real->find(isAgain ? WideString() : WideString(path.c_str()));
        if (id && store_.isContainer(*id) && store_.at(*id).kind > 2)
            ++store_.at(*id).open;  // stays so for good
        ASSERT_EQ(bool(real), id && store_.isContainer(*id) && store_.at(*id).kind < 3);
        if (real) containers_.push_back({std::move(real), store_.open(*id)});
    }

    void findProperty(ContainerHandle& handle) {
        const Text path = somePath();
        const auto id = store_.resolve(handle.memory, path);
        auto real = handle.real->findProperty(path.c_str());
        ASSERT_EQ(bool(real), id && store_.isProperty(*id));
        if (real) properties_.push_back({std::move(real), store_.open(*id)});
    }

    void parent(ContainerHandle& handle) {
        const auto id = handle.memory.parent;
        auto real = handle.real->parent();
        ASSERT_EQ(bool(real), id && store_.isContainer(*id));
        if (real) containers_.push_back({std::move(real), store_.open(*id)});
    }

    void compareHandle(ContainerHandle& handle) {
        ASSERT_EQ(textOf(handle.real->name()), handle.memory.name);
        ASSERT_EQ(handle.real->isEmpty(), handle.memory.index.empty());
        Names properties, containers;
        for (Id child : store_.at(handle.memory.id).children)
            (store_.isContainer(child) ? containers : properties).push_back(store_.at(child).name);
        ASSERT_EQ(namesOf(*handle.real->properties()), properties);
    }

    // --- what both sorts have ---

    template <class Handle>
    void localise(Handle& handle) {
        Memory& memory = handle.memory;
        if (memory.entries.empty() && memory.knowsLocales) memory.entries = *store_.at(memory.id).locales;
        ASSERT_EQ(handle.real->localisedCount(), memory.knowsLocales ? memory.entries.size() : 0);
        const Text locale = pick(2) == 0 ? u"en" : u"de";
        const Text text = someName();
        const auto found = std::find_if(memory.entries.begin(), memory.entries.end(),
                                        [&](const auto& each) { return each.first == locale; });
        const bool isFound = found != memory.entries.end();
        ASSERT_EQ(textOf(handle.real->localised(locale.c_str())),
                  memory.knowsLocales && isFound ? found->second : Text());
        if (pick(4) == 0) {
            handle.real->setLocalised(locale.c_str(), WideString());
            if (!isFound) return;
            memory.entries.erase(found);
        } else {
            handle.real->setLocalised(locale.c_str(), text.c_str());
            if (isFound)
                found->second = text;
            else
                memory.entries.emplace_back(locale, text);
        }
        memory.isDirty = true;
    }

    // --- properties ---

    void closeProperty(std::size_t which) {
        store_.close(properties_[which].memory);
        properties_[which].real.reset();
        properties_.erase(properties_.begin() + static_cast<std::ptrdiff_t>(which));
    }

    void changeFlags(PropertyHandle& handle) {
        const auto bits = static_cast<std::uint8_t>(pick(8));
        std::uint8_t& flags = store_.at(handle.memory.id).flags;
        if (pick(2) == 0) {
            handle.real->setFlags(bits);
            flags |= bits;
        } else {
            handle.real->clearFlags(bits);
            flags &= static_cast<std::uint8_t>(~bits);
        }
        ASSERT_EQ(handle.real->flags(), flags);
    }

    void tableStep(PropertyHandle& handle, std::size_t which) {
        ITable& table = *ITable::to(handle.real.get());
        const Text name = someName();
        if (which == 20) {
            const bool isFree = !store_.resolve(handle.memory, name);
            const auto real = table.makePrimitive(name.c_str(), kInt32, 0);
            keepMember(handle, real, real ? real->property() : nullptr, isFree, {Sort::primitive, name});
        } else if (which == 21) {
            const bool isFree = !store_.resolve(handle.memory, name);
            const auto real = table.makeTable(name.c_str(), nullptr);
            keepMember(handle, real, real ? real->property() : nullptr, isFree, {Sort::table, name});
        } else if (which == 22) {
            ASSERT_EQ(table.remove(name.c_str()), store_.removeThrough(handle.memory, name));
        } else {
            compareTable(handle, table);
        }
    }

    // A name that is free as a path can still be refused when it is listed: the handle is then on an orphan.
    template <class Facet>
    void keepMember(PropertyHandle& handle, const SharedPtr<Facet>& owner, IProperty* property, bool isFree,
                    plain::Entity entity) {
        ASSERT_EQ(bool(owner), isFree);
        if (!isFree) return;
        if (entity.sort == Sort::primitive) entity.type = kInt32;
        const Id id = store_.make(std::move(entity));
        store_.addThrough(handle.memory, id);
        properties_.push_back({SharedPtr<IProperty>(owner, property), store_.open(id)});
    }

    void compareTable(PropertyHandle& handle, ITable& table) {
        const auto& children = store_.at(handle.memory.id).children;
        ASSERT_EQ(table.count(), handle.memory.index.size());
        const auto position = pick(children.size() + 1);
        const auto real = table.at(static_cast<std::uint32_t>(position));
        const bool isThere = handle.memory.knowsList && position < children.size();
        ASSERT_EQ(bool(real), isThere && store_.isProperty(children[position]));
        ASSERT_TRUE(!real || textOf(real->name()) == store_.at(children[position]).name);
    }

    void primitiveStep(PropertyHandle& handle, std::size_t which) {
        IPrimitive& primitive = *IPrimitive::to(handle.real.get());
        plain::Entity& entity = store_.at(handle.memory.id);
        plain::ValueOf value(entity.value, handle.memory, kElement);
        const auto start = static_cast<std::uint32_t>(pick(4));
        const auto count = static_cast<std::uint32_t>(pick(4));
        unsigned char source[8 * kElement];
        for (unsigned char& each : source) each = static_cast<unsigned char>(pick(256));
        ASSERT_EQ(primitive.count(), value.count());
        if (which == 20) {
            const bool expected = value.write(source, start, count);
            ASSERT_EQ(primitive.writeValues(source, start, count), expected);
            if (expected) store_.touch(handle.memory.id);
        } else if (which == 21) {
            ASSERT_EQ(primitive.resize(count), value.resize(count));
        } else if (which == 22) {
            const unsigned char* expected = value.read(start, count);
            ASSERT_EQ(primitive.readValues(source, start, count), expected != nullptr);
            ASSERT_TRUE(!expected || std::equal(source, source + count * kElement, expected));
        } else {
            changeUri(handle, primitive, entity);
        }
    }

    void changeUri(PropertyHandle& handle, IPrimitive& primitive, plain::Entity& entity) {
        const bool isUri = pick(3) == 0;
        ASSERT_TRUE(primitive.setUri(isUri ? u"u" : WideString()));
        entity.value = isUri ? std::vector<unsigned char>{'u', 0, 0, 0} : std::vector<unsigned char>();
        entity.flags = static_cast<std::uint8_t>(isUri ? entity.flags | 8 : entity.flags & ~8);
        handle.memory.hasUri = isUri;
        handle.memory.valueSize = static_cast<std::uint32_t>(entity.value.size());
    }

    // --- comparison ---

    void compare(Offset offset, Id id) {
        const plain::Entity& entity = store_.at(id);
        const RawRecord raw(real_, offset);
        const std::vector<Offset> children = childrenOf(real_, offset);
        ASSERT_EQ(raw.name(), entity.name);
        ASSERT_EQ(raw.openCount(), entity.open) << testing::PrintToString(entity.name);
        ASSERT_EQ(raw.flags(), entity.flags);
        ASSERT_EQ(raw.locale() != noRecord(), entity.locales.has_value());
        ASSERT_EQ(children.size(), entity.children.size());
        if (entity.sort == Sort::primitive) {
            ASSERT_EQ(raw.kind(), 1);
            ASSERT_EQ(valueIn(raw), entity.value);
        }
        ASSERT_TRUE(entity.sort != Sort::container || raw.byteAt(18) == entity.kind);
        for (std::size_t i = 0; i < children.size(); ++i) {
            ASSERT_EQ(RawRecord(real_, children[i]).parent(), offset);
            ASSERT_NO_FATAL_FAILURE(compare(children[i], entity.children[i]));
        }
    }

    static std::vector<unsigned char> valueIn(const RawRecord& raw) {
        const std::size_t begin = 42 + raw.at(26) + raw.at(30) + raw.at(34);
        return {raw.bytes().begin() + static_cast<std::ptrdiff_t>(begin), raw.bytes().end()};
    }

    // --- chance ---

    std::size_t pick(std::size_t count) {
        return std::uniform_int_distribution<std::size_t>(0, count - 1)(random_);
    }

    Text someName() {
        static const Text names[] = {u"a", u"b", u"c", u"d", u"e", u"a.b", u""};
        return names[pick(std::size(names))];
    }

    Text somePath() {
        Text path = someName();
        while (pick(2) == 0) path += u"." + someName();
        return path;
    }

    std::mt19937 random_;
    ModelStore real_;
    Store store_;
    std::deque<ContainerHandle> containers_;
    std::deque<PropertyHandle> properties_;
};

// On files, whose making takes longer than a program, fewer do.
#ifdef QVT_TEST_FILE_STORE
constexpr unsigned kPrograms = 40;
#else
constexpr unsigned kPrograms = 400;
#endif

class RandomProgramsTest : public ::testing::TestWithParam<unsigned> {};

TEST_P(RandomProgramsTest, AgreesWithThePlainModel) {
    for (unsigned i = 0; i < rounds(kPrograms) && !HasFailure(); ++i) {
        SCOPED_TRACE("seed " + std::to_string(GetParam() * 10000 + i));
        Program program(GetParam() * 10000 + i);
        program.run(300);
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomProgramsTest, ::testing::Range(0u, 10u));

}  // namespace
}  // namespace norvane::platform::test
