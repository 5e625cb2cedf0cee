#pragma once

#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "norvane/platform/data/metadata/IPrimitive.h"
#include "norvane/platform/data/metadata/IProperty.h"
#include "norvane/platform/data/metadata/IPropertyFilter.h"
#include "norvane/platform/data/metadata/ITable.h"
#include "qvt/guard.hpp"
#include "qvt/range.hpp"
#include "qvt/unit.hpp"
#include "qvt/values.hpp"

namespace qvt {

using core::memory::SharedPtr;
using data::metadata::IPrimitive;
using data::metadata::IProperty;
using data::metadata::ITable;

class Table;

/// A handle on a property: a primitive, which has values, or a table, which has members. It may be empty, as
/// after a search without success: everything asked of an empty one gives what a refusal gives, so that
/// searches can be chained and the end of the chain looked at.
///
/// A handle keeps its object open, which cannot be removed meanwhile, and answers from what it read when it
/// was opened. It closes with its last copy; display names are stored then, and what the store throws comes
/// out. Keep none in a standard container.
class Property {
  public:
    Property() = default;
    /// Empty if the handle is null.
    explicit Property(SharedPtr<IProperty> handle)
        : handle_(std::move(handle)), primitive_(IPrimitive::to(handle_.get())) {}
    /// The same object, owned together with this handle.
    explicit Property(const SharedPtr<IPrimitive>& handle)
        : Property(handle ? SharedPtr<IProperty>(handle, handle->property()) : SharedPtr<IProperty>()) {}

    /// True if there is a property.
    explicit operator bool() const { return static_cast<bool>(handle_); }
    /// The library's own handle, for all that is not here.
    const SharedPtr<IProperty>& handle() const { return handle_; }
    /// Null for a table.
    IPrimitive* primitive() const { return primitive_; }

    /// As it was when the handle was opened.
    std::string name() const { return handle_ ? utf8(handle_->name()) : std::string(); }
    /// The dotted path from below the root.
    std::string path() const { return handle_ ? utf8(handle_->path()) : std::string(); }
    /// True if it has values.
    bool isPrimitive() const { return primitive_; }
    /// True if it has members.
    bool isTable() const { return handle_ && !primitive_; }
    /// Empty if it is a primitive.
    Table table() const;

    /// True if it came from a class and has not been changed since.
    bool isInherited() const { return has(data::metadata::kInherited); }
    /// True if it came from a class, and can be neither removed nor renamed.
    bool isFixed() const { return has(data::metadata::kFixed); }

    /// False in nothing, for what came from a class, and where a sibling has that name. This handle keeps the
    /// old name.
    bool rename(const Text& name) const { return handle_ && handle_->rename(name.wide()); }
    /// In one locale, as "de-de". Empty if there is none.
    std::string displayName(const Text& locale) const {
        return handle_ ? utf8(handle_->localised(locale.wide())) : std::string();
    }
    /// Reaches the store when this handle closes.
    void setDisplayName(const Text& locale, const Text& text) const {
        if (handle_) handle_->setLocalised(locale.wide(), text.wide());
    }

    /// A `tDataType`; 0 for what has none.
    std::uint32_t type() const { return primitive_ ? primitive_->dataType() : 0; }
    /// Elements, as the library counts them: numbers, components, code units, bytes of structs.
    std::uint32_t count() const { return primitive_ ? primitive_->count() : 0; }
    /// In what it is measured; none for a table.
    Unit unit() const { return primitive_ ? Unit::ofId(primitive_->units()) : Unit(); }
    /// Where the value lies, if that is elsewhere; else empty. There are no elements then.
    std::string uri() const { return primitive_ ? utf8(primitive_->uri()) : std::string(); }
    /// Makes the value one that lies elsewhere; what it was is gone. False for a table.
    bool setUri(const Text& uri) const { return primitive_ && primitive_->setUri(uri.wide()); }

    /// All values, as many as there are. None too if the property has another type. Numbers of one type are
    /// given in another if it has every one of them; the components of vectors and matrices can be read as
    /// `double`, one after the other.
    template <Value T>
    std::vector<T> values() const;

    /// The first value. None if there is none, or if the property has another type.
    template <Value T>
    std::optional<T> value() const {
        if constexpr (Number<T>)
            if (data::metadata::componentCount(type()) != 1) return std::nullopt;
        std::vector<T> all = values<T>();
        if (all.empty()) return std::nullopt;
        return T(std::move(all.front()));
    }

    /// Makes these all the values there are; a URI goes. False, with nothing changed, if the property has
    /// another type that does not take them, or if they do not fit a record. Numbers go into every numeric
    /// type that has them: 7 into a double, but 7.5 into no integer. A value from a class counts as changed
    /// from then on, also if there are no values.
    template <Value T>
    bool assign(std::span<const T> values) const;
    /// The same with a vector.
    template <Value T>
    bool assign(const std::vector<T>& values) const {
        return assign(std::span<const T>(values));
    }
    /// The same with a list, as `assign({1, 2})`.
    template <Value T>
    requires(!std::same_as<T, bool>) bool assign(std::initializer_list<T> values) const {
        return assign(std::span<const T>(values.begin(), values.size()));
    }
    /// The same with a single value.
    template <Value T>
    bool assign(const T& value) const {
        return assign(std::span<const T>(&value, 1));
    }
    /// The same with a single text; null counts as the empty one.
    bool assign(const char* text) const { return assign(std::string(text ? text : "")); }
    /// The same with a single text.
    bool assign(std::string_view text) const { return assign(std::string(text)); }
    /// One at a time: the elements of this vector are no `bool`s that a span could show.
    bool assign(const std::vector<bool>& values) const;

