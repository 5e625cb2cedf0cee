// Objects in few words.
#pragma once

#include <string>
#include <vector>

#include "Session.h"
#include "Text.h"
#include "Values.h"

namespace qvt {

// Null for the empty text.
Json orNull(const std::string& text);

// What every verb tells of an object in JSON: kind, name, class, type, unit, inherited, overridden, and of a
// link its target.
Json factsOf(const Object& object, ObjectsView& view);
// The same behind its path.
Json factsAt(const std::string& path, const Object& object, ObjectsView& view);
// Adds locale, uri, count and value, as far as an object has them; else they are null.
void addValue(Json& facts, const Object& object, ISchemaLocator* locator);

// The value of a primitive in JSON; null if it lies elsewhere, and for all that is no primitive.
Json valueJson(const Object& object, ISchemaLocator* locator);

// What a table declares for a dimension.
struct Default {
    std::string dimension;
    std::string unit;
    std::string type;
};

// Of a table, else none.
std::vector<Default> defaultsOf(const Object& object);
// An array of objects: dimension, unit, type.
Json defaultsJson(const Object& object);

// A value for people, cut where it is long; the place of one that lies elsewhere as <URI>.
std::string shortValueOf(IPrimitive& primitive, ISchemaLocator* locator);

// Tells that a struct was printed as bytes, where that is so: nobody would see it in them.
void warnOfMissingLayout(const Object& object, Session& session);

// One line: name: kind or type [class] = value unit (inherited). Long values are cut.
class Line {
  public:
    Line(ObjectsView& view, const Palette& palette, bool hasValues)
        : view_(view), palette_(palette), hasValues_(hasValues) {}

    std::string of(const Object& object) const;
    // What stands behind the name in it: kind or type [class].
    std::string kind(const Object& object) const;
    // = value unit, or -> target
    std::string value(const Object& object) const;
    // (inherited), (overridden)
    std::string remark(const Object& object) const;

  private:
    std::string head(const Object& object) const;

    ObjectsView& view_;
    const Palette& palette_;
    bool hasValues_;
};

}  // namespace qvt
