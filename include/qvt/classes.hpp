#pragma once

#include <string>
#include <utility>

#include "norvane/platform/data/metadata/ISchema.h"
#include "norvane/platform/data/metadata/ISchemaLocator.h"
#include "qvt/property.hpp"

namespace qvt {

/// One or more classes that were found. Empty if none was. It keeps the `Classes` that found it alive.
class Class {
  public:
    Class() = default;

    /// True if a class was found.
    explicit operator bool() const { return static_cast<bool>(schema_); }
    /// The dotted path of the class's table; of the first one if there are several.
    std::string name() const { return schema_ ? utf8(schema_->name()) : std::string(); }
    /// Null for an empty one.
    data::metadata::ISchema* get() const { return schema_.get(); }
    /// How values of the first class lie in a struct, borrowed. Null for an empty one.
    data::metadata::IStructLayout* layout() const { return schema_ ? schema_->layout() : nullptr; }

  private:
    friend class Classes;
    Class(SharedPtr<data::metadata::ISchemaLocator> locator, SharedPtr<data::metadata::ISchema> schema)
        : locator_(std::move(locator)), schema_(std::move(schema)) {}

    SharedPtr<data::metadata::ISchemaLocator> locator_;  // outlives the schema
    SharedPtr<data::metadata::ISchema> schema_;
};

/// Where classes are looked up: in one or more stores, which outlive this object and every `Class` found. A
/// class that was found once stays as it was then, and its table cannot be removed.
class Classes {
  public:
    /// Knows no store.
    Classes() : locator_(data::metadata::ISchemaLocator::make(nullptr)) {}
    /// Looks into one store.
    explicit Classes(Store& store) : locator_(data::metadata::ISchemaLocator::make(&store)) {}

    /// Looks into another store as well. Nothing happens for one that is known.
    void add(Store& store) const { locator_->addStore(&store); }
    /// The classes of a dotted path, or of several joined by ";". Those that there are not are left out.
    Class find(const Text& names) const { return {locator_, locator_->locate(names.wide())}; }
    /// The library's own locator, borrowed.
    data::metadata::ISchemaLocator* get() const { return locator_.get(); }

  private:
    SharedPtr<data::metadata::ISchemaLocator> locator_;
};

}  // namespace qvt