    /// The class of a struct value; empty for all else.
    std::string structType() const { return primitive_ ? utf8(primitive_->structType()) : std::string(); }
    /// The elements as they lie in the record.
    std::vector<std::byte> bytes() const;
    /// Makes these the elements. False, with nothing changed, if they are no whole number of them or do not
    /// fit a record.
    bool assignBytes(std::span<const std::byte> bytes) const;

  private:
    bool has(std::uint8_t flag) const { return handle_ && (handle_->flags() & flag) != 0; }
    template <class T>
    std::vector<T> raw() const;
    template <class T>
    bool assignRaw(const T* elements, std::size_t count) const {
        return assignBytes(std::as_bytes(std::span(elements, count)));
    }

    SharedPtr<IProperty> handle_;
    IPrimitive* primitive_ = nullptr;
};

/// The properties of a container or a table, for a `for` loop.
using Properties = Range<Property, data::metadata::IPropertyFilter>;

inline std::vector<std::byte> Property::bytes() const { return raw<std::byte>(); }

template <class T>
std::vector<T> Property::raw() const {
    if (!primitive_) return {};
    const auto guard = hold(*handle_->store());
    const std::uint32_t count = primitive_->count();
    std::vector<T> elements(std::size_t{count} * primitive_->elementSize() / sizeof(T));
    if (elements.empty() || !primitive_->readValues(elements.data(), 0, count)) return {};
    return elements;
}

template <Value T>
std::vector<T> Property::values() const {
    const std::uint32_t own = type();
    if constexpr (std::same_as<T, std::string>) {
        if (!data::metadata::isTextType(own)) return {};
        const auto units = raw<char16_t>();
        return detail::split(std::u16string(units.begin(), units.end()));
    } else if constexpr (Number<T>) {
        std::vector<T> result;
        detail::withNumber(own, [&]<class Kept>(Kept) {
            auto kept = raw<Kept>();
            if constexpr (std::same_as<Kept, T>)
                result = std::move(kept);
            else
                result = detail::converted<T>(kept.data(), kept.size());
            return true;
        });
        return result;
    } else if constexpr (std::same_as<T, bool>) {
        if (own != typeOf<T>()) return {};
        std::vector<bool> result;
        for (const std::uint8_t byte : raw<std::uint8_t>()) result.push_back(byte != 0);
        return result;
    } else {
        return own == typeOf<T>() ? raw<T>() : std::vector<T>();
    }
}

template <Value T>
bool Property::assign(std::span<const T> values) const {
    const std::uint32_t own = type();
    if constexpr (std::same_as<T, std::string>) {
        const std::u16string units = detail::joined(values.data(), values.size());
        return data::metadata::isTextType(own) && assignRaw(units.data(), units.size());
    } else if constexpr (Number<T>) {
        const std::uint32_t components = data::metadata::componentCount(own);
        if (components == 0 || values.size() % components != 0) return false;
        return detail::withNumber(own, [&]<class Kept>(Kept) {
            const auto kept = detail::converted<Kept>(values.data(), values.size());
            const bool isBool = own == data::metadata::kBool;
            if (isBool && std::any_of(kept.begin(), kept.end(), [](Kept number) { return number > 1; }))
                return false;
            return kept.size() == values.size() && assignRaw(kept.data(), kept.size());
        });
    } else if constexpr (std::same_as<T, bool>) {
        static_assert(sizeof(bool) == 1);
        return own == typeOf<T>() && assignRaw(values.data(), values.size());
    } else {
        return own == typeOf<T>() && assignRaw(values.data(), values.size());
    }
}

inline bool Property::assign(const std::vector<bool>& values) const {
    const std::vector<std::uint8_t> bytes(values.begin(), values.end());
    return type() == data::metadata::kBool && assignRaw(bytes.data(), bytes.size());
}

inline bool Property::assignBytes(std::span<const std::byte> bytes) const {
    if (!primitive_) return false;
    const std::uint32_t size = primitive_->elementSize();
    if (size == 0 || bytes.size() % size != 0 || bytes.size() / size > 0xFFFFFFFFu) return false;
    const auto count = static_cast<std::uint32_t>(bytes.size() / size);
    const auto guard = hold(*handle_->store());
    // A value that lies elsewhere has to come back if this one does not fit.
    const core::string::WideString uri = primitive_->uri();
    if (uri.value() && !primitive_->setUri(core::string::WideString())) return false;
    if (!primitive_->resize(count)) {
        if (uri.value()) primitive_->setUri(uri);
        return false;
    }
    if (count != 0) return primitive_->writeValues(bytes.data(), 0, count);
    // Only writing tells the class's value from one's own, and only resizing shortens.
    const std::byte none[8] = {};
    return primitive_->writeValues(none, 0, 1) && primitive_->resize(0);
}

}  // namespace qvt
