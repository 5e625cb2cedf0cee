// Random models and random programs, done by the model and in the plain form: both must leave the same
// records at the same offsets, append and remove in the same order, and answer the same.
#include <map>
#include <memory>
#include <optional>
#include <random>

#include "model/Subtree.h"
#include "support/Torture.h"
#include "support/reference/ModelReference.h"
#include "support/reference/ValuesReference.h"
#include "unit/model/ModelFixture.h"

namespace norvane::platform::test {
namespace {

using Design::Primitive;
using Design::Table;

class Dice {
  public:
    explicit Dice(unsigned seed) : random_(seed) {}
    std::uint32_t below(std::uint32_t limit) { return static_cast<std::uint32_t>(random_() % limit); }
    bool oneIn(std::uint32_t chance) { return below(chance) == 0; }
    template <class T>
    const T& of(const std::vector<T>& values) {
        return values[below(static_cast<std::uint32_t>(values.size()))];
    }

  private:
    std::mt19937 random_;
};

std::u16string randomName(Dice& dice) {
    const std::vector<std::u16string> shapes = {u"", u"Property_", u"MaterialProperty_long_"};
    std::u16string name = dice.of(shapes);
    for (std::uint32_t i = 0, length = dice.below(4); i < length; ++i)
        name.push_back(static_cast<char16_t>(u'a' + dice.below(5)));
    return name;
}

// A tree with everything that entities can have, below a root at offset 0. Some names stand twice in a list.
class RandomTree {
  public:
    RandomTree(IDataStore& store, unsigned seed) : store_(store), build_(store), dice_(seed) {
        sets_.push_back(build_.root());
        const std::uint32_t size = 1 + dice_.below(60);
        for (std::uint32_t i = 0; i < size; ++i) addEntity();
    }

    const std::vector<Offset>& sets() const { return sets_; }
    const std::vector<Offset>& entities() const { return entities_; }

  private:
    void addEntity() {
        const Offset parent = dice_.of(sets_);
        const std::u16string name = randomName(dice_);
        Offset entity = 0;
        switch (dice_.below(4)) {
            case 0:
                entity = build_.container(parent, name, dice_.below(3));
                sets_.push_back(entity);
                if (dice_.oneIn(3)) Container(&store_, entity).setLinkTarget(u"some.where");
                break;
            case 1:
                entity = build_.table(parent, name);
                sets_.push_back(entity);
                if (dice_.oneIn(2)) build_.defaults(entity, 0x2001 + 0x1000 * dice_.below(3), 12);
                break;
            default:
                entity = build_.values<std::int32_t>(parent, name, 12,
                                                     std::vector<std::int32_t>(dice_.below(4), 7));
        }
        entities_.push_back(entity);
        if (dice_.oneIn(3)) build_.localise(entity, u"de", name.c_str());
        if (dice_.oneIn(4)) build_.flag(entity, static_cast<std::uint8_t>(1u << dice_.below(3)));
        if (dice_.oneIn(12) && listRecordOf(store_, parent) != noRecord()) {
            const Offset twin = build_.primitive(kUnlisted, name);
            store_.extend(listRecordOf(store_, parent), &twin, 4);
        }
        if (dice_.oneIn(12)) Container(&store_, dice_.of(sets_)).removeChild(name);
        sets_.erase(std::remove_if(sets_.begin(), sets_.end(),
                                   [this](Offset set) { return store_.recordSize(set) == 0; }),
                    sets_.end());
        std::erase_if(entities_, [this](Offset each) { return store_.recordSize(each) == 0; });
    }

    IDataStore& store_;
    ModelBuilder build_;
    Dice dice_;
    std::vector<Offset> sets_;
    std::vector<Offset> entities_;
};

// What is compared of an append: a copy is appended as the plain form does it. A new list is not, which the
// plain form appends empty and the model with the first child in it; only what it holds in the end is the
// same.
enum class Appends { withSizes, anySize };

// The calls that say which offsets records get, and which go.
std::vector<std::string> appendsAndRemoves(const LoggingStore& store, Appends appends = Appends::withSizes) {
    std::vector<std::string> words;
    for (const StoreCall& call : store.changes())
        if (call.name == "append" || call.name == "remove") {
            words.push_back(call.name + " " + std::to_string(call.offset));
            if (appends == Appends::withSizes) words.back() += " " + std::to_string(call.size);
        }
    return words;
}

// One random tree in two stores; what is done to the one in the model's way is done to the other plainly.
class TwoStores {
  public:
    TwoStores(unsigned seed, Extensions extensions)
        : model(extensions), tree_(model, seed), plainTree_(plain, seed) {
        model.takeCalls();
        plain.takeCalls();
    }

