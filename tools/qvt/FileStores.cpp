#include "FileStores.h"

#include <filesystem>
#include <fstream>
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

Failure failureAt(const StoreError& error, const std::string& name, std::string_view words) {
    std::string message = name + ": error: ";
    if (error.offset() != IDataStore::BADOFF) message += "record " + std::to_string(error.offset()) + ": ";
    return {statusOf(error.code()), message + std::string(words)};
}

// What stands behind the name of a file, or nothing.
std::optional<std::string_view> wordsBehind(const std::string& file, std::string_view text) {
    if (file.empty() || text.substr(0, file.size()) != file || text.substr(file.size(), 2) != ": ")
        return std::nullopt;
    return text.substr(file.size() + 2);
}

}  // namespace

bool isFileStore(std::string_view path) {
    constexpr std::string_view kSuffix = ".qvt";
    return path.size() > kSuffix.size() && path.substr(path.size() - kSuffix.size()) == kSuffix;
}

bool beginsAsFileStore(std::string_view bytes) {
    constexpr std::string_view kMagic("SQLite format 3", 16);  // with the NUL at its end
    return bytes.substr(0, kMagic.size()) == kMagic;
}

bool holdsFileStore(const std::string& path) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error)) return false;
    char beginning[16] = "";
    std::ifstream file(path, std::ios::binary);
    file.read(beginning, sizeof beginning);
    return beginsAsFileStore({beginning, static_cast<std::size_t>(file.gcount())});
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

std::optional<Failure> failureOf(const StoreError& error, const std::string& file, const std::string& name) {
    std::error_code ignored;
    for (const std::string& each : {file, std::filesystem::weakly_canonical(file, ignored).string(),
                                    std::filesystem::absolute(file, ignored).string()})
        if (const auto words = wordsBehind(each, error.what())) return failureAt(error, name, *words);
    return std::nullopt;
}

Failure failureOf(const StoreError& error, const std::string& name) {
    return failureAt(error, name, error.what());
}

}  // namespace qvt
