#include <ZeltoHost/Evernote/EvernoteFolderClient.h>

#include <ZeltoHost/Evernote/EvernoteImportFile.h>
#include <ZeltoHost/Evernote/EvernoteNoteContent.h>
#include <ZeltoIntegrations/Accounts/ServiceAccountConfiguration.h>
#include <ZeltoIntegrations/Client/DownloadedFile.h>

#include <Platform/FileManager.h>
#include <Platform/FileNames.h>
#include <Platform/UUID.h>

#include <algorithm>
#include <system_error>
#include <utility>

namespace zelto {

namespace {

using std::filesystem::path;

constexpr auto folderKey = "evernoteFolder";
constexpr auto dataName = "evernote.json";
constexpr std::uint64_t maximumData = std::uint64_t{16} << 20;

// Of the folder's own name, which tells several folders apart.
EvernoteData newData(const path& folder) {
    const auto name = folder.filename().native();
    return {.user = {.username = cleanedFileName(name, "me"), .premium = true},
            .notebooks = {{.id = "notes", .name = "Notes"}},
            .tags = {}};
}

// What separates folders is a part of the title.
path fileNameOf(std::string title) {
    std::ranges::replace_if(
        title, [](char c) { return c == '/' || c == '\\'; }, '_');
    return cleanedFileName(title, "Note") + ".enex";
}

} // namespace

EvernoteFolderClient::EvernoteFolderClient(path folder) : folder_(std::move(folder)) {}

std::shared_ptr<EvernoteFolderClient> EvernoteFolderClient::of(const ServiceAccountConfiguration& account) {
    const auto folder = folderOf(account);
    return folder ? std::make_shared<EvernoteFolderClient>(*folder) : nullptr;
}

void EvernoteFolderClient::setFolder(ServiceAccountConfiguration& account, const path& folder) {
    std::error_code error;
    const auto absolute = std::filesystem::absolute(folder, error).lexically_normal();
    // A "/" at the end is no name.
    account.additionalInfo[folderKey] =
        (absolute.has_filename() ? absolute : absolute.parent_path()).native();
}

std::optional<path> EvernoteFolderClient::folderOf(const ServiceAccountConfiguration& account) {
    const auto folder = account.additionalInfo.find(folderKey);
    if (folder == account.additionalInfo.end() || !path(folder->second).is_absolute()) {
        return std::nullopt;
    }
    return folder->second;
}

void EvernoteFolderClient::fetchData(Completion<EvernoteData, EvernoteClientError> completion) {
    if (isClosed_) {
        return completion(failure(EvernoteClientError::connectionError));
    }
    auto data = readData();
    if (data) {
        return completion(*std::move(data));
    }
    lastFailure_.exchange(data.error());
    lvxLogError("The data of the folder for Evernote cannot be loaded: " + data.error(),
                "fetchData(completion:)");
    completion(failure(EvernoteClientError::internalError));
}

Result<EvernoteData, std::string> EvernoteFolderClient::readData() const {
    const auto file = folder_ / dataName;
    auto bytes = FileManager::readFile(file, maximumData);
    if (!bytes && bytes.error().code == FileErrorCode::notFound) {
        if (const auto made = makeData(); !made) {
            return failure(made.error().message());
        }
        bytes = FileManager::readFile(file, maximumData);
    }
    if (!bytes) {
        return failure(bytes.error().message());
    }
    auto data = JSONDecoder().decode<EvernoteData>(viewOf(*bytes));
    return data ? Result<EvernoteData, std::string>(*std::move(data))
                : failure("'" + file.native() + "' is not as it should be: " + data.error().message());
}

// Whoever makes the file at the same moment is first.
Result<void, FileError> EvernoteFolderClient::makeData() const {
    const auto json = JSONEncoder{.indent = 2}.encode(newData(folder_)).value_or("{}") + "\n";
    const auto part = folder_ / (".zelto-" + uuid());
    if (auto file = FileManager::writeFileAtomically(part, json); !file) {
        return file;
    }
    auto moved = FileManager::moveWithoutReplacing(part, folder_ / dataName);
    if (!moved) {
        std::error_code ignored;
        std::filesystem::remove(part, ignored);
    }
    return moved || moved.error().code == FileErrorCode::alreadyExists ? Result<void, FileError>() : moved;
}

void EvernoteFolderClient::createNote(std::string title, std::string content, EvernoteNotebook notebook,
                                      std::vector<EvernoteTag> tags,
                                      std::vector<EvernoteAttachment> attachments, std::string sourceUrl,
                                      Completion<void, EvernoteClientError> completion) {
    const auto before = cancellations_.load();
    auto enml = evernoteNoteContent(std::move(content), attachments);
    completion(written({.title = std::move(title),
                        .content = std::move(enml),
                        .created = Date::now(),
                        .notebook = std::move(notebook),
                        .tags = std::move(tags),
                        .sourceUrl = std::move(sourceUrl),
                        .attachments = std::move(attachments)},
                       before));
}

Result<void, EvernoteClientError> EvernoteFolderClient::written(const EvernoteImportNote& note,
                                                                Cancellations before) {
    auto file = DownloadedFile::create(folder_ / fileNameOf(note.title));
    if (!file) {
        return failed(file.error());
    }
    const auto whole = writeEvernoteImportFile(note, [&file](std::string_view piece) {
        return file->append({reinterpret_cast<const std::uint8_t*>(piece.data()), piece.size()});
    });
    if (isCancelled(before)) {
        return failure(EvernoteClientError::connectionError);
    }
    if (!whole) {
        return failed(whole.error());
    }
    const auto finished = file->finish();
    if (!finished) {
        return failed(finished.error());
    }
    lastFile_.exchange(*finished);
    return {};
}

Result<void, EvernoteClientError> EvernoteFolderClient::failed(const FileError& error) {
    lastFailure_.exchange(error.message());
    lvxLogError("The note for Evernote cannot be written: " + error.message(),
                "createNote(title:content:notebook:tags:attachments:sourceUrl:completion:)");
    return failure(EvernoteClientError::internalError);
}

void EvernoteFolderClient::cancelAllOperations() {
    ++cancellations_;
}

void EvernoteFolderClient::close() {
    isClosed_ = true;
}

} // namespace zelto
