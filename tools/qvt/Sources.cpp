#include "Sources.h"

#include "FileStores.h"
#include "Input.h"
#include "Reading.h"
#include "norvane/platform/core/storage/datastore/MemoryDataStore.h"

namespace qvt {

namespace {

using core::storage::datastore::MemoryDataStore;

}  // namespace

Source::Source(const std::string& path, const Libraries& libraries, Messages& messages) : name_(path) {
    if (isFileStore(path)) {
        store_ = openForReading(path);
        return;
    }
    const Input input(path);
    name_ = input.name();
    store_ = std::make_unique<MemoryDataStore>();
    const SharedPtr<ISchemaLocator> locator = libraries.locatorFor(*store_);
    Reading(*locator, messages).into(*store_, input);
}

Libraries::Libraries(const std::vector<std::string>& paths, Messages& messages) {
    for (const std::string& path : paths) sources_.push_back(std::make_unique<Source>(path, *this, messages));
}

SharedPtr<ISchemaLocator> Libraries::locatorFor(IDataStore& store) const {
    SharedPtr<ISchemaLocator> locator = ISchemaLocator::make(&store);
    for (const auto& source : sources_) locator->addStore(&source->store());
    return locator;
}

std::vector<IDataStore*> Libraries::storesWith(IDataStore& store) const {
    std::vector<IDataStore*> stores{&store};
    for (const auto& source : sources_) stores.push_back(&source->store());
    return stores;
}

}  // namespace qvt
