#include <ZeltoHost/Evernote/EvernoteFolderClient.h>

#include <ZeltoHost/Evernote/EvernoteImportFile.h>
#include <ZeltoHost/Evernote/EvernoteNoteContent.h>
#include <ZeltoHost/Folder/AccountFolder.h>
#include <ZeltoIntegrations/Accounts/ServiceAccountConfiguration.h>

#include <Platform/FileManager.h>
#include <Platform/FileNames.h>
#include <Platform/Text.h>
#include <Platform/UUID.h>

#include <system_error>
#include <utility>

namespace zelto {

namespace {

using std::filesystem::path;

constexpr auto folderKey = "evernoteFolder";
constexpr auto dataName = "evernote.json";
constexpr std::uint64_t maximumData = std::uint64_t{16} << 20;
constexpr std::size_t maximumContent = 5'242'880; // characters of a note, with its markup

// Of the folder's own name, which tells several folders apart.
EvernoteData newData(const path& folder) {
    const auto name = folder.filename().native();
    return {.user = {.username = cleanedFileName(name, "me"), .premium = true},
            .notebooks = {{.id = "notes", .name = "Notes"}},
            .tags = {}};
}

std::string fileNameOf(std::string title) {
    return cleanedFileName(withoutSeparators(std::move(title)), "Note") + ".enex";
}

// A character has one byte at least.
bool isTooLong(const std::string& content) {
    return content.size() > maximumContent && codePointCount(content) > maximumContent;
}

} // namespace

EvernoteFolderClient::EvernoteFolderClient(path folder)
    : files_(std::make_shared<FolderFiles>(std::move(folder))) {}

std::shared_ptr<EvernoteFolderClient> EvernoteFolderClient::of(const ServiceAccountConfiguration& account) {
    const auto folder = folderOf(account);
    return folder ? std::make_shared<EvernoteFolderClient>(*folder) : nullptr;
}

void EvernoteFolderClient::setFolder(ServiceAccountConfiguration& account, const path& folder) {
    AccountFolder::set(account, folderKey, folder);
}

std::optional<path> EvernoteFolderClient::folderOf(const ServiceAccountConfiguration& account) {
    return AccountFolder::of(account, folderKey);
}

void EvernoteFolderClient::fetchData(Completion<EvernoteData, EvernoteClientError> completion) {
    if (files_->isCancelled(files_->begin())) {
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
    const auto file = files_->folder() / dataName;
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
    const auto json = JSONEncoder{.indent = 2}.encode(newData(files_->folder())).value_or("{}") + "\n";
    const auto part = files_->folder() / (".zelto-" + uuid());
    if (auto file = FileManager::writeFileAtomically(part, json); !file) {
        return file;
    }
    auto moved = FileManager::moveWithoutReplacing(part, files_->folder() / dataName);
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
    const auto begun = files_->begin();
    auto enml = evernoteNoteContent(std::move(content), attachments);
    completion(written({.title = std::move(title),
                        .content = std::move(enml),
                        .created = Date::now(),
                        .notebook = std::move(notebook),
                        .tags = std::move(tags),
                        .sourceUrl = std::move(sourceUrl),
                        .attachments = std::move(attachments)},
                       begun));
}

Result<void, EvernoteClientError> EvernoteFolderClient::written(const EvernoteImportNote& note,
                                                                FolderFiles::Cancellations begun) {
    const auto made = files_->make(fileNameOf(note.title), begun, [&](const FolderFiles::Append& append) {
        return isTooLong(note.content)
                   ? failure(FileError{FileErrorCode::tooLarge, 0, files_->folder() / fileNameOf(note.title)})
                   : writeEvernoteImportFile(note, append);
    });
    if (made) {
        return {};
    }
    if (!made.error()) {
        return failure(EvernoteClientError::connectionError);
    }
    lvxLogError("The note for Evernote cannot be written: " + made.error()->message(),
                "createNote(title:content:notebook:tags:attachments:sourceUrl:completion:)");
    return failure(EvernoteClientError::internalError);
}

void EvernoteFolderClient::cancelAllOperations() {
    files_->cancelAll();
}

void EvernoteFolderClient::close() {
    files_->close();
}

} // namespace zelto
