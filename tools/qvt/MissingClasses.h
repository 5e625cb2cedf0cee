// Classes that nobody knows.
#pragma once

#include <functional>
#include <set>
#include <string>
#include <vector>

#include "Messages.h"
#include "Names.h"

namespace qvt {

// One message for all of them, of which there is one at least; `place` is in the form of messages.
void tellOfMissing(const std::vector<std::string>& names, const std::string& place, Messages& messages);

// A locator in front of another one that notes the classes that are not found. The library passes over them
// in silence: an object that is read without its class loses its name and members, a struct that is written
// without its class loses its value.
class MissingClasses : public ISchemaLocator {
  public:
    // `place` is asked at the first class that is missing: where it is named, in the form of messages.
    MissingClasses(ISchemaLocator& locator, std::function<std::string()> place);

    SharedPtr<ISchema> locate(WideString names) override;
    void addStore(IDataStore* store) override { locator_.addStore(store); }
    bool removeStore(IDataStore* store) override { return locator_.removeStore(store); }
    void clearStores() override { locator_.clearStores(); }

    // One message for all of them, if there are any.
    void tell(Messages& messages) const;

  private:
    void note(const std::string& name);

    ISchemaLocator& locator_;
    std::function<std::string()> place_;
    std::set<std::string> told_;
    std::vector<std::string> missing_;
    std::string firstPlace_;
};

}  // namespace qvt
