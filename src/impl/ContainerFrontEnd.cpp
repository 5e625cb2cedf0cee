#include "impl/Guarded.h"
#include "impl/Handles.h"
#include "impl/Kinds.h"
#include "impl/Text.h"
#include "model/Open.h"
#include "norvane/platform/core/thread/Mutex.h"
#include "norvane/platform/data/structure/ContainerKind.h"
#include "norvane/platform/data/structure/IContainerFrontEnd.h"

namespace norvane::platform::data::structure {

namespace {

constexpr std::uint32_t kVersion = 1;
constexpr std::uint32_t kRootOffset = 0;

// One for the process: two hosts' threads may meet on a store that has no root yet.
core::thread::Mutex oneAtATime;

void makeRoot(IDataStore* store) {
    const Metadata::Root root(store, u"root");
    store->setVersion(kVersion);
}

// Only where another child comes first does it matter how many there are.
std::uint32_t firstContainer(Metadata::Set& root) {
    const std::vector<std::uint32_t> children = root.children();
    for (std::uint32_t i = 0; i < children.size(); ++i)
        if (isContainer(Record::kindOf(root.store(), children[i])))
            return i == 0 || i < root.childCount() ? children[i] : std::uint32_t{IDataStore::BADOFF};
    return IDataStore::BADOFF;
}

// In no set when its name is taken.
SharedPtr<IContainer> makeToplevel(Metadata::Set& root, std::u16string_view name) {
    auto made = makeOwned<Structural::Container>(root.store(), kGroup, name);
    root.addChild(made->offset());
    return plainHandle(std::move(made));
}

// Record 0 is opened by its own kind: a document without a root, read into an empty store, begins with
// another.
SharedPtr<IContainer> openOrMake(IDataStore* store, const WideString& name) {
    if (store->size() == 0) makeRoot(store);
    const auto root = Metadata::openSet(store, kRootOffset, Metadata::Opening::transient);
    if (!root) return {};
    const bool isNamed = name.value() != nullptr;
    const std::uint32_t found = isNamed ? root->find(textOf(name)) : firstContainer(*root);
    if (found != IDataStore::BADOFF) return plainHandle(openContainer(store, found));
    return makeToplevel(*root, isNamed ? textOf(name) : u"default");
}

}  // namespace

SharedPtr<IContainer> IContainerFrontEnd::toplevel(IDataStore* store, WideString name) {
    if (!store) return {};
    const core::thread::Mutex::ScopedLock lock(oneAtATime);
    return underGuard(store, [&] { return openOrMake(store, name); });
}

SharedPtr<IContainer> IContainerFrontEnd::find(IDataStore* store, WideString path) {
    if (!store || !path.value()) return {};
    const core::thread::Mutex::ScopedLock lock(oneAtATime);
    return underGuard(store, [&]() -> SharedPtr<IContainer> {
        if (store->size() == 0) return {};
        return plainHandle(openContainer(store, Metadata::resolvePath(store, kRootOffset, textOf(path))));
    });
}

std::uint32_t IContainerFrontEnd::version() { return kVersion; }

}  // namespace norvane::platform::data::structure
