#include "schema/TypeSearch.h"

#include <utility>

#include "records/FirstFailure.h"

namespace norvane::platform::data::Schema {

TypeSearch::Making::Making(std::u16string_view name, const TablePlace& place)
    : layout(makeOwned<Layout>(name, makeOwned<Design::Table>(place.store, place.offset))),
      flattening(*layout) {}

bool TypeSearch::Making::advance() {
    if (isAsking) flattening.unroll(wanted.found.size() == 1 ? wanted.found.front() : nullptr);
    isAsking = flattening.advance();
    if (isAsking) wanted = Request{ClassText(flattening.structType()), {}};
    return isAsking;
}

TypeSearch::~TypeSearch() {
    FirstFailure dropped;
    for (; !stack_.empty(); stack_.pop_back()) dropped.attempt([this] { delete stack_.back(); });
}

std::vector<Layout*> TypeSearch::locate(std::u16string_view names) {
    outermost_ = Request{ClassText(names), {}};
    while (true) {
        if (current().pieces.hasNext())
            answer(current());
        else if (stack_.empty())
            return std::move(outermost_.found);
        else if (!stack_.back()->advance())
            finish();
    }
}

void TypeSearch::answer(Request& request) {
    const std::u16string_view piece = request.pieces.next();
    if (Layout* cached = locator_.cached(piece)) {
        request.found.push_back(cached);
        return;
    }
    const std::u16string name(piece);
    if (inTheMaking_.count(name) != 0) return;
    const TablePlace place = locator_.tableNamed(name);
    if (place.store) start(name, place);
}

void TypeSearch::start(std::u16string_view name, const TablePlace& place) {
    auto making = makeOwned<Making>(name, place);
    stack_.push_back(making.get());
    inTheMaking_.insert(making.release()->layout->name());
}

void TypeSearch::finish() {
    const Owned<Making> making(stack_.back());
    stack_.pop_back();
    inTheMaking_.erase(making->layout->name());
    Layout* finished = locator_.publish(std::move(making->layout));
    current().found.push_back(finished);
}

}  // namespace norvane::platform::data::Schema
