// The public model said again in plain containers: what a store holds, and what each open handle remembers.
// It knows no records; random programs compare the two.
#pragma once

#include <algorithm>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace norvane::platform::test::plain {

enum class Sort { root, primitive, table, container };

using Id = std::size_t;
using Text = std::u16string;
using Locales = std::vector<std::pair<Text, Text>>;

struct Entity {
    Entity(Sort itsSort, Text itsName) : sort(itsSort), name(std::move(itsName)) {}

    Sort sort;
    Text name;
    std::optional<Id> parent;
    bool isAlive = true;
    bool hasList = false;
    std::uint32_t open = 0;
    std::uint8_t flags = 0;
    std::uint32_t kind = 0;  // of containers
    std::uint32_t type = 0;  // of primitives
    std::vector<unsigned char> value;
    std::vector<Id> children;
    std::optional<Locales> locales;
};

// What a handle read when it was opened, with its own changes.
struct Memory {
    Id id = 0;
    Text name;
    std::optional<Id> parent;
    std::map<Text, Id> index;
    bool knowsList = false;
    bool knowsLocales = false;
    bool isDirty = false;
    Locales entries;
    std::uint32_t valueSize = 0;
    bool hasUri = false;
};

class Store {
  public:
    Store() { entities_.emplace_back(Sort::root, u"root"); }

    static constexpr Id kRoot = 0;

    Entity& at(Id id) { return entities_[id]; }
    bool isSet(Id id) { return at(id).isAlive && at(id).sort != Sort::primitive; }
    bool isContainer(Id id) { return at(id).isAlive && at(id).sort == Sort::container; }
    bool isTable(Id id) { return at(id).isAlive && at(id).sort == Sort::table; }
    bool isProperty(Id id) {
        return at(id).isAlive && at(id).sort != Sort::container && at(id).sort != Sort::root;
    }

    Id make(Entity entity) {
        entities_.push_back(std::move(entity));
        return entities_.size() - 1;
    }

    std::optional<Id> childOf(Id set, const Text& name) {
        for (Id child : at(set).children)
            if (at(child).name == name) return child;
        return {};
    }

    // A walk that meets a primitive with one part left ends there; one that meets what is gone leads nowhere.
    std::optional<Id> walk(Id start, std::u16string_view path) {
        Id current = start;
        while (true) {
            const auto [part, rest, isLast] = cut(path);
            if (!at(current).isAlive) return {};
            if (!isSet(current)) return isLast ? std::optional(current) : std::nullopt;
            const auto next = childOf(current, part);
            if (!next) return {};
            if (isLast) return next;
            current = *next;
            path = rest;
        }
    }

    std::optional<Id> resolve(const Memory& handle, std::u16string_view path) {
        const auto [part, rest, isLast] = cut(path);
        const auto first = handle.index.find(part);
        if (first == handle.index.end()) return {};
        return isLast ? std::optional(first->second) : walk(first->second, rest);
    }

    Memory open(Id id) {
        Memory memory;
        memory.id = id;
        memory.name = at(id).name;
        memory.parent = at(id).parent;
        index(memory);
        memory.knowsLocales = at(id).locales.has_value();
        memory.valueSize = static_cast<std::uint32_t>(at(id).value.size());
        memory.hasUri = at(id).sort == Sort::primitive && (at(id).flags & 8) != 0;
        ++at(id).open;
        return memory;
    }

    void index(Memory& memory) {
        memory.index.clear();
        memory.knowsList = at(memory.id).hasList;
        for (Id child : at(memory.id).children) memory.index.emplace(at(child).name, child);
    }

    void close(const Memory& memory) {
        --at(memory.id).open;
        if (memory.isDirty && !memory.entries.empty()) at(memory.id).locales = memory.entries;
    }

    // Into the list; what remembers the children is the caller's.
    void list(Id parent, Id child) {
        at(child).parent = parent;
        at(parent).children.push_back(child);
        at(parent).hasList = true;
    }

    bool addThrough(Memory& handle, Id child) {
        if (!handle.index.emplace(at(child).name, child).second) return false;
        list(handle.id, child);
        handle.knowsList = true;
        return true;
    }

    bool isClosed(Id id) {
        const auto& children = at(id).children;
        return at(id).open == 0 &&
               std::all_of(children.begin(), children.end(), [this](Id each) { return isClosed(each); });
    }

    void kill(Id id) {
        at(id).isAlive = false;
        for (Id child : at(id).children) kill(child);
    }

