#pragma once

#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "norvane/platform/core/storage/datastore/MemoryDataStore.h"
#include "norvane/platform/data/structure/ContainerKind.h"
#include "norvane/platform/data/structure/IContainer.h"
#include "norvane/platform/data/structure/IContainerFilter.h"
#include "norvane/platform/data/structure/IContainerFrontEnd.h"
#include "norvane/platform/data/structure/ILink.h"
#include "qvt/classes.hpp"
#include "qvt/property.hpp"

namespace qvt {

using data::structure::IContainer;

/// A store in memory, which goes with its object.
using MemoryStore = core::storage::datastore::MemoryDataStore;

namespace detail {

template <class T>
struct ValueOf {
    using type = std::conditional_t<std::is_convertible_v<const T&, std::string_view>, std::string, T>;
};
template <class T, class Allocator>
struct ValueOf<std::vector<T, Allocator>> {
    using type = T;
};
template <class T, std::size_t N>
struct ValueOf<std::array<T, N>> {
    using type = T;
};
template <class T, std::size_t N>
struct ValueOf<std::span<T, N>> {
    using type = std::remove_const_t<T>;
};

}  // namespace detail

/// What a new property can be made of: a value, a text, or a vector, an array or a span of values.
template <class T>
concept NewValue = Value<typename detail::ValueOf<std::decay_t<T>>::type>;

namespace detail {

template <class V>
bool give(const Property& property, const V& value) {
    using Element = typename ValueOf<std::decay_t<V>>::type;
    if constexpr (std::is_convertible_v<const V&, std::string_view>)
        return property.assign(std::string_view(value));
    else if constexpr (std::same_as<V, std::vector<bool>> || Value<V>)
        return property.assign(value);
    else
        return property.assign(std::span<const Element>(value));
}

}  // namespace detail

/// The members of a table. As with `Property`, an empty one refuses everything.
class Table {
  public:
    Table() = default;
    /// Of any handle on a property: empty if that is null or a primitive.
    explicit Table(SharedPtr<IProperty> handle)
        : handle_(std::move(handle)), table_(ITable::to(handle_.get())) {}
    /// The same object, owned together with this handle.
    explicit Table(const SharedPtr<ITable>& handle)
        : Table(handle ? SharedPtr<IProperty>(handle, handle->property()) : SharedPtr<IProperty>()) {}

    /// True if there is a table.
    explicit operator bool() const { return table_; }
    /// The library's own interface, borrowed. Null for an empty one.
    ITable* get() const { return table_; }
    /// The same object as a property.
    Property property() const { return Property(handle_); }
    /// As it was when the handle was opened.
    std::string name() const { return handle_ ? utf8(handle_->name()) : std::string(); }
    /// The dotted path from below the root.
    std::string path() const { return handle_ ? utf8(handle_->path()) : std::string(); }
    /// The classes, joined by ";".
    std::string className() const { return table_ ? utf8(table_->className()) : std::string(); }

    /// In the order in which they were added. The table stays open for as long as the range lives.
    Properties members() const { return table_ ? Properties(table_->properties()) : Properties(); }
    /// At a dotted path below this table.
    Property find(const Text& path) const {
        return table_ ? Property(table_->find(path.wide())) : Property();
    }
    /// As `find`.
    Property operator[](const Text& path) const { return find(path); }

    /// A new member with its value. Empty, and nothing is made, if the name is taken.
    template <NewValue V>
    Property make(const Text& name, const V& value, Unit unit = {}) const {
        using Element = typename detail::ValueOf<std::decay_t<V>>::type;
        Property made = makeEmpty(name, typeOf<Element>(), unit);
        if (made) detail::give(made, value);
        return made;
    }
    /// A new member of a `tDataType`, without a value.
    Property makeEmpty(const Text& name, std::uint32_t type, Unit unit = {}) const {
        return table_ ? Property(table_->makePrimitive(name.wide(), type, unit.id())) : Property();
    }
    /// A new table as member. Empty if the name is taken.
    Table makeTable(const Text& name) const {
        return table_ ? Table(table_->makeTable(name.wide(), nullptr)) : Table();
    }
    /// Empty also for an empty class.
    Table makeTable(const Text& name, const Class& of) const {
        return table_ && of ? Table(table_->makeTable(name.wide(), of.get())) : Table();
    }
    /// A member and all below it. False if there is none, or if it came from a class, or while it or
    /// anything below it is open.
    bool remove(const Text& name) const { return table_ && table_->remove(name.wide()); }
    /// True if this table names the classes, or has members like theirs.
    bool conforms(const Class& to) const { return table_ && table_->conforms(to.get()); }

