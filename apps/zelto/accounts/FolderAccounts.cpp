#include "accounts/FolderAccounts.h"

#include "accounts/GivenCredentials.h"
#include "accounts/ServiceNames.h"
#include "base/PreparedFolder.h"
#include "base/Waiting.h"

#include <ZeltoHost/Evernote/EvernoteFolderClient.h>
#include <ZeltoHost/ICloud/ICloudFolderClient.h>

#include <Platform/FileNames.h>

#include <algorithm>
#include <iterator>

namespace zelto::cli {

namespace {

using Account = ServiceAccountConfiguration;

// What a sign-in is made with.
constexpr const char* signInOptions[] = {"--no-browser", "--opener",         "--redirect",
                                         "--token",      "--refresh-token",  "--expires-in",
                                         "--login",      "--password-stdin", "--follow"};

Outcome<void> checkEvernoteData(const std::filesystem::path& folder);

Outcome<void> needsNoData(const std::filesystem::path&) {
    return {};
}

// A service whose accounts may be folders.
struct FolderService {
    ServiceType type;
    void (*setFolder)(Account& account, const std::filesystem::path& folder);
    std::optional<std::filesystem::path> (*folderOf)(const Account& account);
    Outcome<void> (*checkData)(const std::filesystem::path& folder);
    bool hasData; // which say whose it is
    bool importsFiles;
};

constexpr FolderService services[] = {
    {.type = ServiceType::Evernote,
     .setFolder = EvernoteFolderClient::setFolder,
     .folderOf = EvernoteFolderClient::folderOf,
     .checkData = checkEvernoteData,
     .hasData = true,
     .importsFiles = true},
    {.type = ServiceType::iCloudDrive,
     .setFolder = ICloudFolderClient::setFolder,
     .folderOf = ICloudFolderClient::folderOf,
     .checkData = needsNoData,
     .hasData = false,
     .importsFiles = false},
};

const FolderService* serviceOf(ServiceType type) {
    const auto* const service = std::ranges::find(services, type, &FolderService::type);
    return service == std::end(services) ? nullptr : service;
}

Outcome<void> checkOptions(const Invocation& invocation, ServiceType type) {
    const auto* const service = serviceOf(type);
    if (!service) {
        return wrongUsage("An account of " + displayName(type) + " is no folder: leave out --folder.",
                          "zelto connect --help");
    }
    if (service->hasData && invocation.has("--name")) {
        return wrongUsage("The account of a folder is named by the username in the folder's evernote.json: "
                          "leave out --name.",
                          "zelto connect --help");
    }
    for (const auto* option : signInOptions) {
        if (invocation.has(option)) {
            return wrongUsage("A folder needs no sign-in: leave out " + std::string(option) + ".",
                              "zelto connect --help");
        }
    }
    return {};
}

// What is wrong with the folder's data is said here, where its words are at hand.
Outcome<void> checkEvernoteData(const std::filesystem::path& folder) {
    EvernoteFolderClient client(folder);
    const auto data = waitFor<Result<EvernoteData, EvernoteClientError>>(
        [&](auto done) { client.fetchData(std::move(done)); });
    if (data) {
        return {};
    }
    return failure(
        Failure{"dataLoadingError",
                client.lastFailure().value_or("The folder's data cannot be read") + ", so nothing was kept.",
                NextCommand::again()});
}

// Where no data say whose a folder is, its own name tells several of them apart.
Account named(const Account& account, const std::filesystem::path& folder) {
    const auto name = account.userName().value_or(cleanedFileName(folder.filename().native(), "me"));
    return Account(account.serviceType(), name, true);
}

// An account that is asked whose it is has a record of secrets; this one's is empty.
Account withEmptySecrets(Account account) {
    account.credentials = ServiceAccountCredentials::forIdentifier(account.identifier());
    return account;
}

} // namespace

bool takesFolder(ServiceType type) {
    return serviceOf(type) != nullptr;
}

bool importsFiles(ServiceType type) {
    const auto* const service = serviceOf(type);
    return service && service->importsFiles;
}

std::string connectCommand(ServiceType type) {
    const std::string name(nameOf(type));
    const bool mustBeFolder = takesFolder(type) && !canSignIn(type);
    return "zelto connect " + name + (mustBeFolder ? " --folder " + name : "");
}

bool isFolderAccount(const Account& account) {
    const auto* const service = serviceOf(account.serviceType());
    return service && service->folderOf(account);
}

Outcome<std::optional<Account>> folderAccount(const Invocation& invocation, Account account) {
    const auto folder = invocation.value("--folder");
    if (!folder) {
        return std::nullopt;
    }
    if (const auto possible = checkOptions(invocation, account.serviceType()); !possible) {
        return failure(possible.error());
    }
    if (folder->empty()) {
        return wrongUsage("--folder takes the path of a folder.", "zelto connect --help");
    }
    const auto& service = *serviceOf(account.serviceType());
    service.setFolder(account, *folder);
    const auto path = service.folderOf(account).value();
    const auto prepared = prepareFolder(path);
    const auto checked = prepared ? service.checkData(path) : prepared;
    if (!checked) {
        return failure(checked.error());
    }
    if (service.hasData) {
        return withEmptySecrets(std::move(account));
    }
    account = named(account, path);
    service.setFolder(account, path);
    return account;
}

} // namespace zelto::cli
