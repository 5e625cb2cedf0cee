#include "impl/LinkImpl.h"

#include "impl/Handles.h"
#include "impl/Text.h"
#include "model/Open.h"

namespace norvane::platform::data {

using structure::IContainer;

// The guard of the link's own store comes first, then that of a given one, even if they are the same.
SharedPtr<IContainer> LinkImpl::resolve(IDataStore* store) {
    const auto search = [this](IDataStore* searched) {
        return plainHandle(openContainer(searched, Metadata::resolvePath(searched, 0, item().linkTarget())));
    };
    IDataStore* own = ContainerImpl::store();
    return underGuard(own, [&]() -> SharedPtr<IContainer> {
        if (item().linkTarget().empty()) return {};
        return store ? underGuard(store, [&] { return search(store); }) : search(own);
    });
}

void LinkImpl::setTarget(WideString target) {
    underGuard(store(), [&] { item().setLinkTarget(target.value()); });
}

WideString LinkImpl::target() {
    return underGuard(store(), [this] { return wideOrNone(item().linkTarget()); });
}

}  // namespace norvane::platform::data
