// Who stands below whom.
#pragma once

#include <cstdint>
#include <vector>

#include "integrity/OffsetMap.h"
#include "integrity/Tree.h"

namespace norvane::platform::data::integrity {

// Numbers the entities of a tree once, so that each question takes no walk.
class Ancestry {
  public:
    explicit Ancestry(const Tree& tree);

    // Also true of an entity and itself.
    bool isAbove(std::uint32_t above, std::uint32_t below) const {
        return first_.get(above) <= first_.get(below) && first_.get(below) <= last_.get(above);
    }

  private:
    OffsetMap<std::uint32_t> first_{0};  // the place of an entity in the order of entering
    OffsetMap<std::uint32_t> last_{0};   // the place of the last one below it
};

}  // namespace norvane::platform::data::integrity
