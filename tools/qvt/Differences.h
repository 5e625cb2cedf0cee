// What makes one object differ from another one of the same place.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "Objects.h"
#include "Session.h"
#include "Values.h"

namespace qvt {

// One thing that is not the same in both.
struct Change {
    std::string what;
    Json from;
    Json to;
    std::string text;  // of both, for people; empty where another change tells it too
};

// An object of one of the two stores.
struct Side {
    const Object& object;
    ObjectsView& view;
};

// Everything but the children: kind, type, class, unit, origin (own, inherited, overridden), optional, names,
// locale, uri, value, target, defaults; of two roots their name and version.
std::vector<Change> changesBetween(const Side& left, const Side& right);

}  // namespace qvt
