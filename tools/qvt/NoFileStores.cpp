#include "FileStores.h"

namespace qvt {

bool isFileStore(std::string_view path) {
    constexpr std::string_view kSuffix = ".qvt";
    return path.size() > kSuffix.size() && path.substr(path.size() - kSuffix.size()) == kSuffix;
}

std::unique_ptr<IDataStore> openForReading(const std::string& path) {
    throw Failure(kMissing,
                  path + ": error: this build of qvt reads documents only; file stores are not in it");
}

}  // namespace qvt
