// Open objects that have children.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "model/ChildHashes.h"
#include "model/ChildIndex.h"
#include "model/Item.h"
#include "model/ListedNames.h"
#include "records/NewEntity.h"

namespace norvane::platform::data::Metadata {

// An item with children: a name index over the entities in its list record. The list is the truth for the
// order; the index is what this object answers lookups from, as it was at opening, with this object's own
// changes. Children are kinds 1, 2 and 4; of equal names the first is found, and reserved names never are.
class Set : public Item {
  public:
    Set* asSet() override { return this; }
    // No other object is open on this record, and none at all on anything below.
    bool isRemovable() override;
    // Localised strings and children go, and the record no longer leads to them.
    void erase() override;

    // A direct child's offset, or BADOFF. The name is matched whole: a "." in it means nothing.
    std::uint32_t find(std::u16string_view name);
    // Remembers the children as they are now, if it was `unseen` so far.
    void beSeen() override;
    // The offset at the end of a dotted path, or BADOFF; see `resolvePath` for paths that run into a
    // primitive.
    std::uint32_t resolve(std::u16string_view path);
    // Entry `index` of the stored list, BADOFF past its end.
    std::uint32_t childAt(std::uint32_t index);
    // How many names the index holds; equal names count once.
    std::uint32_t childCount();
    // The stored list, read once.
    std::vector<std::uint32_t> children();
    // What a walk from 0 to `childCount` by `childAt` meets, with the list read once: where siblings share a
    // name, that is less than the list.
    std::vector<std::uint32_t> countedChildren();

    // Lists an entity that exists as the last child and sets its parent. False, with nothing changed, when it
    // is no entity that can be a child, its name is taken, or this set's own record is gone.
    bool addChild(std::uint32_t offset);
    // Whether a new entity of that name can be listed: no child has it, and this set's own record is there.
    bool hasRoomFor(std::u16string_view name);
    // Stores a new entity as the last child, which this set has room for, and gives its offset.
    std::uint32_t appendChild(Record::NewEntity& child, std::u16string_view name);
    // Deletes a direct child and all below it. False, with nothing changed, when there is none of that name,
    // or it is fixed, or it or anything below is open elsewhere.
    bool removeChild(std::u16string_view name);
    // False when the new name is taken or too long, the old one missing, or the child fixed. Open objects on
    // the child keep the old name.
    bool renameChild(std::u16string_view oldName, std::u16string_view newName);
    // Copies a child of another set in and marks all of the copy as fixed and inherited. A child that is here
    // under that name already wins, and nothing is copied.
    void importChild(IDataStore* sourceStore, std::uint32_t offset);

    // Reads the list anew, for a record whose children were changed through another object.
    void reloadChildren();
    // Deletes all children without asking whether they may go.
    void eraseChildren();

  protected:
    Set() noexcept;

    // For a set that was made in this operation, and that nobody else has met. Until it is seen, what the
    // store says of its children is what this object would remember, so it does not, where the store gives
    // views.
    void beUnseen();
    // Takes over the children of the record; an object opened as a handle indexes them.
    void bindChildren(const Record::View& record) { childrenRecord_ = record.load(Record::field::children); }
    void indexChildren(Opening opening);
    std::uint32_t childrenRecord() const { return childrenRecord_; }

  private:
    void loadChildren();
    void loadList(const Record::View& list);
    void settle();
    std::uint32_t lookUp(std::u16string_view name);
    bool isHere() const { return isUnseen_ || isStored(); }
    std::uint32_t findUnseen(std::u16string_view name);
    void remember(std::u16string_view name, std::uint32_t offset);
    void rememberUnseen(std::u16string_view name, std::uint32_t offset);
    void hashUnseen();
    void rememberAll();
    void insertNew(std::u16string_view name, std::uint32_t offset);
    void forget(std::u16string_view name);
    void dropIndex();
    void link(std::uint32_t offset);
    bool adoptList();

    // The children are those that were listed, until an index is made of them, or else those of the shared
    // index, if there is one; with what stands in this object's own laid over it: BADOFF there hides a child.
    // None of them means anything as long as this is not `indexed_`, or is unseen: then the store is asked.
    ListedNames listed_;
    std::shared_ptr<const ChildIndex> shared_;
    ChildIndex own_;
    std::uint32_t count_ = 0;
    std::uint32_t childrenRecord_;
    bool indexed_ = true;  // a new set has no children: its empty index is complete
    bool isUnseen_ = false;
    std::unique_ptr<ChildHashes> unseen_;  // its children, once they are many
};

// The set over the record that everything hangs below. It has no parent, no path, and is never copied.
class Root final : public Set {
  public:
    // Opens the root record there.
    Root(IDataStore* store, std::uint32_t offset, Opening opening = Opening::handle);
    // Appends a new root record.
    Root(IDataStore* store, std::u16string_view name);

    // Copies nothing; BADOFF.
    std::uint32_t clone(IDataStore* target) override;
};

}  // namespace norvane::platform::data::Metadata
