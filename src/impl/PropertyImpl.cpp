#include "impl/PropertyImpl.h"

#include "impl/DesignTableImpl.h"
#include "impl/DisplayNames.h"
#include "impl/Kinds.h"
#include "impl/Text.h"
#include "model/Open.h"

namespace norvane::platform::data {

WideString PropertyImpl::name() {
    return underGuard(store(), [this] { return wideOf(item_->name()); });
}

WideString PropertyImpl::path() {
    return underGuard(store(), [this] { return wideOf(item_->path()); });
}

std::uint32_t PropertyImpl::kind() {
    return underGuard(store(),
                      [this] { return isPrimitive(Record::kindOf(store(), item_->offset())) ? 0u : 1u; });
}

bool PropertyImpl::rename(WideString newName) {
    return underGuard(store(), [&] {
        const std::uint8_t kind = Record::kindOf(store(), item_->parent());
        if (!isTable(kind) && !isContainer(kind)) return false;
        const auto parent = Metadata::openSet(store(), item_->parent(), Metadata::Opening::transient);
        return parent->renameChild(item_->name(), textOf(newName));
    });
}

SharedPtr<metadata::ITable> PropertyImpl::parent() {
    return underGuard(store(), [this]() -> SharedPtr<metadata::ITable> {
        if (!isTable(Record::kindOf(store(), item_->parent()))) return {};
        return SharedPtr<DesignTableImpl>(
            new DesignTableImpl(makeOwned<Design::Table>(store(), item_->parent())));
    });
}

std::uint32_t PropertyImpl::localisedCount() {
    return underGuard(store(), [this] { return item_->localisedCount(); });
}

WideString PropertyImpl::localeAt(std::uint32_t index) {
    return underGuard(store(), [&] { return localeOf(*item_, index); });
}

void PropertyImpl::setLocalised(WideString locale, WideString text) {
    underGuard(store(), [&] { item_->setLocalised(text.value(), locale.value()); });
}

WideString PropertyImpl::localised(WideString locale) {
    return underGuard(store(), [&] { return displayNameOf(*item_, textOf(locale)); });
}

std::uint8_t PropertyImpl::flags() {
    return underGuard(store(), [this] { return item_->flags(); });
}

void PropertyImpl::setFlags(std::uint8_t bits) {
    underGuard(store(), [&] { item_->setFlags(bits); });
}

void PropertyImpl::clearFlags(std::uint8_t bits) {
    underGuard(store(), [&] { item_->clearFlags(bits); });
}

}  // namespace norvane::platform::data
