#include "integrity/Paths.h"

#include <algorithm>
#include <new>

#include "norvane/platform/core/string/StringAlgorithm.h"
#include "records/Records.h"

namespace norvane::platform::data::integrity {

namespace {

using Edge = Tree::Edge;

bool isContinuation(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

// The entity that a finding's path is that of: an entity itself, or the one that a satellite belongs to.
std::uint32_t subjectOf(const Tree& tree, std::uint32_t offset) {
    if (tree.isReachable(offset)) return offset;
    const std::uint32_t owner = tree.ownerOf(offset);
    return owner != IDataStore::BADOFF && tree.isReachable(owner) ? owner : IDataStore::BADOFF;
}

// Walks down to the entities that paths were asked of, and nowhere else.
class PathWalk {
  public:
    PathWalk(IDataStore& store, const Tree& tree) : store_(store), tree_(tree) {}

    void want(std::uint32_t entity) {
        const std::uint32_t wanted = entity;
        for (; entity != kRootOffset && !isMarked_.get(entity); entity = tree_.ownerOf(entity)) {
            isMarked_.set(entity, 1);
            edges_.push_back({tree_.ownerOf(entity), entity});
        }
        if (wanted != kRootOffset) wanted_.push_back({wanted, 0});
    }

    void run() {
        std::sort(edges_.begin(), edges_.end());
        std::sort(wanted_.begin(), wanted_.end());
        paths_.resize(wanted_.size());
        enter(kRootOffset);
        while (!frames_.empty()) {
            Frame& frame = frames_.back();
            if (frame.next < edges_.size() && edges_[frame.next].first == frame.entity) {
                path_.resize(frame.pathSize);
                enter(edges_[frame.next++].second);
            } else {
                frames_.pop_back();
            }
        }
    }

    const std::string& pathOf(std::uint32_t entity) const { return paths_[placeOf(entity)]; }

  private:
    struct Frame {
        std::uint32_t entity;
        std::size_t next;
        std::size_t pathSize;
    };

    void enter(std::uint32_t entity) {
        if (entity != kRootOffset) {
            if (frames_.size() > 1) path_ += '.';
            path_ += nameOf(store_, entity);
            const std::size_t place = placeOf(entity);
            if (place < wanted_.size() && wanted_[place].first == entity) paths_[place] = shortened(path_);
        }
        const auto first = std::lower_bound(edges_.begin(), edges_.end(), Edge{entity, 0});
        frames_.push_back({entity, static_cast<std::size_t>(first - edges_.begin()), path_.size()});
    }

    std::size_t placeOf(std::uint32_t entity) const {
        return static_cast<std::size_t>(std::lower_bound(wanted_.begin(), wanted_.end(), Edge{entity, 0}) -
                                        wanted_.begin());
    }

    IDataStore& store_;
    const Tree& tree_;
    OffsetMap<std::uint8_t> isMarked_{0};
    std::vector<Edge> edges_;
    std::vector<Edge> wanted_;
    std::vector<std::string> paths_;
    std::vector<Frame> frames_;
    std::string path_;
};

}  // namespace

std::string utf8Of(std::u16string_view name) {
    std::string out;
    core::string::StringAlgorithm::UTF8Encode(name, out);
    return out;
}

std::string nameOf(IDataStore& store, std::uint32_t offset) {
    try {
        return utf8Of(Record::Snapshot(&store, offset)->name());
    } catch (const std::bad_alloc&) {
        throw;
    } catch (...) {
        return {};
    }
}

std::string shortened(const std::string& path) {
    if (path.size() <= kLongestPath) return path;
    const std::string gap = " ... ";
    std::size_t head = (kLongestPath - gap.size()) / 2, tail = path.size() - head;
    while (isContinuation(path[head])) --head;
    while (isContinuation(path[tail])) ++tail;
    return path.substr(0, head) + gap + path.substr(tail);
}

void fillPaths(IDataStore& store, const Tree& tree, std::vector<Finding>& findings) {
    PathWalk walk(store, tree);
    for (const Finding& each : findings) {
        const std::uint32_t subject = subjectOf(tree, each.offset);
        if (subject != IDataStore::BADOFF) walk.want(subject);
    }
    walk.run();
    for (Finding& each : findings) {
        const std::uint32_t subject = subjectOf(tree, each.offset);
        if (subject != IDataStore::BADOFF && subject != kRootOffset) each.path = walk.pathOf(subject);
    }
}

}  // namespace norvane::platform::data::integrity