    const std::vector<Offset>& sets() const { return tree_.sets(); }
    const std::vector<Offset>& entities() const { return tree_.entities(); }

    void expectTheSame(Appends appends = Appends::withSizes) {
        ASSERT_EQ(differenceOf(model, plain), "");
        ASSERT_EQ(appendsAndRemoves(model, appends), appendsAndRemoves(plain, appends));
    }

    LoggingStore model;
    LoggingStore plain;

  private:
    RandomTree tree_;
    RandomTree plainTree_;
};

class ReferenceTest : public testing::TestWithParam<Extensions> {
  public:
    ~ReferenceTest() noexcept override = default;
};

INSTANTIATE_TEST_SUITE_P(Stores, ReferenceTest, testing::Values(Extensions::off, Extensions::on),
                         [](const auto& each) {
                             return each.param == Extensions::on ? "WithViews" : "WithoutViews";
                         });

TEST_P(ReferenceTest, CopiesWithinAStoreAreThoseMadeChildByChild) {
    for (unsigned seed = 0; seed < rounds(400); ++seed) {
        TwoStores stores(seed, GetParam());
        for (const Offset entity : stores.entities()) {
            const Offset copy = Metadata::cloneSubtree(&stores.model, entity, &stores.model);
            ASSERT_EQ(copy, reference::cloneAt(stores.plain, entity, stores.plain)) << "seed " << seed;
            if (stores.model.size() > 2000) break;
        }
        stores.expectTheSame();
        if (HasFatalFailure()) FAIL() << "seed " << seed;
    }
}

TEST_P(ReferenceTest, CopiesByOpenObjectsAreThoseMadeChildByChild) {
    for (unsigned seed = 0; seed < rounds(400); ++seed) {
        TwoStores stores(seed, GetParam());
        LoggingStore modelTarget(GetParam()), plainTarget;
        appendTo(modelTarget, RecordBytes().u8(9));
        appendTo(plainTarget, RecordBytes().u8(9));
        for (const Offset entity : stores.entities()) {
            const Offset copy = Metadata::openItem(&stores.model, entity)->clone(&modelTarget);
            ASSERT_EQ(copy, reference::cloneAt(stores.plain, entity, plainTarget)) << "seed " << seed;
        }
        stores.expectTheSame();
        ASSERT_EQ(differenceOf(modelTarget, plainTarget), "") << "seed " << seed;
        ASSERT_EQ(appendsAndRemoves(modelTarget), appendsAndRemoves(plainTarget)) << "seed " << seed;
    }
}

TEST_P(ReferenceTest, ErasingIsWhatErasingChildByChildIs) {
    for (unsigned seed = 0; seed < rounds(800); ++seed) {
        TwoStores stores(seed, GetParam());
        const Offset entity = Dice(seed).of(stores.entities());

        Metadata::openItem(&stores.model, entity)->erase();
        {
            const reference::Opened open(stores.plain, entity);
            reference::eraseEntity(stores.plain, entity);
        }

        stores.expectTheSame();
        if (HasFatalFailure()) FAIL() << "seed " << seed;
    }
}

TEST_P(ReferenceTest, ErasingAllIsWhatErasingChildByChildIs) {
    for (unsigned seed = 0; seed < rounds(400); ++seed) {
        TwoStores stores(seed, GetParam());

        Root(&stores.model, 0).erase();
        reference::eraseEntity(stores.plain, 0);

        stores.expectTheSame();
        if (HasFatalFailure()) FAIL() << "seed " << seed;
    }
}

TEST_P(ReferenceTest, EntitiesAreRemovableWhereEachChildSaysSo) {
    for (unsigned seed = 0; seed < rounds(400); ++seed) {
        TwoStores stores(seed, GetParam());
        Dice dice(seed);
        for (int i = 0; i < 2; ++i) {
            const Offset raised = dice.of(stores.entities());
            const std::uint32_t change = dice.oneIn(5) ? 0xFFFFFFFFu : 1u;
            for (LoggingStore* store : {&stores.model, &stores.plain})
                Record::addToOpenCount(store, raised, change);
        }
        for (const Offset entity : stores.entities()) {
            const reference::Opened open(stores.plain, entity);
            ASSERT_EQ(Metadata::openItem(&stores.model, entity)->isRemovable(),
                      reference::isRemovable(stores.plain, entity))
                << "seed " << seed << ", entity " << entity;
        }
    }
}

TEST_P(ReferenceTest, ImportsAreThoseMadeChildByChild) {
    for (unsigned seed = 0; seed < rounds(400); ++seed) {
        TwoStores stores(seed, GetParam());
        TwoStores types(seed + 1000, GetParam());
        const Offset set = Dice(seed).of(stores.sets());
        {
            const Owned<Set> open = Metadata::openSet(&stores.model, set);
            reference::PlainSet plain(stores.plain, set);
            for (const Offset member : types.entities()) {
                open->importChild(&types.model, member);
                plain.importChild(types.plain, member);
                if (stores.model.size() > 2000) break;
            }
        }
        stores.expectTheSame(Appends::anySize);
        types.expectTheSame();
        if (HasFatalFailure()) FAIL() << "seed " << seed;
    }
}

TEST_P(ReferenceTest, ImportsWithinAStoreAreThoseMadeChildByChild) {
    for (unsigned seed = 0; seed < rounds(400); ++seed) {
        TwoStores stores(seed, GetParam());
        const Offset set = Dice(seed).of(stores.sets());
        {
            const Owned<Set> open = Metadata::openSet(&stores.model, set);
            reference::PlainSet plain(stores.plain, set);
            for (const Offset member : stores.entities()) {
                open->importChild(&stores.model, member);
                plain.importChild(stores.plain, member);
                if (stores.model.size() > 1000) break;
            }
        }
        stores.expectTheSame(Appends::anySize);
        if (HasFatalFailure()) FAIL() << "seed " << seed;
    }
}

// Two objects on each of some sets, with all that a set can do in random order, so that each acts on what it
// knew and the other changed.
TEST_P(ReferenceTest, SetsAnswerAndChangeAsPlainOnesDo) {
    for (unsigned seed = 0; seed < rounds(800); ++seed) {
        TwoStores stores(seed, GetParam());
        Dice dice(seed);
        ModelBuilder build(stores.model), plainBuild(stores.plain);
        std::map<Offset, int> living;
        std::vector<Owned<Set>> open;
        std::vector<std::unique_ptr<reference::PlainSet>> plain;
        for (int i = 0; i < 4; ++i) {
            const Offset set = i % 2 == 1 ? open.back()->offset() : dice.of(stores.sets());
            open.push_back(Metadata::openSet(&stores.model, set));
            plain.push_back(std::make_unique<reference::PlainSet>(stores.plain, set));
        }
        for (int step = 0; step < 60; ++step) {
            const std::size_t which = dice.below(4);
            Set& set = *open[which];
            reference::PlainSet& other = *plain[which];
            const std::u16string name = randomName(dice), second = randomName(dice);
            switch (dice.below(8)) {
                case 0: {
                    const Offset child = build.primitive(kUnlisted, name);
                    plainBuild.primitive(kUnlisted, name);
                    ASSERT_EQ(set.addChild(child), other.addChild(child));
                    break;
                }
                case 1: {
                    const Offset child = build.container(kUnlisted, name);
                    plainBuild.container(kUnlisted, name);
                    ASSERT_EQ(set.addChild(child), other.addChild(child));
                    break;
                }
                case 2:
                    ASSERT_EQ(set.removeChild(name), other.removeChild(name));
                    break;
                case 3:
                    ASSERT_EQ(set.renameChild(name, second), other.renameChild(name, second));
                    break;
                case 4:
                    ASSERT_EQ(set.find(name), other.find(name));
                    ASSERT_EQ(set.childCount(), other.childCount());
                    break;
                case 5: {
                    const std::u16string path = name + u"." + second + (dice.oneIn(3) ? u"." : u"");
                    ASSERT_EQ(set.resolve(path), other.resolve(path));
                    break;
                }
                case 6: {
                    const std::uint32_t index = dice.below(12);
                    ASSERT_EQ(set.childAt(index), other.childAt(index));
                    break;
                }
                default:
                    if (!dice.oneIn(3)) break;
                    set.reloadChildren();
                    other.reloadChildren();
            }
        }
        open.clear();
        plain.clear();
        stores.expectTheSame(Appends::anySize);
        if (HasFatalFailure()) FAIL() << "seed " << seed;
    }
}

TEST_P(ReferenceTest, PathsLeadWhereAWalkFromObjectToObjectLeads) {
    for (unsigned seed = 0; seed < rounds(400); ++seed) {
        TwoStores stores(seed, GetParam());
        Dice dice(seed);
        std::vector<std::u16string> names;
        for (const Offset entity : stores.entities()) names.push_back(nameOf(stores.model, entity));
        names.push_back(u"missing");
        for (int i = 0; i < 200; ++i) {
            std::u16string path = dice.of(names);
            for (std::uint32_t parts = dice.below(4); parts > 0; --parts) path += u"." + dice.of(names);
            const Offset start = dice.oneIn(3) ? dice.of(stores.entities()) : 0;
            ASSERT_EQ(Metadata::resolvePath(&stores.model, start, path),
                      reference::PlainSet::resolvePath(stores.plain, start, path))
                << "seed " << seed;
        }
    }
}

// One primitive in two stores, with two objects on it that know of each other only what they read.
TEST_P(ReferenceTest, ValuesChangeAsPlainOnesDo) {
    const std::vector<std::uint32_t> types = {1, 3, 7, 11, 12, 14, 17, 19, 24};
    for (unsigned seed = 0; seed < rounds(4000); ++seed) {
        LoggingStore model(GetParam()), plain;
        Dice dice(seed);
        const std::uint32_t type = dice.of(types);
        const Offset p = ModelBuilder(model).primitive(kUnlisted, u"name", type);
        ModelBuilder(plain).primitive(kUnlisted, u"name", type);
        Primitive open(&model, p);
        reference::PlainPrimitive other(plain, p);
        std::string source(4000, '\0');
        for (char& each : source) each = static_cast<char>(dice.below(256));
        for (int step = 0; step < 40; ++step) {
            const std::uint32_t start = dice.below(6), count = dice.below(6);
            switch (dice.below(9)) {
                case 0:
                case 1:
                case 2:
                    ASSERT_EQ(open.writeValues(source.data(), start, count),
                              other.writeValues(source.data(), start, count));
                    break;
                case 3: {
                    std::string a(100, 'x'), b(100, 'x');
                    ASSERT_EQ(open.readValues(a.data(), start, count),
                              other.readValues(b.data(), start, count));
                    ASSERT_EQ(a, b);
                    break;
                }
                case 4:
                    ASSERT_EQ(open.resize(count), other.resize(count));
                    break;
                case 5:
                    if (dice.oneIn(3)) {
                        ASSERT_EQ(open.setUri(u"u:"), other.setUri(u"u:"));
                    } else {
                        ASSERT_EQ(open.setUri(nullptr), other.setUri(std::nullopt));
                    }
                    break;
                case 6:
                    ASSERT_EQ(open.setStructType(u"Some.Type"), other.setStructType(u"Some.Type"));
                    break;
                case 7:
                    if (dice.oneIn(2)) {
                        open.setLocale(u"de-at");
                        other.setLocale(u"de-at");
                    } else {
                        open.setLocale(nullptr);
                        other.setLocale(std::nullopt);
                    }
                    break;
                default:
                    open.setUnits(start);
                    other.setUnits(start);
            }
            // The count of the open object is in one store alone.
            Record::storeField(&plain, p, Record::field::openCount, 1u, false);
            ASSERT_EQ(differenceOf(model, plain), "") << "seed " << seed << ", step " << step;
            ASSERT_EQ(open.valueSize(), other.valueSize());
        }
        Record::storeField(&plain, p, Record::field::openCount, 0u, false);
    }
}

TEST_P(ReferenceTest, ElementsLaidOverAValueAreThoseWrittenOneByOne) {
    const std::vector<std::uint32_t> types = {1, 9, 11, 13, 15, 16, 17, 20, 24};
    for (unsigned seed = 0; seed < rounds(4000); ++seed) {
        LoggingStore model(GetParam()), plain;
        Dice dice(seed);
        const std::uint32_t type = dice.of(types);
        const std::uint32_t element = data::metadata::elementSize(type);
        const std::string old(dice.below(80), '\x55');  // also with bytes that make no whole element
        for (LoggingStore* store : {&model, &plain}) {
            ModelBuilder(*store).primitive(kUnlisted, u"name", type);
            Record::Entity(store, 0).setField(Record::field::valueSize, old.data(), old.size());
        }
        Primitive open(&model, 0);
        reference::PlainPrimitive other(plain, 0);
        std::vector<unsigned char> isGiven(dice.below(14));
        std::string elements(isGiven.size() * element, '\0');
        for (char& each : elements) each = static_cast<char>(dice.below(256));
        for (unsigned char& each : isGiven) each = dice.oneIn(2) ? 1 : 0;

        bool hasWritten = false;
        for (std::uint32_t i = 0; i < isGiven.size(); ++i)
            if (isGiven[i] != 0)
                hasWritten = other.writeValues(elements.data() + std::size_t{element} * i, i, 1, true);
        const bool hasLaid = open.overlayValues(reinterpret_cast<std::byte*>(elements.data()), isGiven);

        EXPECT_EQ(hasLaid, hasWritten);
        Record::storeField(&plain, 0, Record::field::openCount, 1u, false);
        ASSERT_EQ(differenceOf(model, plain), "") << "seed " << seed;
        ASSERT_EQ(open.valueSize(), other.valueSize()) << "seed " << seed;
    }
}

// Numbers of one value after another's change: each sequence of plain writes by a stale object, against one
// overlay by one as stale.
TEST_P(ReferenceTest, ElementsLaidOverAChangedValueAreThoseWrittenOneByOne) {
    for (unsigned seed = 0; seed < rounds(4000); ++seed) {
        LoggingStore model(GetParam()), sequence(GetParam());
        Dice dice(seed);
        const std::string old(dice.below(40), '\x55'), changed(dice.below(10) * 4, '\x66');
        std::vector<unsigned char> isGiven(dice.below(9));
        std::string elements(isGiven.size() * 4, '\0');
        for (char& each : elements) each = static_cast<char>(dice.below(256));
        for (unsigned char& each : isGiven) each = dice.oneIn(2) ? 1 : 0;
        std::uint32_t sizes[2] = {};
        for (LoggingStore* store : {&model, &sequence}) {
            ModelBuilder(*store).primitive(kUnlisted, u"name", 12);
            Record::Entity(store, 0).setField(Record::field::valueSize, old.data(), old.size());
            Primitive open(store, 0);
            Record::Entity(store, 0).setField(Record::field::valueSize, changed.data(), changed.size());
            if (store == &model) {
                open.overlayValues(reinterpret_cast<std::byte*>(elements.data()), isGiven);
            } else {
                for (std::uint32_t i = 0; i < isGiven.size(); ++i) {
                    // On an empty value the source is the base of the array.
                    const char* from = elements.data() + (open.count() == 0 ? 0 : std::size_t{4} * i);
                    if (isGiven[i] != 0) open.writeValues(from, i, 1);
                }
            }
            sizes[store == &model ? 0 : 1] = open.valueSize();
        }

        ASSERT_EQ(differenceOf(model, sequence), "") << "seed " << seed;
        ASSERT_EQ(sizes[0], sizes[1]) << "seed " << seed;
    }
}

// What display names a store has in the end, by a plain list of pairs.
TEST_P(ReferenceTest, DisplayNamesAreThoseOfAPlainList) {
    struct PlainName {
        std::u16string locale, text;
        std::uint64_t told;
    };
    for (unsigned seed = 0; seed < rounds(2000); ++seed) {
        LoggingStore store(GetParam());
        Dice dice(seed);
        const Offset entity = ModelBuilder(store).container(kUnlisted, u"c");
        std::vector<PlainName> stored;
        for (int opening = 0; opening < 5; ++opening) {
            const bool hasRecord = localeOf(store, entity) != noRecord();
            std::vector<PlainName> now;
            bool isLoaded = false, isDirty = false;
            const auto load = [&] {
                if (!hasRecord || !now.empty()) return;
                for (const PlainName& each : stored) now.push_back({each.locale, each.text, now.size()});
                isLoaded = true;
            };
            const auto find = [&](const std::u16string& locale) {
                return std::find_if(now.begin(), now.end(),
                                    [&](const PlainName& each) { return each.locale == locale; });
            };
            {
                Container open(&store, entity);
                for (int step = 0; step < 8; ++step) {
                    const std::u16string locale(1, static_cast<char16_t>(u'a' + dice.below(4)));
                    const std::u16string text = randomName(dice);
                    load();
                    const auto known = find(locale);
                    if (dice.oneIn(3)) {
                        ASSERT_EQ(open.localised(locale),
                                  hasRecord && known != now.end() ? known->text : u"");
                        ASSERT_EQ(open.localisedCount(), hasRecord ? now.size() : 0);
                    } else if (dice.oneIn(3)) {
                        const std::uint64_t told = known == now.end() ? ~std::uint64_t{0} : known->told;
                        ASSERT_EQ(open.setLocalised(nullptr, locale.c_str()), told) << "seed " << seed;
                        if (known == now.end()) continue;
                        now.erase(known);
                        isDirty = true;
                    } else {
                        const std::uint64_t told = known == now.end() ? now.size() : known->told;
                        ASSERT_EQ(open.setLocalised(text.c_str(), locale.c_str()), told) << "seed " << seed;
                        if (known == now.end())
                            now.push_back({locale, text, told});
                        else
                            known->text = text;
                        isDirty = true;
                    }
                }
            }
            if (isDirty && !now.empty()) stored = now;
            EXPECT_TRUE(isLoaded || now.empty() || !hasRecord);
            RecordBytes payload;
            for (const PlainName& each : stored) payload.text(each.locale).text(each.text);
            const RecordBytes expected = RecordBytes().u8(5).u32(payload.size()).raw(payload.bytes());
            ASSERT_EQ(recordAt(store, localeOf(store, entity)), stored.empty() ? RecordBytes() : expected);
        }
    }
}

// Defaults by two objects on one table, against a list of pairs and what each knew of it.
TEST_P(ReferenceTest, DefaultsAreThoseOfAPlainListOfPairs) {
    for (unsigned seed = 0; seed < rounds(2000); ++seed) {
        LoggingStore store(GetParam());
        Dice dice(seed);
        const Offset table = ModelBuilder(store).table(kUnlisted, u"t");
        Table first(&store, table), second(&store, table);
        std::vector<std::uint32_t> pairs;
        std::map<std::int32_t, std::uint32_t> known[2];
        bool hasDirectory[2] = {};
        for (int step = 0; step < 30; ++step) {
            const std::size_t which = dice.below(2);
            Table& open = which == 0 ? first : second;
            const std::uint32_t unit = 0x1001 * (1 + dice.below(6)) + 0x80000000u * dice.below(2);
            const std::int32_t key = static_cast<std::int32_t>(unit & ~0xFFFu);
            auto& index = known[which];
            if (dice.oneIn(2)) {
                const auto entry = index.find(key);
                const std::uint32_t type = entry == index.end() ? 0 : pairs.at(2 * entry->second + 1);
                ASSERT_EQ(open.defaultType(key), type) << "seed " << seed;
                ASSERT_EQ(open.defaultKeys().size(), index.size());
                continue;
            }
            if (!hasDirectory[which])  // it is adopted, with the first pair of each key
                for (std::uint32_t i = 0; i < pairs.size(); i += 2)
                    index.emplace(static_cast<std::int32_t>(pairs[i] & ~0xFFFu), i / 2);
            hasDirectory[which] = true;
            const std::uint32_t next = static_cast<std::uint32_t>(index.size());
            const std::uint32_t pair = index.emplace(key, next).first->second;
            pairs.resize(std::max<std::size_t>(pairs.size(), 2 * pair + 2));
            pairs[2 * pair] = unit;
            pairs[2 * pair + 1] = 1 + dice.below(24);
            ASSERT_TRUE(open.addDefault(unit, pairs[2 * pair + 1]));
            ASSERT_EQ(recordAt(store, recordAt(store, table).u32At(22)), listOf(pairs)) << "seed " << seed;
        }
    }
}

}  // namespace
}  // namespace norvane::platform::test
