#include "Objects.h"

#include "Units.h"
#include "norvane/platform/data/structure/ContainerKind.h"
#include "norvane/platform/data/structure/ILink.h"

namespace qvt {

namespace {

using structure::ILink;

constexpr const char* kTypeNames[] = {
    "binary", "uuid",    "string",  "time",    "uri",       "version",   "bool",      "int8",
    "uint8",  "int16",   "uint16",  "int32",   "uint32",    "int64",     "uint64",    "scalar",
    "double", "vector2", "vector3", "vector4", "matrix2x2", "matrix3x3", "matrix4x4", "struct",
};

constexpr const char* kContainerKinds[] = {"node", "group", "link"};

template <class Handle>
std::vector<std::pair<std::string, std::string>> namesOn(Handle& handle) {
    std::vector<std::pair<std::string, std::string>> names;
    const std::uint32_t count = handle.localisedCount();
    for (std::uint32_t i = 0; i < count; ++i) {
        const WideString locale = handle.localeAt(i);
        names.emplace_back(utf8(locale), utf8(handle.localised(locale)));
    }
    return names;
}

// Moves a filter on and gives what it stood on; lets the filter go at its end.
template <class Filter>
auto takeFrom(SharedPtr<Filter>& filter) {
    auto value = filter->value();
    if (!filter->next()) filter.reset();
    return value;
}

}  // namespace

std::string nameOf(const Object& object) {
    return utf8(object.container ? object.container->name() : object.property->name());
}

std::string pathOf(const Object& object) {
    return utf8(object.container ? object.container->path() : object.property->path());
}

std::string kindOf(const Object& object) {
    if (object.property) return object.table() ? "table" : "primitive";
    const std::uint32_t kind = object.container->kind();
    return kind <= structure::kLink ? kContainerKinds[kind] : std::to_string(kind);
}

std::string typeName(std::uint32_t dataType) {
    if (dataType < metadata::kBinary || dataType > metadata::kStruct) return std::to_string(dataType);
    return kTypeNames[dataType - metadata::kBinary];
}

std::string typeOf(const Object& object) {
    IPrimitive* primitive = object.primitive();
    return primitive ? typeName(primitive->dataType()) : std::string();
}

std::string classOf(const Object& object) {
    if (object.container) return utf8(object.container->className());
    if (ITable* table = object.table()) return utf8(table->className());
    return utf8(object.primitive()->structType());
}

std::string unitOf(const Object& object) {
    IPrimitive* primitive = object.primitive();
    return primitive ? unitName(primitive->units()) : std::string();
}

std::uint8_t flagsOf(const Object& object) {
    return object.property ? object.property->flags() : std::uint8_t{0};
}

bool isInherited(const Object& object) { return (flagsOf(object) & metadata::kInherited) != 0; }

bool isOverridden(const Object& object) {
    return (flagsOf(object) & (metadata::kFixed | metadata::kInherited)) == metadata::kFixed;
}

std::vector<std::pair<std::string, std::string>> displayNamesOf(const Object& object) {
    return object.container ? namesOn(*object.container) : namesOn(*object.property);
}

std::uint32_t displayNameCount(const Object& object) {
    return object.container ? object.container->localisedCount() : object.property->localisedCount();
}

std::string targetOf(const Object& object) {
    ILink* link = ILink::to(object.container.get());
    return link ? utf8(link->target()) : std::string();
}

Children::Children(const Object& parent) {
    if (parent.container) {
        properties_ = parent.container->properties();
        containers_ = parent.container->containers();
    } else if (ITable* table = parent.table()) {
        properties_ = table->properties();
    }
    advance();
}

Object Children::take() {
    Object child = std::move(next_);
    advance();
    return child;
}

void Children::advance() {
    next_ = Object();
    while (!next_ && properties_) next_.property = takeFrom(properties_);
    while (!next_ && containers_) next_.container = takeFrom(containers_);
}

}  // namespace qvt
