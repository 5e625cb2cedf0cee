#include "integrity/Ancestry.h"

#include <algorithm>

namespace norvane::platform::data::integrity {

namespace {

using Edge = Tree::Edge;
using Edges = std::vector<Edge>;

bool isListedBy(const Edges& edges, std::size_t index, std::uint32_t set) {
    return index < edges.size() && edges[index].first == set;
}

std::size_t firstOf(const Edges& edges, std::uint32_t set) {
    return static_cast<std::size_t>(std::lower_bound(edges.begin(), edges.end(), Edge{set, 0}) -
                                    edges.begin());
}

}  // namespace

Ancestry::Ancestry(const Tree& tree) {
    struct Frame {
        std::uint32_t set;
        std::size_t next;
    };
    const Edges edges = tree.edges();
    std::vector<Frame> frames;
    std::uint32_t place = 0;
    const auto enter = [&](std::uint32_t set) {
        first_.set(set, ++place);
        frames.push_back({set, firstOf(edges, set)});
    };
    const auto walk = [&](std::uint32_t top) {
        enter(top);
        while (!frames.empty()) {
            Frame& frame = frames.back();
            if (isListedBy(edges, frame.next, frame.set)) {
                enter(edges[frame.next++].second);
            } else {
                last_.set(frame.set, place);
                frames.pop_back();
            }
        }
    };
    walk(kRootOffset);
    for (const Tree::Head& head : tree.heads()) walk(head.offset);
}

}  // namespace norvane::platform::data::integrity