  private:
    SharedPtr<IProperty> handle_;
    ITable* table_ = nullptr;
};

inline Table Property::table() const { return isTable() ? Table(handle_) : Table(); }

/// A handle on a node, a group or a link. What is said of `Property` holds here, too: an empty one refuses
/// everything, and handles answer from what they read when they were opened; `fresh` opens one anew.
class Container {
  public:
    /// The child containers of one container.
    using Range = qvt::Range<Container, data::structure::IContainerFilter>;

    Container() = default;
    /// Empty if the handle is null.
    explicit Container(SharedPtr<IContainer> handle) : handle_(std::move(handle)) {}

    /// True if there is a container.
    explicit operator bool() const { return static_cast<bool>(handle_); }
    /// The library's own handle, for all that is not here.
    const SharedPtr<IContainer>& handle() const { return handle_; }
    /// The same, borrowed. Null for an empty one.
    IContainer* get() const { return handle_.get(); }

    /// As it was when the handle was opened.
    std::string name() const { return handle_ ? utf8(handle_->name()) : std::string(); }
    /// The dotted path from below the root.
    std::string path() const { return handle_ ? utf8(handle_->path()) : std::string(); }
    /// The classes, joined by ";".
    std::string className() const { return handle_ ? utf8(handle_->className()) : std::string(); }
    /// Whether it is a node; asks the store.
    bool isNode() const { return is(data::structure::kNode); }
    /// Whether it is a group; asks the store.
    bool isGroup() const { return is(data::structure::kGroup); }
    /// Whether it is a link; asks the store.
    bool isLink() const { return is(data::structure::kLink); }
    /// True if this container names the classes, or has members like theirs.
    bool conforms(const Class& to) const { return handle_ && handle_->conforms(to.get(), false); }

    /// Empty directly below the root.
    Container parent() const { return handle_ ? Container(handle_->parent()) : Container(); }
    /// Another handle on the same container, which sees the store as it is now.
    Container fresh() const {
        return handle_ ? Container(handle_->find(core::string::WideString())) : Container();
    }
    /// At a dotted path below this one. Links are not followed.
    Container find(const Text& path) const {
        return handle_ ? Container(handle_->find(path.wide())) : Container();
    }
    /// At a dotted path below this one, through tables, too.
    Property property(const Text& path) const {
        return handle_ ? Property(handle_->findProperty(path.wide())) : Property();
    }
    /// As `property`.
    Property operator[](const Text& path) const { return property(path); }
    /// True if the path leads to anything: a container or a property.
    bool contains(const Text& path) const { return handle_ && handle_->contains(path.wide()); }

    /// The direct children, in the order in which they were added.
    Range containers() const { return handle_ ? Range(handle_->containers()) : Range(); }
    /// The properties among them.
    Properties properties() const { return handle_ ? Properties(handle_->properties()) : Properties(); }

    /// A new child. Empty, and nothing is made, if a child has that name; with a class also if that is empty.
    Container makeNode(const Text& name) const { return makeChild(data::structure::kNode, name, nullptr); }
    /// The same with the members of a class.
    Container makeNode(const Text& name, const Class& of) const {
        return of ? makeChild(data::structure::kNode, name, of.get()) : Container();
    }
    /// A new group, as `makeNode` makes a node.
    Container makeGroup(const Text& name) const { return makeChild(data::structure::kGroup, name, nullptr); }
    /// The same with the members of a class.
    Container makeGroup(const Text& name, const Class& of) const {
        return of ? makeChild(data::structure::kGroup, name, of.get()) : Container();
    }
    /// `target` is the dotted path of a container from a root; nothing need be there.
    Container makeLink(const Text& name, const Text& target) const {
        Container made = makeChild(data::structure::kLink, name, nullptr);
        made.setTarget(target);
        return made;
    }
    /// A new table. Empty, and nothing is made, if a child has that name.
    Table makeTable(const Text& name) const {
        return handle_ ? Table(handle_->makeTable(name.wide(), nullptr)) : Table();
    }
    /// The same with the members of a class; empty also if that is empty.
    Table makeTable(const Text& name, const Class& of) const {
        return handle_ && of ? Table(handle_->makeTable(name.wide(), of.get())) : Table();
    }

