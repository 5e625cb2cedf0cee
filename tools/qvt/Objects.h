// What the tool shows: containers and properties alike.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "Names.h"
#include "norvane/platform/data/metadata/IPropertyFilter.h"
#include "norvane/platform/data/structure/IContainerFilter.h"

namespace qvt {

// A handle on a container or on a property, or on nothing.
struct Object {
    SharedPtr<IContainer> container;
    SharedPtr<IProperty> property;

    Object() = default;
    explicit Object(SharedPtr<IContainer> handle) : container(std::move(handle)) {}
    explicit Object(SharedPtr<IProperty> handle) : property(std::move(handle)) {}

    explicit operator bool() const { return container || property; }
    IPrimitive* primitive() const { return IPrimitive::to(property.get()); }
    ITable* table() const { return ITable::to(property.get()); }
};

std::string nameOf(const Object& object);
std::string pathOf(const Object& object);

// "node", "group", "link", "table" or "primitive".
std::string kindOf(const Object& object);
// The element that the type of a primitive has in documents, as "vector3"; its number if it has none. Empty
// for all else.
std::string typeOf(const Object& object);
std::string typeName(std::uint32_t dataType);
// The class text of a container or table, the class that gives a struct its layout; else empty.
std::string classOf(const Object& object);
// The unit of a primitive, or empty.
std::string unitOf(const Object& object);

// The flags of a property; containers show none.
std::uint8_t flagsOf(const Object& object);
// Came from a class and is as the class has it.
bool isInherited(const Object& object);
// Came from a class and has another value here.
bool isOverridden(const Object& object);

// Display names: locale and text.
std::vector<std::pair<std::string, std::string>> displayNamesOf(const Object& object);
std::uint32_t displayNameCount(const Object& object);

// The target of a link, or empty.
std::string targetOf(const Object& object);

// A cursor over what stands in an object: the properties first, then the containers, each in stored order.
class Children {
  public:
    explicit Children(const Object& parent);

    bool isAtEnd() const { return !next_; }
    // The next child. There must be one.
    Object take();

  private:
    void advance();

    SharedPtr<metadata::IPropertyFilter> properties_;
    SharedPtr<structure::IContainerFilter> containers_;
    Object next_;
};

}  // namespace qvt