    bool removeThrough(Memory& handle, const Text& name) {
        const auto found = handle.index.find(name);
        if (found == handle.index.end()) return false;
        const Id child = found->second;
        if (at(child).isAlive) {
            if ((at(child).flags & 2) != 0 || !isClosed(child)) return false;
            kill(child);
            auto& children = at(handle.id).children;
            children.erase(std::find(children.begin(), children.end(), child));
        }
        handle.index.erase(found);
        return true;
    }

    bool renameThrough(const Memory& handle, const Text& newName) {
        if (!handle.parent || !isSet(*handle.parent) || *handle.parent == kRoot) return false;
        if (at(handle.id).sort == Sort::container && !isContainer(*handle.parent)) return false;
        const auto child = childOf(*handle.parent, handle.name);
        if (!child || childOf(*handle.parent, newName) || (at(*child).flags & 2) != 0) return false;
        at(*child).name = newName;
        return true;
    }

    Id clone(Id id) {
        Entity copy = at(id);
        copy.open = 0;
        copy.parent.reset();
        copy.children.clear();
        const Id made = make(copy);
        const std::vector<Id> children = at(id).children;
        for (Id child : children) {
            const Id childsCopy = clone(child);
            at(childsCopy).parent = made;
            at(made).children.push_back(childsCopy);
        }
        return made;
    }

    // By what a handle knows: it may have been opened before the entity had children or display names.
    Id cloneThrough(const Memory& handle) {
        const Id made = clone(handle.id);
        if (!handle.knowsLocales) at(made).locales.reset();
        if (handle.knowsList) return made;
        at(made).children.clear();
        at(made).hasList = false;
        return made;
    }

    void touch(Id id) {
        for (bool isStart = true; at(id).parent; isStart = false) {
            const bool isInherited = (at(id).flags & 4) != 0;
            if (!isInherited && !isStart) return;
            at(id).flags &= static_cast<std::uint8_t>(~4);
            id = *at(id).parent;
        }
    }

  private:
    struct Cut {
        Text part;
        std::u16string_view rest;
        bool isLast;
    };

    static Cut cut(std::u16string_view path) {
        const std::size_t dot = path.find(u'.');
        if (dot == path.npos) return {Text(path), {}, true};
        return {Text(path.substr(0, dot)), path.substr(dot + 1), false};
    }

    std::deque<Entity> entities_;
};

// The value of a primitive as writes through a handle leave it. The handle's size decides; where the record
// turns out to be shorter than it believes, the record's does.
class ValueOf {
  public:
    ValueOf(std::vector<unsigned char>& value, Memory& handle, std::uint32_t elementSize)
        : value_(value), handle_(handle), element_(elementSize) {}

    bool write(const unsigned char* source, std::uint32_t start, std::uint32_t count) {
        if (count == 0 || handle_.hasUri) return false;
        const std::size_t position = std::size_t{start} * element_;
        const std::size_t size = std::size_t{count} * element_;
        const bool isWholeArray = existing() == 0;  // what the host means by the source, by what it can know
        if (position + size <= existing() * element_) {
            if (position + size <= value_.size()) {
                std::copy(source, source + size, value_.begin() + static_cast<std::ptrdiff_t>(position));
                return true;
            }
            handle_.valueSize = static_cast<std::uint32_t>(value_.size());
        }
        std::vector<unsigned char> grown(position + size);
        const std::size_t kept =
            existing() == 0 ? 0 : std::min(std::size_t{handle_.valueSize}, value_.size());
        std::copy_n(value_.begin(), std::min(kept, grown.size()), grown.begin());
        std::copy_n(source + (isWholeArray ? position : 0), size,
                    grown.begin() + static_cast<std::ptrdiff_t>(position));
        set(std::move(grown));
        return true;
    }

    bool resize(std::uint32_t count) {
        if (handle_.hasUri) return false;
        set(std::vector<unsigned char>(std::size_t{count} * element_));
        return true;
    }

    // Null when the range is not all there.
    const unsigned char* read(std::uint32_t start, std::uint32_t count) const {
        if (count == 0 || handle_.hasUri || start + count > existing()) return nullptr;
        if ((std::size_t{start} + count) * element_ > value_.size()) return nullptr;
        return value_.data() + std::size_t{start} * element_;
    }

    std::uint32_t count() const { return handle_.hasUri ? 0 : existing(); }

  private:
    std::uint32_t existing() const { return handle_.valueSize / element_; }
    void set(std::vector<unsigned char> value) {
        value_ = std::move(value);
        handle_.valueSize = static_cast<std::uint32_t>(value_.size());
    }

    std::vector<unsigned char>& value_;
    Memory& handle_;
    std::uint32_t element_;
};

}  // namespace norvane::platform::test::plain
