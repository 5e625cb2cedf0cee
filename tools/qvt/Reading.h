// Documents into stores, with a message for everything that is wrong in them.
#pragma once

#include <vector>

#include "Input.h"
#include "Messages.h"
#include "Names.h"

namespace qvt {

// Reads documents for one locator. What is skipped is reported with its place; a document that is not
// well-formed, or whose reading is stopped by an exception, is a Failure.
class Reading {
  public:
    // All borrowed; no messages (null) where the same document was read before.
    Reading(ISchemaLocator& locator, Messages* messages) : locator_(locator), messages_(messages) {}

    void into(IDataStore& store, const Input& input);
    void into(IContainer& container, const Input& input);
    // Bytes that were made of the document `input`.
    void into(IContainer& container, const Input& input, const std::string& bytes);

  private:
    template <class Target>
    void read(Target* target, const Input& input, std::string_view bytes);

    ISchemaLocator& locator_;
    Messages* messages_;
};

}  // namespace qvt
