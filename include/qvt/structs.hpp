#pragma once

#include <array>
#include <concepts>
#include <cstring>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "norvane/platform/data/metadata/IStructLayout.h"
#include "qvt/classes.hpp"
#include "qvt/property.hpp"

namespace qvt {

namespace detail {

/// How a member of a struct lies in a record: elements of one type, one after the other.
template <class T>
struct MemberType;
template <class T>
requires(Number<T> || Compound<T> || std::same_as<T, bool>) struct MemberType<T> {
    static constexpr std::uint32_t code = typeOf<T>();
    static constexpr std::uint32_t count = data::metadata::componentCount(code);
};
template <class T, std::size_t N>
requires(Number<T> || std::same_as<T, bool>) struct MemberType<std::array<T, N>> {
    static constexpr std::uint32_t code = typeOf<T>();
    static constexpr std::uint32_t count = N;
};

}  // namespace detail

/// What a member of a mapped struct can be: a number, `bool`, `vec`, `mat`, or a `std::array` of numbers.
template <class T>
concept StructMember = requires {
    detail::MemberType<T>::code;
};

/// A member of S and the field of a class that it stands for: see `field`.
template <class S>
struct StructField {
    /// The flattened name of the field.
    std::string name;
    /// The `tDataType` of its elements.
    std::uint32_t type;
    /// How many elements it has.
    std::uint32_t count;
    /// Its bytes.
    std::uint32_t size;
    /// Copies the field's bytes into the member.
    std::function<void(S&, const std::byte*)> load;
    /// Copies the member into the field's bytes.
    std::function<void(const S&, std::byte*)> store;
};

/// Says that a member stands for the field of this name, as `field("x", &Point::x)`.
template <class S, StructMember M>
StructField<S> field(std::string name, M S::*member) {
    return {
        std::move(name),
        detail::MemberType<M>::code,
        detail::MemberType<M>::count,
        sizeof(M),
        [member](S& object, const std::byte* bytes) { std::memcpy(&(object.*member), bytes, sizeof(M)); },
        [member](const S& object, std::byte* bytes) { std::memcpy(bytes, &(object.*member), sizeof(M)); }};
}

/// Reads and writes the structs of a class as values of S. The members are compared with the class's layout
/// once, when the map is made; a map that does not fit is false and reads and writes nothing, and `error`
/// says why. Fields that no member stands for keep what they hold, and are 0 in structs that are new.
template <class S>
requires std::default_initializable<S>
class StructMap {
  public:
    /// Compares the fields with the layout of `of`, which is not needed afterwards.
    StructMap(const Class& of, std::vector<StructField<S>> fields) {
        data::metadata::IStructLayout* layout = of.layout();
        if (!layout) {
            error_ = "there is no such class";
            return;
        }
        name_ = of.name();
        size_ = layout->byteSize();
        for (StructField<S>& field : fields) place(*layout, std::move(field));
    }

    /// True if everything fits.
    explicit operator bool() const { return error_.empty(); }
    /// What does not fit, as "Types.Point has no field z". Empty if all does.
    const std::string& error() const { return error_; }

    /// All structs of a property. None if it is of another type or class.
    std::vector<S> read(const Property& property) const {
        std::vector<S> structs;
        if (!fits(property)) return structs;
        const std::vector<std::byte> bytes = property.bytes();
        structs.resize(bytes.size() / size_);
        for (std::size_t i = 0; i < structs.size(); ++i)
            for (const Placed& field : fields_)
                field.load(structs[i], bytes.data() + i * size_ + field.offset);
        return structs;
    }

    /// Makes these all the structs of a property. False, with nothing changed, if it is of another type or
    /// class, or if they do not fit a record.
    bool write(const Property& property, std::span<const S> structs) const {
        if (!fits(property)) return false;
        const auto guard = hold(*property.handle()->store());
        std::vector<std::byte> bytes = property.bytes();
        bytes.resize(structs.size() * size_);
        for (std::size_t i = 0; i < structs.size(); ++i)
            for (const Placed& field : fields_)
                field.store(structs[i], bytes.data() + i * size_ + field.offset);
        return property.assignBytes(bytes);
    }
    /// The same with a single struct.
    bool write(const Property& property, const S& one) const { return write(property, std::span(&one, 1)); }

  private:
    struct Placed : StructField<S> {
        std::uint32_t offset;
    };

    bool fits(const Property& property) const {
        return error_.empty() && size_ != 0 && property.type() == data::metadata::kStruct &&
               property.structType() == name_;
    }

    void place(data::metadata::IStructLayout& layout, StructField<S> field) {
        const auto* there = layout.field(Text(field.name).wide());
        if (!there)
            fail(" has no field " + field.name);
        else if (there->type != field.type || there->count != field.count || there->size != field.size)
            fail(" has a field " + field.name + " of another type or length");
        else
            fields_.push_back({std::move(field), there->offset});
    }
    void fail(const std::string& words) {
        if (error_.empty()) error_ = name_ + words;
    }

    std::string name_;
    std::string error_;
    std::size_t size_ = 0;
    std::vector<Placed> fields_;
};

}  // namespace qvt
