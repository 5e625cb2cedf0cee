#include "FileStores.h"

#include <filesystem>
#include <system_error>

namespace qvt {

namespace {

using Code = StoreError::Code;

Status statusOf(Code code) {
    switch (code) {
        case Code::notFound:
        case Code::notAStore:
        case Code::newerVersion:
        case Code::notReadable:
            return kMissing;
        case Code::damaged:
            return kDamaged;
        case Code::inUse:
        case Code::fenced:
            return kBusy;
        case Code::exists:
        case Code::readOnly:
            return kRefused;
        case Code::notWritable:
        case Code::diskFull:
            return kUnwritten;
        case Code::closed:
        case Code::wrongState:
            break;
    }
    return kFault;
}

std::string wordsOf(const StoreError& error, const std::string& openedBy) {
    std::string words = error.what();
    if (words.rfind(openedBy + ": ", 0) == 0) words.erase(0, openedBy.size() + 2);
    if (error.offset() == IDataStore::BADOFF) return words;
    return "record " + std::to_string(error.offset()) + ": " + words;
}

}  // namespace

bool isFileStore(std::string_view path) {
    constexpr std::string_view kSuffix = ".qvt";
    return path.size() > kSuffix.size() && path.substr(path.size() - kSuffix.size()) == kSuffix;
}

bool isSameFile(const std::string& left, const std::string& right) {
    std::error_code error;
    return left == right || std::filesystem::equivalent(left, right, error);
}

void mustBeFileStore(const std::string& path, const char* verb) {
    if (!isFileStore(path))
        throw Failure(kUsage, "error: " + path + " is a document; " + verb + " works on file stores (*.qvt)");
}

std::unique_ptr<IDataStore> openForReading(const std::string& path) {
    FileDataStore::Options options;
    options.access = FileDataStore::Access::readOnly;
    options.creation = FileDataStore::Creation::never;
    return std::make_unique<FileDataStore>(path, options);
}

Failure failureOf(const StoreError& error, const std::string& openedBy, const std::string& path) {
    return {statusOf(error.code()), path + ": error: " + wordsOf(error, openedBy)};
}

}  // namespace qvt
