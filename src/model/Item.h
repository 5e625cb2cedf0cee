// The base of every open object.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "records/NameMap.h"
#include "records/Owned.h"
#include "records/Records.h"
#include "records/ShortText.h"

namespace norvane::platform::data::Metadata {

class Set;

// Why an object is opened. A `handle` outlives the operation: it counts in its record's open count, and it
// remembers the children as they are now. A `transient` lives and dies inside one operation, in which no code
// of the host runs, or is told before it does (`beSeen`): it writes no count, and looks at the children when
// it is asked.
enum class Opening { handle, transient };

// What is said in one locale. `index` is the number that was told when the entry was made; it is not kept up
// to date when entries before it go.
struct LocalisedEntry {
    std::u16string locale;
    std::u16string text;
    std::uint32_t index = 0;
};

// An open object on one entity record. It is not a copy of the record: it holds the record's offset, what it
// read when it was opened (name, parent, satellites), and the localised strings, which are the only thing
// that is changed in memory and stored when the object closes. All else is read from the record at each
// question, and objects on the same record do not see each other's memory.
//
// An object on a record that is absent, cut short, or of another kind is inert: it has an empty name, no
// children and no value, and it writes nothing, not even an open count.
//
// Opening takes no guard; the caller holds the store's.
class Item {
  public:
    Item(const Item&) = delete;
    Item& operator=(const Item&) = delete;
    // Lowers the open count, then stores changed localised strings. What the store throws leaves from here,
    // unless another exception is under way.
    virtual ~Item() noexcept(false);

    // Whether nothing but this object has the entity, or anything below it, open.
    virtual bool isRemovable() = 0;
    // Removes everything that the record refers to, ahead of the removal of the record itself, which stays.
    virtual void erase() = 0;
    // Copies the entity and all below it into `target`, which may be its own store. The copy's parent is
    // still the source's: whoever lists the copy sets it. Gives the copy's offset.
    virtual std::uint32_t clone(IDataStore* target) = 0;

    static void* operator new(std::size_t size);
    static void operator delete(void* object, std::size_t size);

    IDataStore* store() const { return store_; }
    std::uint32_t offset() const { return offset_; }
    // The parent's offset when this object was opened.
    std::uint32_t parent() const { return parent_; }
    // A NUL stands behind it.
    std::u16string_view name() const { return name_.view(); }
    bool isInert() const { return inert_; }

    // The dotted path below the root: the parents' names as stored now, this one's as it was at opening. It
    // begins where a parent is missing, or was met before.
    std::u16string path() const;

    std::uint8_t flags() const;
    void setFlags(std::uint8_t bits);
    void clearFlags(std::uint8_t bits);
    // Notes a change: clears the inherited bit here and upwards, to the first ancestor that lacks it. The
    // entity without a parent (the root) is never changed.
    void touch();

    // Adds or replaces the text of a locale, or takes it out when `text` is null; held until the object
    // closes. Gives the entry's index, or all ones when there was nothing to take out. Taking out the last
    // string does not reach the store: the record keeps its content, and the string is back at the next
    // opening.
    std::uint64_t setLocalised(const tWChar* text, const tWChar* locale);
    // The index told by the entry of that locale, or -1; -1 as long as the entity has no locale record.
    std::int32_t localisedIndex(std::u16string_view locale);
    // What is stored, together with what this object changed; nothing while there is no locale record.
    std::uint32_t localisedCount();
    std::u16string localeAt(std::uint32_t index);
    std::u16string textAt(std::uint32_t index);
    std::u16string localised(std::u16string_view locale);

    void eraseLocale();

    // How many exceptions were under way when this object was made.
    int exceptionsAtBirth() const { return exceptionsAtBirth_; }
    // Others may look at the store from here on: counts in the record, if it did not yet.
    virtual void beSeen();
    // This object if it has children, else null.
    virtual Set* asSet() { return nullptr; }

    // Closing will write nothing: the open count stays raised, and unsaved strings are lost.
    void abandon() { abandoned_ = true; }

  protected:
    Item() noexcept;

    // Takes over what every entity has, which is looked for where the record is a whole one of that kind.
    // False, and inert, unless it is.
    bool bind(IDataStore* store, std::uint32_t offset, Record::Kind kind, const Record::View& record) {
        return bind(store, offset, kind, record, record.nameSection());
    }
    bool bind(IDataStore* store, std::uint32_t offset, Record::Kind kind, const Record::View& record,
              Record::Section name);
    void bindNew(IDataStore* store, std::uint32_t offset, std::u16string_view name);
    void raiseOpenCount();
    // The same with a look at the record already taken.
    void raiseOpenCount(const Record::View& record);
    // The count in the record, as if this object were in it.
    std::uint32_t openCount() const;
    // False for an inert object, and once the record was removed behind this one.
    bool isStored() const;
    std::uint32_t localeRecord() const { return localeRecord_; }

  private:
    // The strings that are in memory.
    struct Localised {
        NameMap<LocalisedEntry*> index;
        std::vector<LocalisedEntry*> entries;
        bool isChanged = false;
    };

    LocalisedEntry* entryOf(std::u16string_view locale) const;
    bool loadIfStored();
    void loadLocalised();
    void addEntry(std::u16string_view locale, std::u16string_view text);
    void removeEntry(LocalisedEntry* entry);
    void dropEntries();
    void lowerOpenCount();
    void closeWithStrings();
    void storeLocalised();
    bool isLocale(std::uint32_t offset) const;
    std::uint32_t storedLocaleRecord() const;

    IDataStore* store_ = nullptr;
    std::uint32_t offset_;
    std::uint32_t parent_;
    std::uint32_t localeRecord_;
    Record::ShortText name_;
    std::unique_ptr<Localised> localised_;  // made on first use: most entities have none
    int exceptionsAtBirth_;
    bool inert_ = true;
    bool counted_ = false;
    bool abandoned_ = false;
};

}  // namespace norvane::platform::data::Metadata
