#include "schema/SchemaLocatorImpl.h"

#include <algorithm>
#include <string>
#include <utility>

#include "model/Open.h"
#include "norvane/platform/core/string/KeyHash.h"
#include "records/FirstFailure.h"
#include "schema/SchemaImpl.h"
#include "schema/TypeSearch.h"

namespace norvane::platform::data::metadata {

SharedPtr<ISchemaLocator> ISchemaLocator::make(IDataStore* store) {
    const SharedPtr<Schema::SchemaLocatorImpl> locator(new Schema::SchemaLocatorImpl);
    locator->addStore(store);
    return locator;
}

}  // namespace norvane::platform::data::metadata

namespace norvane::platform::data::Schema {

namespace {

constexpr auto kTable = static_cast<std::uint8_t>(Record::Kind::table);

}  // namespace

// Of what stands at the address, not of the address: a registered store must be alive, because the map hashes
// it again when it grows.
std::size_t SchemaLocatorImpl::StoreCompare::hash(const IDataStore* store) {
    constexpr std::size_t kHashedBytes = 8;
    static_assert(sizeof(IDataStore) >= kHashedBytes);
    return core::string::wideKeyHash(store, kHashedBytes);
}

SchemaLocatorImpl::~SchemaLocatorImpl() noexcept(false) {
    FirstFailure failures;
    for (Layout* layout : owned_) failures.attempt([layout] { delete layout; });
    if (!unwinding_.isUnwinding()) failures.rethrow();
}

SharedPtr<metadata::ISchema> SchemaLocatorImpl::locate(WideString names) {
    if (!names.value()) return {};
    std::vector<Layout*> found = TypeSearch(*this).locate(Record::textOf(names.value()));
    if (found.empty()) return {};
    return SharedPtr<SchemaImpl>(new SchemaImpl(std::move(found)));
}

void SchemaLocatorImpl::addStore(IDataStore* store) {
    if (!store) return;
    const std::lock_guard lock(mutex_);
    const bool isNew = storeSet_.insert({store, true});
    try {
        storeList_ = listWithout(nullptr);
    } catch (...) {
        if (isNew) storeSet_.erase(store);
        throw;
    }
}

bool SchemaLocatorImpl::removeStore(IDataStore* store) {
    if (!store) return false;
    std::vector<Leaving> leaving;
    {
        const std::lock_guard lock(mutex_);
        if (storeSet_.count(store) == 0) return false;
        StoreList left = listWithout(store);
        leaving = takeLayoutsOn(store);
        storeSet_.erase(store);
        storeList_ = std::move(left);
    }
    roots_.forget(store);
    FirstFailure failures;
    for (const Leaving& each : leaving)
        failures.attempt([&each] { each.isDeleted ? delete each.layout : each.layout->closeTable(); });
    failures.rethrow();
    return true;
}

void SchemaLocatorImpl::clearStores() {
    auto none = std::make_shared<const std::vector<IDataStore*>>();
    const std::lock_guard lock(mutex_);
    storeSet_.clear();
    storeList_ = std::move(none);
    roots_.forgetAll();
}

TablePlace SchemaLocatorImpl::tableNamed(std::u16string_view name) {
    const std::size_t dot = name.find(u'.');
    const StoreList asked = stores();
    for (IDataStore* store : *asked) {
        if (store->size() == 0) continue;
        std::uint32_t offset = roots_.find(store, name.substr(0, dot));
        if (dot != name.npos) offset = Metadata::resolvePath(store, offset, name.substr(dot + 1));
        if (offset == IDataStore::BADOFF) continue;
        if (Record::kindOf(store, offset) == kTable) return {store, offset};
    }
    return {};
}

Layout* SchemaLocatorImpl::publish(Owned<Layout> layout) {
    const std::lock_guard lock(mutex_);
    if (owned_.size() == owned_.capacity()) owned_.reserve(owned_.size() * 2 + 8);
    layoutCache_.put(layout->name(), layout.get());
    owned_.push_back(layout.get());
    return layout.release();
}

SchemaLocatorImpl::StoreList SchemaLocatorImpl::stores() {
    const std::lock_guard lock(mutex_);
    return storeList_;
}

SchemaLocatorImpl::StoreList SchemaLocatorImpl::listWithout(const IDataStore* store) const {
    std::vector<IDataStore*> stores;
    stores.reserve(storeSet_.size());
    for (const auto& [each, unused] : storeSet_)
        if (each != store) stores.push_back(each);
    return std::make_shared<const std::vector<IDataStore*>>(std::move(stores));
}

// All memory is taken before the first entry goes.
std::vector<SchemaLocatorImpl::Leaving> SchemaLocatorImpl::takeLayoutsOn(IDataStore* store) {
    std::vector<Leaving> leaving;
    leaving.reserve(owned_.size());
    const auto goes = [&](Layout* layout) {
        if (!layout->isOpenOn(store)) return false;
        leaving.push_back({layout, uncache(layout)});
        return leaving.back().isDeleted;
    };
    owned_.erase(std::remove_if(owned_.begin(), owned_.end(), goes), owned_.end());
    return leaving;
}

// False if another layout of that name is cached.
bool SchemaLocatorImpl::uncache(Layout* layout) {
    Layout* cached = layoutCache_.find(layout->name());
    if (cached && cached != layout) return false;
    layoutCache_.remove(layout->name());
    return true;
}

}  // namespace norvane::platform::data::Schema
