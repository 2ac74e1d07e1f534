#include <ZeltoIntegrations/Client/DownloadedFile.h>

#include <Platform/FileManager.h>
#include <Platform/FileNames.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

namespace zelto {

namespace {

using std::filesystem::path;

constexpr std::string_view partExtension = ".part";
constexpr std::size_t maximumPartStem = 250;  // bytes, so that the extension fits
constexpr std::size_t maximumNumber = 10'000; // in a folder that is full of the name

path partOf(const path& goal) {
    return goal.parent_path() /
           fileNameCutTo(goal.filename().native(), maximumPartStem).append(partExtension);
}

// The first path, of the given one and its numbered ones, for which the function does not find the name
// taken. It is the function that takes the name, so that nobody else can do it in between.
template <class F> Result<path, FileError> takenPath(const path& wanted, F take) {
    auto candidate = wanted;
    for (std::size_t number = 1;; ++number) {
        Result<void, FileError> taken = take(candidate);
        if (taken) {
            return candidate;
        }
        if (taken.error().code != FileErrorCode::alreadyExists || number > maximumNumber) {
            return failure(std::move(taken.error()));
        }
        candidate = wanted.parent_path() / numberedFileName(wanted.filename().native(), number);
    }
}

} // namespace

DownloadedFile::DownloadedFile(FileDescriptor file, path part, path goal)
    : file_(std::move(file)), part_(std::move(part)), goal_(std::move(goal)) {}

DownloadedFile::DownloadedFile(DownloadedFile&& other) noexcept
    : file_(std::move(other.file_)), part_(std::exchange(other.part_, {})), goal_(std::move(other.goal_)) {}

DownloadedFile::~DownloadedFile() {
    if (!part_.empty()) {
        std::error_code ignored;
        std::filesystem::remove(part_, ignored);
    }
}

Result<DownloadedFile, FileError> DownloadedFile::create(path goal) {
    if (!goal.has_filename()) {
        return failure(FileError{FileErrorCode::isDirectory, 0, std::move(goal)});
    }
    FileDescriptor file;
    auto part = takenPath(partOf(goal), [&](const path& candidate) -> Result<void, FileError> {
        auto created = FileManager::createFile(candidate);
        if (!created) {
            return failure(std::move(created.error()));
        }
        file = std::move(*created);
        return {};
    });
    if (!part) {
        return failure(std::move(part.error()));
    }
    return DownloadedFile(std::move(file), *std::move(part), std::move(goal));
}

Result<void, FileError> DownloadedFile::append(std::span<const std::uint8_t> bytes) {
    return FileManager::writeAll(file_, {reinterpret_cast<const char*>(bytes.data()), bytes.size()}, goal_);
}

Result<path, FileError> DownloadedFile::finish() {
    if (auto flushed = FileManager::syncFile(file_, goal_); !flushed) {
        return failure(std::move(flushed.error()));
    }
    auto whole = takenPath(
        goal_, [&](const path& candidate) { return FileManager::moveWithoutReplacing(part_, candidate); });
    if (whole) {
        part_.clear();
    }
    return whole;
}

} // namespace zelto
