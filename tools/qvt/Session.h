// What one run of the tool looks at.
#pragma once

#include <string>

#include "Classes.h"
#include "Messages.h"
#include "Names.h"
#include "Options.h"
#include "Sources.h"
#include "Tree.h"

namespace qvt {

// The STORE of the command line with all that is needed to look up its classes.
class Session {
  public:
    // Reads or opens the libraries and then the store.
    explicit Session(const Options& options)
        : messages_(options.quiet),
          libraries_(options.schemas, messages_),
          source_(options.store, libraries_, messages_),
          locator_(libraries_.locatorFor(source_.store())) {}

    const std::string& name() const { return source_.name(); }
    IDataStore& store() const { return source_.store(); }
    Messages& messages() { return messages_; }
    ISchemaLocator* locator() { return locator_.get(); }
    ClassPlaces classes() { return {name(), locator(), libraries_.storesWith(store())}; }
    // Closes the tables that the locator keeps open, so that the records are at rest.
    void closeLocator() { locator_.reset(); }
    // The status of a run that did all it was asked to do.
    int status() const { return messages_.hasReports() ? kNo : kDone; }

  private:
    Messages messages_;
    Libraries libraries_;
    Source source_;
    SharedPtr<ISchemaLocator> locator_;
};

// A store as objects, with the values of its structs.
class ObjectsView : public Tree {
  public:
    explicit ObjectsView(Session& session)
        : ObjectsView(session.store(), session.name(), session.locator()) {}
    // All borrowed.
    ObjectsView(IDataStore& store, const std::string& name, ISchemaLocator* locator)
        : Tree(store, name), locator_(locator) {}

    ISchemaLocator* locator() const { return locator_; }

  private:
    ISchemaLocator* locator_;
};

}  // namespace qvt
