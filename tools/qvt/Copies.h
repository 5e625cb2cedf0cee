// Objects anew in another place.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "Editing.h"
#include "Names.h"
#include "Objects.h"

namespace qvt {

// Takes the marks away from a property and all below it that say it came from a class, where it stands
// without the object of that class: nothing would bring it back in a document, and nothing would let it go.
void makeOwn(const Object& object);

// Makes a primitive without a value in a container or table. The public interface has no other way to give it
// a unit in a container than to copy one that has it.
SharedPtr<IPrimitive> makePrimitive(const Object& parent, const std::string& name, std::uint32_t type,
                                    std::uint32_t unit);

// What a primitive holds, apart from its name and unit.
class PrimitiveContent {
  public:
    explicit PrimitiveContent(IPrimitive& primitive);

    std::uint32_t type() const { return type_; }
    void storeTo(IPrimitive& primitive) const;

  private:
    std::uint32_t type_;
    std::uint8_t flags_;
    std::uint32_t count_;
    std::vector<std::byte> bytes_;
    WideString structType_;
    WideString locale_;
    WideString uri_;
    std::vector<std::pair<std::string, std::string>> names_;
};

// Copies an object, of any store, to a path of this one where nothing is yet. The copy is the object's own,
// whatever it came from.
void copyTo(Editing& editing, const Object& source, const std::string& path);

}  // namespace qvt
