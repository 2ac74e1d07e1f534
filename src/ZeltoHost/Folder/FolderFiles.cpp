#include <ZeltoHost/Folder/FolderFiles.h>

#include <ZeltoIntegrations/Client/DownloadedFile.h>

#include <Platform/FileManager.h>
#include <Platform/FileNames.h>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace zelto {

namespace {

using std::filesystem::path;

// What is wrong with the folder is no matter of the file; and nobody knows the name that a file has until it
// is whole.
FileError clearer(FileError error, const path& goal) {
    switch (error.code) {
    case FileErrorCode::notFound:
    case FileErrorCode::noPermission:
    case FileErrorCode::notDirectory:
    case FileErrorCode::readOnly:
        error.path = goal.parent_path();
        return error;
    case FileErrorCode::noSpace:
    case FileErrorCode::alreadyExists:
    case FileErrorCode::isDirectory:
    case FileErrorCode::symbolicLink:
    case FileErrorCode::nameTooLong:
    case FileErrorCode::tooLarge:
    case FileErrorCode::tooManyOpenFiles:
    case FileErrorCode::other:
        error.path = goal;
        return error;
    }
    return error;
}

} // namespace

std::string withoutSeparators(std::string text) {
    std::ranges::replace_if(
        text, [](char c) { return c == '/' || c == '\\'; }, '_');
    return text;
}

FolderFiles::FolderFiles(path folder, FolderUse use) : folder_(std::move(folder)), use_(use) {}

Result<path, FolderFiles::Failure> FolderFiles::make(const std::string& name, Cancellations begun,
                                                     const Content& content) {
    auto made = use_ == FolderUse::plans ? planned(name) : written(name, begun, content);
    if (made) {
        files_.modify([&](auto& files) { files.push_back(*made); });
        return *std::move(made);
    }
    if (isCancelled(begun)) {
        return failure(Failure());
    }
    lastError_.exchange(made.error());
    return failure(Failure(std::move(made.error())));
}

Result<path, FileError> FolderFiles::written(const std::string& name, Cancellations begun,
                                             const Content& content) {
    const auto goal = folder_ / name;
    const FileError cancelled{FileErrorCode::other, ECANCELED, goal};
    auto file = DownloadedFile::create(goal);
    if (!file) {
        return failure(clearer(std::move(file.error()), goal));
    }
    const auto whole = content([&](std::string_view piece) -> Result<void, FileError> {
        return isCancelled(begun)
                   ? failure(cancelled)
                   : file->append({reinterpret_cast<const std::uint8_t*>(piece.data()), piece.size()});
    });
    if (!whole) {
        return failure(whole.error());
    }
    if (isCancelled(begun)) {
        return failure(cancelled);
    }
    auto finished = file->finish();
    if (!finished) {
        return failure(clearer(std::move(finished.error()), goal));
    }
    if (const auto kept = FileManager::syncDirectory(folder_); !kept) {
        std::error_code ignored;
        std::filesystem::remove(*finished, ignored);
        return failure(kept.error());
    }
    return finished;
}

Result<path, FileError> FolderFiles::planned(const std::string& name) const {
    if (const auto opened = FileManager::openFile(folder_, O_RDONLY | O_DIRECTORY); !opened) {
        return failure(opened.error());
    }
    if (::access(folder_.c_str(), W_OK | X_OK) != 0) {
        return failure(FileError::fromSystem(errno, folder_));
    }
    auto file = folder_ / name;
    for (std::size_t number = 1; isTaken(file); ++number) {
        file = folder_ / numberedFileName(name, number);
    }
    return file;
}

bool FolderFiles::isTaken(const path& file) const {
    std::error_code ignored;
    return std::filesystem::symlink_status(file, ignored).type() != std::filesystem::file_type::not_found ||
           files_.read([&](const auto& files) { return std::ranges::find(files, file) != files.end(); });
}

} // namespace zelto
