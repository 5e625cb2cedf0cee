#include "impl/StringArrayImpl.h"

#include <limits>
#include <new>
#include <string>

#include "impl/Text.h"
#include "records/Owned.h"

namespace norvane::platform::data {

void StringArrayImpl::split(std::u16string_view units) {
    for (std::size_t end = units.find(u'\0'); end != units.npos; end = units.find(u'\0')) {
        strings_.push_back(wideOf(units.substr(0, end)));
        units.remove_prefix(end + 1);
    }
}

WideString StringArrayImpl::at(std::uint32_t index) {
    return index < strings_.size() ? strings_[index] : WideString();
}

void StringArrayImpl::append(WideString text) { strings_.push_back(std::move(text)); }

bool StringArrayImpl::storeTo(metadata::IPrimitive* primitive) {
    if (!primitive || !metadata::isTextType(primitive->dataType())) return false;
    if (strings_.empty()) {
        primitive->resize(0);
        return true;
    }
    std::u16string units;
    for (const WideString& text : strings_) units.append(text.view()).push_back(u'\0');
    if (units.size() > std::numeric_limits<std::uint32_t>::max()) return false;
    primitive->writeValues(units.data(), 0, static_cast<std::uint32_t>(units.size()));
    return true;
}

namespace metadata {

IStringArray* IStringArray::to(const core::tWChar* text, unsigned count) {
    Owned<StringArrayImpl> array(new (std::nothrow) StringArrayImpl);
    if (array && text) array->split({text, count});
    return array.release();
}

}  // namespace metadata

}  // namespace norvane::platform::data
