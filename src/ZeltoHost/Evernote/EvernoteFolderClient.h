#pragma once

#include <ZeltoHost/Folder/FolderFiles.h>
#include <ZeltoIntegrations/Evernote/EvernoteClient.h>

#include <Platform/FileError.h>
#include <Platform/Result.h>
#include <TrovenhalCommon/Protected.h>
#include <ZeltoCommonLogger/LoggerClient.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

namespace zelto {

struct EvernoteImportNote;
class ServiceAccountConfiguration;

// A client of Evernote without a network, for accounts that are a folder: each note becomes a file there that
// Evernote imports (".enex"), named by its title and never in place of another file. What a note can be put
// into is in the folder's "evernote.json", with the members of EvernoteData; one that is missing is made, for
// a premium user with one notebook, and an existing one is never changed.
//
// Files follow the rules of FolderFiles. Everything is done before an operation returns; what is cancelled by
// then, from another thread, ends with `connectionError` and leaves nothing. A file that cannot be read or
// written, or a text longer than Evernote takes, is an `internalError`, whose reason is logged. Any thread.
class EvernoteFolderClient final : public EvernoteClient, protected LoggerClient {
  public:
    explicit EvernoteFolderClient(std::filesystem::path folder);

    // The client of an account that setFolder has made one of a folder; null for other accounts.
    static std::shared_ptr<EvernoteFolderClient> of(const ServiceAccountConfiguration& account);

    // Makes it an account of that folder, whose path is made absolute.
    static void setFolder(ServiceAccountConfiguration& account, const std::filesystem::path& folder);
    static std::optional<std::filesystem::path> folderOf(const ServiceAccountConfiguration& account);

    void fetchData(Completion<EvernoteData, EvernoteClientError> completion) override;
    void createNote(std::string title, std::string content, EvernoteNotebook notebook,
                    std::vector<EvernoteTag> tags, std::vector<EvernoteAttachment> attachments,
                    std::string sourceUrl, Completion<void, EvernoteClientError> completion) override;
    void cancelAllOperations() override;
    void close() override;

    // What it has made of notes, and why not.
    std::shared_ptr<const FolderFiles> files() const { return files_; }

    // Why the data could not be loaded last: the beginning of a sentence, with a path.
    std::optional<std::string> lastFailure() const { return lastFailure_.value(); }

  private:
    Result<EvernoteData, std::string> readData() const;
    Result<void, FileError> makeData() const;
    Result<void, EvernoteClientError> written(const EvernoteImportNote& note,
                                              FolderFiles::Cancellations begun);

    const std::shared_ptr<FolderFiles> files_;
    Protected<std::optional<std::string>> lastFailure_;
};

} // namespace zelto
