// Documents into stores, with a message for everything that is wrong in them.
#pragma once

#include "Input.h"
#include "Messages.h"
#include "Names.h"

namespace qvt {

// Reads documents for one locator. What is skipped is reported with its place; a document that is not
// well-formed, or whose reading is stopped by an exception, is a Failure. What was read until then is in the
// store. Failures of the store are its own exceptions.
class Reading {
  public:
    // Both borrowed.
    Reading(ISchemaLocator& locator, Messages& messages) : locator_(locator), messages_(messages) {}

    void into(IDataStore& store, const Input& input);
    void into(IContainer& container, const Input& input);

  private:
    template <class Target>
    void read(Target* target, const Input& input);

    ISchemaLocator& locator_;
    Messages& messages_;
};

}  // namespace qvt
