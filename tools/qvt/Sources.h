// What is read: documents and files.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "Messages.h"
#include "Names.h"

namespace qvt {

class Libraries;

// A store to look at: a document that was read into memory, or a file that was opened for reading.
class Source {
  public:
    // The classes that a document names are looked up in itself and in the libraries. What cannot be read is
    // a Failure, what is wrong in a document goes to the messages.
    Source(const std::string& path, const Libraries& libraries, Messages& messages);

    // As messages name it.
    const std::string& name() const { return name_; }
    IDataStore& store() const { return *store_; }

  private:
    std::string name_;
    std::unique_ptr<IDataStore> store_;
};

// The sources of --schemas. Each may use classes of its own and of those before it.
class Libraries {
  public:
    Libraries(const std::vector<std::string>& paths, Messages& messages);

    // A locator that knows a store and the libraries. To go before they do.
    SharedPtr<ISchemaLocator> locatorFor(IDataStore& store) const;
    // That store and those of the libraries, borrowed.
    std::vector<IDataStore*> storesWith(IDataStore& store) const;

  private:
    std::vector<std::unique_ptr<Source>> sources_;
};

}  // namespace qvt
