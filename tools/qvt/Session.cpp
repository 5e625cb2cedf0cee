#include "Session.h"

#include <algorithm>
#include <vector>

#include "Reading.h"
#include "norvane/platform/core/io/MemoryReader.h"
#include "norvane/platform/data/format/xml/IXMLFrontEnd.h"
#include "norvane/platform/data/structure/IContainerFrontEnd.h"

namespace qvt {

namespace {

using structure::IContainerFrontEnd;

// A group as record 0 has no parent that could give a handle on it; a child that goes again has.
Object makeTop(IDataStore& store) {
    core::io::MemoryReader reader(std::string_view("<group name=\"\"><group name=\"child\"/></group>"));
    data::format::xml::IXMLFrontEnd::parse(&store, &reader, nullptr, nullptr, nullptr);
    SharedPtr<IContainer> child = IContainerFrontEnd::find(&store, u"child");
    Object top(child->parent());
    child.reset();
    top.container->remove(u"child");
    return top;
}

}  // namespace

Failure nothingRead(const std::string& file) { return {kNo, file + ": error: nothing was read"}; }

Lookup::Lookup(const std::vector<std::unique_ptr<MemoryDataStore>>& libraries)
    : locator(ISchemaLocator::make(&store)) {
    for (const auto& library : libraries) locator->addStore(library.get());
}

Session::Session(const Options& options) : messages_(options.quiet), input_(options.store) {
    for (const std::string& path : options.schemas) readLibrary(path);
}

// A library may use classes of its own and of the libraries before it.
void Session::readLibrary(const std::string& path) {
    const Input library(path);
    libraries_.push_back(std::make_unique<MemoryDataStore>());
    const Lookup lookup(libraries_);
    Reading(*lookup.locator, &messages_).into(*libraries_.back(), library);
}

RecordsView::RecordsView(Session& session, bool isFirst) : lookup_(session.libraries()) {
    Messages* messages = isFirst ? &session.messages() : nullptr;
    Reading(*lookup_.locator, messages).into(lookup_.store, session.input());
}

ObjectsView::ObjectsView(Session& session, bool isFirst)
    : file_(session.input().name()),
      element_(documentElementOf(session.input().bytes())),
      lookup_(session.libraries()),
      root_(makeTop(lookup_.store)) {
    Messages* messages = isFirst ? &session.messages() : nullptr;
    if (element_.isRoot())
        Reading(*lookup_.locator, messages).into(*root_.container, session.input());
    else
        readNonRoot(session, isFirst);
    // Display names that were read reach the store when the handle that took them closes; one that is opened
    // after that sees them.
    root_.container = root_.container->find(WideString());
    root_.container = root_.container->find(WideString());
}

// Read as it is first: only then are places right, and a second outermost element is an error.
void ObjectsView::readNonRoot(Session& session, bool isFirst) {
    records_.reset(new RecordsView(session, isFirst));
    lookup_.locator->addStore(&records_->store());
    Reading(*lookup_.locator, nullptr)
        .into(*root_.container, session.input(), wrappedInGroup(session.input().bytes(), element_));
}

Object ObjectsView::find(const std::string& path) const {
    if (path.empty() && !hasRoot()) {
        Children children(root_);
        return children.isAtEnd() ? Object() : children.take();
    }
    if (path.empty()) return root_;
    Object found(root_.container->findProperty(wide(path)));
    if (!found) found = Object(root_.container->find(wide(path)));
    // A path that goes on below a value is answered with the value.
    return found && pathOf(found) == path ? found : Object();
}

Object ObjectsView::get(const std::string& path) const {
    Object found = find(path);
    if (found) return found;
    if (path.empty()) throw nothingRead(file_);
    const std::string prefix = longestPrefix(path);
    throw Failure(kMissing, file_ + ": error: nothing at " + path +
                                (prefix.empty() ? std::string() : ", though there is " + prefix));
}

// What leads somewhere does so in all its beginnings, so half of them can be left out each time.
std::string ObjectsView::longestPrefix(const std::string& path) const {
    std::vector<std::size_t> ends;
    for (std::size_t at = path.find('.'); at != std::string::npos; at = path.find('.', at + 1))
        ends.push_back(at);
    const auto leads = [&](std::size_t end) { return static_cast<bool>(find(path.substr(0, end))); };
    const auto found = std::partition_point(ends.begin(), ends.end(), leads);
    return found == ends.begin() ? std::string() : path.substr(0, *(found - 1));
}

// The library begins a path with the name of the group that stands for the root, which is empty.
std::string ObjectsView::pathOf(const Object& object) const {
    return isRoot(object) ? std::string() : qvt::pathOf(object).substr(1);
}

}  // namespace qvt
