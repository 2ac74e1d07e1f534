#include <ZeltoHost/ICloud/ICloudFolderClient.h>

#include <ZeltoHost/Folder/AccountFolder.h>

#include <Platform/FileManager.h>
#include <Platform/FileNames.h>

#include <cerrno>
#include <fcntl.h>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace zelto {

namespace {

using std::filesystem::path;

constexpr auto folderKey = "iCloudFolder";
constexpr std::size_t pieceSize = std::size_t{256} << 10;

// A name that is an extension alone, as a message without a title has it, would be hidden.
std::string nameInFolder(const path& file) {
    const auto name = withoutSeparators(file.filename().native());
    const auto dot = name.rfind('.');
    const bool hasStem = dot == std::string::npos || !cleanedFileName(name.substr(0, dot), "").empty();
    return cleanedFileName(hasStem ? name : "unnamed" + name.substr(dot));
}

// Other files, such as pipes, may have no end.
Result<FileDescriptor, FileError> openedRegular(const path& file) {
    auto opened = FileManager::openFile(file, O_RDONLY | O_NONBLOCK);
    std::error_code ignored;
    if (opened && !std::filesystem::is_regular_file(file, ignored)) {
        return failure(
            FileError::fromSystem(std::filesystem::is_directory(file, ignored) ? EISDIR : ESPIPE, file));
    }
    return opened;
}

Result<void, FileError> copy(const path& file, const FolderFiles::Append& append) {
    const auto source = openedRegular(file);
    if (!source) {
        return failure(source.error());
    }
    std::vector<char> piece(pieceSize);
    for (;;) {
        const auto count = FileManager::readSome(*source, piece, file);
        if (!count) {
            return failure(count.error());
        }
        if (*count == 0) {
            return {};
        }
        if (auto appended = append({piece.data(), *count}); !appended) {
            return appended;
        }
    }
}

} // namespace

ICloudFolderClient::ICloudFolderClient(path folder, FolderUse use)
    : files_(std::make_shared<FolderFiles>(std::move(folder), use)) {}

std::shared_ptr<ICloudFolderClient> ICloudFolderClient::of(const ServiceAccountConfiguration& account,
                                                           FolderUse use) {
    const auto folder = folderOf(account);
    return folder ? std::make_shared<ICloudFolderClient>(*folder, use) : nullptr;
}

void ICloudFolderClient::setFolder(ServiceAccountConfiguration& account, const path& folder) {
    AccountFolder::set(account, folderKey, folder);
}

std::optional<path> ICloudFolderClient::folderOf(const ServiceAccountConfiguration& account) {
    return AccountFolder::of(account, folderKey);
}

void ICloudFolderClient::uploadFile(path file, Completion<void, ICloudClientError> completion) {
    const auto made = files_->make(nameInFolder(file), files_->begin(),
                                   [&file](const FolderFiles::Append& append) { return copy(file, append); });
    if (made) {
        return completion({});
    }
    if (!made.error()) {
        return completion(failure(ICloudClientError::canceled));
    }
    lvxLogError("The file for iCloud Drive cannot be written: " + made.error()->message(),
                "uploadFile(path:completion:)");
    completion(failure(ICloudClientError::internalError));
}

} // namespace zelto
