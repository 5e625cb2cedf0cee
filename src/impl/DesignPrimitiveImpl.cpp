#include "impl/DesignPrimitiveImpl.h"

#include "impl/Text.h"

namespace norvane::platform::data {

SharedPtr<metadata::IPrimitive> DesignPrimitiveImpl::make(Metadata::Set& parent, std::u16string_view name,
                                                          std::uint32_t type, std::uint32_t unit) {
    std::uint32_t offset;
    {
        Design::Primitive made(parent.store(), type, name);
        offset = made.offset();
        parent.addChild(offset);
        if (unit != 0) made.setUnits(unit);
    }
    return SharedPtr<DesignPrimitiveImpl>(
        new DesignPrimitiveImpl(makeOwned<Design::Primitive>(parent.store(), offset)));
}

std::uint32_t DesignPrimitiveImpl::count() {
    return underGuard(store(), [this] { return primitive().count(); });
}

std::uint32_t DesignPrimitiveImpl::elementSize() {
    return underGuard(store(), [this] { return primitive().elementSize(); });
}

std::uint32_t DesignPrimitiveImpl::valueBytes() {
    return underGuard(store(), [this] { return primitive().valueSize(); });
}

std::uint32_t DesignPrimitiveImpl::dataType() {
    return underGuard(store(), [this] { return primitive().dataType(); });
}

std::uint32_t DesignPrimitiveImpl::units() {
    return underGuard(store(), [this] { return primitive().units(); });
}

bool DesignPrimitiveImpl::setStructType(WideString name) {
    return underGuard(store(), [&] { return primitive().setStructType(name.value()); });
}

WideString DesignPrimitiveImpl::structType() {
    return underGuard(store(), [this] { return wideOrNone(primitive().structType()); });
}

bool DesignPrimitiveImpl::setUri(WideString uri) {
    return underGuard(store(), [&] { return primitive().setUri(uri.value()); });
}

WideString DesignPrimitiveImpl::uri() {
    return underGuard(store(),
                      [this] { return primitive().hasUri() ? wideOf(primitive().uri()) : WideString(); });
}

void DesignPrimitiveImpl::setLocale(WideString tag) {
    underGuard(store(), [&] { primitive().setLocale(tag.value()); });
}

WideString DesignPrimitiveImpl::locale() {
    return underGuard(store(), [this] { return wideOrNone(primitive().localeTag()); });
}

bool DesignPrimitiveImpl::writeValues(const void* source, std::uint32_t start, std::uint32_t count) {
    return underGuard(store(), [&] {
        if (!primitive().writeValues(source, start, count)) return false;
        primitive().touch();
        return true;
    });
}

bool DesignPrimitiveImpl::resize(std::uint32_t count) {
    return underGuard(store(), [&] { return primitive().resize(count); });
}

bool DesignPrimitiveImpl::readValues(void* target, std::uint32_t start, std::uint32_t count) {
    if (count == 0) return false;
    return underGuard(store(), [&] { return target && primitive().readValues(target, start, count) != 0; });
}

}  // namespace norvane::platform::data