    /// A new property with its value, as direct child. Empty, and nothing is made, if the name leads to
    /// something; with a unit the name has no dots.
    template <NewValue V>
    Property make(const Text& name, const V& value, Unit unit = {}) const {
        using Element = typename detail::ValueOf<std::decay_t<V>>::type;
        Property made = makeEmpty(name, typeOf<Element>(), unit);
        if (made) detail::give(made, value);
        return made;
    }
    /// A new property of a `tDataType`, without a value.
    Property makeEmpty(const Text& name, std::uint32_t type, Unit unit = {}) const;
    /// A new struct value of a class, without a value: see `StructMap`.
    Property makeStruct(const Text& name, const Class& of) const {
        if (!of) return {};
        Property made = makeEmpty(name, data::metadata::kStruct);
        if (made) made.primitive()->setStructType(Text(of.name()).wide());
        return made;
    }

    /// A direct child and all below it. False if there is none, or if it came from a class, or while it or
    /// anything below it is open.
    bool remove(const Text& name) const { return handle_ && handle_->remove(name.wide()); }
    /// False directly below the root, for what came from a class, and where a sibling has that name. This
    /// handle keeps the old name.
    bool rename(const Text& name) const { return handle_ && handle_->rename(name.wide()); }
    /// Copies a container or a property of any store into this container.
    bool add(const Container& item) const { return handle_ && item && handle_->add(item.handle()); }
    /// The same for a property. Both are false if the name leads to something here.
    bool add(const Property& item) const { return handle_ && item && handle_->add(item.handle()); }

    /// In one locale, as "de-de". Empty if there is none.
    std::string displayName(const Text& locale) const {
        return handle_ ? utf8(handle_->localised(locale.wide())) : std::string();
    }
    /// Reaches the store when this handle closes.
    void setDisplayName(const Text& locale, const Text& text) const {
        if (handle_) handle_->setLocalised(locale.wide(), text.wide());
    }

    /// The path that a link leads to; empty for all else.
    std::string target() const {
        std::string path;
        withLink([&](data::structure::ILink& link) { path = utf8(link.target()); });
        return path;
    }
    /// False if it is no link.
    bool setTarget(const Text& path) const {
        return withLink([&](data::structure::ILink& link) { link.setTarget(path.wide()); });
    }
    /// What a link leads to, in its own store. Empty if that is nothing or a property.
    Container resolve() const {
        Container found;
        withLink([&](data::structure::ILink& link) { found = Container(link.resolve(nullptr)); });
        return found;
    }

  private:
    bool is(std::uint32_t kind) const { return handle_ && handle_->kind() == kind; }
    Container makeChild(std::uint32_t kind, const Text& name, data::metadata::ISchema* schema) const {
        return handle_ ? Container(handle_->makeContainer(kind, name.wide(), schema)) : Container();
    }
    // Handles of the front end have no facets; another handle has, and sees what the store has now.
    template <class Use>
    bool withLink(Use use) const {
        const Container facets = fresh();
        data::structure::ILink* link = data::structure::ILink::to(facets.get());
        if (link) use(*link);
        return link;
    }

    SharedPtr<IContainer> handle_;
};

/// The child containers of one container, for a `for` loop.
using Containers = Container::Range;

/// The container of this name directly below the root of a store. It is made, as a group, if there is none.
inline Container top(Store& store, const Text& name) {
    return Container(data::structure::IContainerFrontEnd::toplevel(&store, name.wide()));
}

/// The container at a dotted path from the root. Makes nothing.
inline Container find(Store& store, const Text& path) {
    return Container(data::structure::IContainerFrontEnd::find(&store, path.wide()));
}

// Only tables give units to what they make; so it is made in one elsewhere and copied.
inline Property Container::makeEmpty(const Text& name, std::uint32_t type, Unit unit) const {
    if (!handle_) return {};
    if (!unit) return Property(handle_->makePrimitive(name.wide(), type));
    if (handle_->contains(name.wide()) || name.wide().rfind(u'.') >= 0) return {};
    MemoryStore elsewhere;
    const Property model = top(elsewhere, "t").makeTable("t").makeEmpty(name, type, unit);
    return add(model) ? property(name) : Property();
}

}  // namespace qvt
