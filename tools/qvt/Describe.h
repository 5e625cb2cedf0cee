// Objects in few words.
#pragma once

#include <string>

#include "Session.h"
#include "Text.h"
#include "Values.h"

namespace qvt {

// Null for the empty text.
Json orNull(const std::string& text);

// What `tree` and `show` tell of every object in JSON: kind, name, class, type, unit, inherited, overridden.
Json factsOf(const Object& object, ObjectsView& view);

// The value of a primitive in JSON; null if it lies elsewhere, and for all that is no primitive.
Json valueJson(const Object& object, ISchemaLocator* locator);

// One line: name: kind or type [class] = value unit (inherited). Long values are cut.
class Line {
  public:
    Line(ObjectsView& view, const Palette& palette, bool hasValues)
        : view_(view), palette_(palette), hasValues_(hasValues) {}

    std::string of(const Object& object) const;

  private:
    std::string head(const Object& object) const;
    std::string value(const Object& object) const;
    std::string remark(const Object& object) const;

    ObjectsView& view_;
    const Palette& palette_;
    bool hasValues_;
};

}  // namespace qvt
