#include "impl/ContainerImpl.h"

#include "impl/DisplayNames.h"
#include "impl/Handles.h"
#include "impl/Kinds.h"
#include "impl/Text.h"
#include "model/Open.h"

namespace norvane::platform::data {

using structure::IContainer;

WideString ContainerImpl::name() {
    return underGuard(store(), [this] { return wideOf(item_->name()); });
}

WideString ContainerImpl::path() {
    return underGuard(store(), [this] { return wideOf(item_->path()); });
}

// A parent that is no container is the root, which has no handle, or the table that a container was listed
// in.
SharedPtr<IContainer> ContainerImpl::parent() {
    return underGuard(store(), [this] { return facetedHandle(openContainer(store(), item_->parent())); });
}

WideString ContainerImpl::className() {
    return underGuard(store(), [this] { return wideOrNone(item_->classText()); });
}

std::uint32_t ContainerImpl::kind() {
    return underGuard(store(), [this] { return item_->kind(); });
}

bool ContainerImpl::remove(WideString name) {
    return underGuard(store(), [&] { return item_->removeChild(textOf(name)); });
}

bool ContainerImpl::rename(WideString newName) {
    return underGuard(store(), [&] {
        if (!isContainer(Record::kindOf(store(), item_->parent()))) return false;
        Structural::Container parent(store(), item_->parent(), Metadata::Opening::transient);
        return parent.renameChild(item_->name(), textOf(newName));
    });
}

bool ContainerImpl::contains(WideString path) {
    return underGuard(store(), [&] { return item_->resolve(textOf(path)) != IDataStore::BADOFF; });
}

SharedPtr<IContainer> ContainerImpl::find(WideString path) {
    return underGuard(store(), [&] {
        SharedPtr<IContainer> again;
        if (!path.value()) again = facetedHandle(openContainer(store(), item_->offset()));
        if (again) return again;
        return facetedHandle(openContainer(store(), item_->resolve(textOf(path))));
    });
}

SharedPtr<metadata::IProperty> ContainerImpl::findProperty(WideString path) {
    return underGuard(store(), [&] { return propertyHandle(store(), item_->resolve(textOf(path))); });
}

std::uint32_t ContainerImpl::localisedCount() {
    return underGuard(store(), [this] { return item_->localisedCount(); });
}

WideString ContainerImpl::localeAt(std::uint32_t index) {
    return underGuard(store(), [&] { return localeOf(*item_, index); });
}

void ContainerImpl::setLocalised(WideString locale, WideString text) {
    underGuard(store(), [&] { item_->setLocalised(text.value(), locale.value()); });
}

WideString ContainerImpl::localised(WideString locale) {
    return underGuard(store(), [&] { return displayNameOf(*item_, textOf(locale)); });
}

}  // namespace norvane::platform::data
