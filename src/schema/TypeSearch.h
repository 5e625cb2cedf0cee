// One request for types, with all that it leads to.
#pragma once

#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "schema/ClassText.h"
#include "schema/Flattening.h"
#include "schema/Layout.h"
#include "schema/SchemaLocatorImpl.h"

namespace norvane::platform::data::Schema {

// Finds the layouts of a class text, and makes those that are not cached. A layout in the making asks for the
// types of its struct members, whose layouts ask for others: they stand on a stack here, not on the thread's.
//
// A type that is in the making here is not found again below itself, so a struct type that holds itself,
// directly or in a ring, has no field for that member. The layouts of the others in such a ring are cached as
// they came out: which member is missing depends on the type that was asked for first.
class TypeSearch {
  public:
    explicit TypeSearch(SchemaLocatorImpl& locator) : locator_(locator) {}
    TypeSearch(const TypeSearch&) = delete;
    TypeSearch& operator=(const TypeSearch&) = delete;
    // Closes what an exception has left unfinished, and drops what that throws.
    ~TypeSearch();

    std::vector<Layout*> locate(std::u16string_view names);

  private:
    // A class text being answered.
    struct Request {
        ClassText pieces;
        std::vector<Layout*> found;
    };

    // A layout in the making, stopped at a struct member whose types are asked for.
    struct Making {
        Making(std::u16string_view name, const TablePlace& place);

        // Goes on with that member's types, up to the next one; false when the layout is finished.
        bool advance();

        Owned<Layout> layout;
        Flattening flattening;
        Request wanted;
        bool isAsking = false;
    };

    Request& current() { return stack_.empty() ? outermost_ : stack_.back()->wanted; }
    void answer(Request& request);
    void start(std::u16string_view name, const TablePlace& place);
    void finish();

    SchemaLocatorImpl& locator_;
    Request outermost_;
    std::vector<Making*> stack_;
    std::unordered_set<std::u16string_view> inTheMaking_;  // names of the layouts on the stack
};

}  // namespace norvane::platform::data::Schema
