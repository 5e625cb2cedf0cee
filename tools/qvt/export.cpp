// qvt export STORE [PATH]
#include "MissingClasses.h"
#include "Output.h"
#include "Session.h"
#include "Stack.h"
#include "Verbs.h"
#include "WatchedStore.h"
#include "norvane/platform/core/storage/datastore/MemoryDataStore.h"
#include "norvane/platform/data/format/xml/IXMLFrontEnd.h"
#include "norvane/platform/data/structure/IContainerFrontEnd.h"

namespace qvt {

namespace {

using core::storage::datastore::MemoryDataStore;
using data::format::xml::IXMLFrontEnd;

// A struct is written field by field, which takes the layout of its class.
void write(IDataStore& store, std::uint32_t offset, Output& output, Session& session) {
    MissingClasses classes(*session.locator(), [&session] { return session.name(); });
    Progress progress("writing " + output.name(), store.size(), session.messages().isQuiet());
    WatchedStore watched(store, progress);
    IDataStore& source = progress.isShown() ? watched : store;
    IXMLFrontEnd::serialize(&source, &output, &classes, offset);
    classes.tell(session.messages());
}

// What a class gave and nobody changed is not written, as the class gives it again. A property that is
// written without the object of that class has no class to come from.
void makeOwn(const Object& object) {
    Stack<Children> open;
    if ((flagsOf(object) & metadata::kFixed) != 0) {
        object.property->clearFlags(metadata::kInherited);
        open.push(Children(object));
    }
    while (!open.isEmpty()) {
        if (open.top().isAtEnd()) {
            open.pop();
            continue;
        }
        const Object child = open.top().take();
        if (child.property) child.property->clearFlags(metadata::kInherited);
        open.push(Children(child));
    }
}

// The public interface knows no offsets, but a copy into a store of its own begins with the copied object.
void writeCopy(const Object& object, Output& output, Session& session) {
    MemoryDataStore copies;
    const SharedPtr<IContainer> place = structure::IContainerFrontEnd::toplevel(&copies, u"copy");
    const auto offset = static_cast<std::uint32_t>(copies.size());
    if (object.container)
        place->add(object.container);
    else
        place->add(object.property);
    if (object.property) makeOwn(Object(place->findProperty(object.property->name())));
    write(copies, offset, output, session);
}

int exportAll(Session& session, const Options& options) {
    if (session.store().size() == 0) throw nothingIn(session.name());
    Output output(options);
    write(session.store(), 0, output, session);
    output.finish();
    return session.status();
}

int exportPath(Session& session, const Options& options) {
    ObjectsView view(session);
    const Object object = view.get(options.path);
    Output output(options);
    writeCopy(object, output, session);
    output.finish();
    return session.status();
}

int run(const Options& options) {
    Session session(options);
    return options.path.empty() ? exportAll(session, options) : exportPath(session, options);
}

}  // namespace

const Verb kExport{
    "export",
    "write a document",
    "Writes the whole store as a document, or what is at PATH as one of its own. What came from a class\n"
    "and was not changed is left out, and so is what documents cannot hold; floating numbers get 7 digits.\n"
    "Exporting an export gives the same bytes, unless a text is shorter than the one that its class gives.",
    "  qvt export plant.qvt -o plant.xml\n"
    "  qvt export plant.qvt hall.p1",
    Verb::kStore | Verb::kSchemas | Verb::kAnswers | Verb::kOptionalPath,
    run};

}  // namespace qvt
