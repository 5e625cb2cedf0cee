#include "FileStores.h"

#include <filesystem>
#include <fstream>
#include <system_error>

#include "Text.h"

namespace qvt {

namespace {

using Code = StoreError::Code;

constexpr std::size_t kLongestBeginning = 64;

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

bool beginsAsDocument(const std::string& path) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error)) return false;
    std::string beginning(kLongestBeginning, '\0');
    std::ifstream file(path, std::ios::binary);
    file.read(beginning.data(), static_cast<std::streamsize>(beginning.size()));
    if (beginning.rfind("\xEF\xBB\xBF", 0) == 0) beginning.erase(0, 3);
    const std::size_t first = beginning.find_first_not_of(" \t\r\n");
    return first != std::string::npos && beginning[first] == '<';
}

Failure failureAt(const StoreError& error, const std::string& name, std::string_view words) {
    std::string message = name + ": error: ";
    if (error.code() == Code::notAStore && beginsAsDocument(name))
        words = "a document, but its name ends in .qvt, as that of a file store does";
    if (error.offset() != IDataStore::BADOFF) message += "record " + std::to_string(error.offset()) + ": ";
    return {statusOf(error.code()), message + std::string(words)};
}

std::string folderOf(const std::string& file) { return file.substr(0, file.rfind('/') + 1); }

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
    if (isFileStore(path)) return;
    std::error_code unknown;
    const auto status = std::filesystem::status(path, unknown);
    const char* what = " is a document; ";
    if (std::filesystem::is_directory(status)) what = " is a folder; ";
    if (path != "-" && !std::filesystem::exists(status)) what = " does not end in .qvt; ";
    throw Failure(kUsage, "error: " + shown(path) + what + verb + " works on file stores (*.qvt)");
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
    if (wordsBehind(folderOf(file), error.what())) return failureAt(error, name, error.what());
    return std::nullopt;
}

Failure failureOf(const StoreError& error, const std::string& name) {
    return failureAt(error, name, error.what());
}

}  // namespace qvt
