#include "accounts/FolderAccounts.h"

#include "accounts/ServiceNames.h"
#include "base/PreparedFolder.h"
#include "base/Waiting.h"

#include <ZeltoHost/Evernote/EvernoteFolderClient.h>

namespace zelto::cli {

namespace {

using Account = ServiceAccountConfiguration;

// What a sign-in is made with.
constexpr const char* signInOptions[] = {"--no-browser", "--opener",         "--redirect",
                                         "--token",      "--refresh-token",  "--expires-in",
                                         "--login",      "--password-stdin", "--follow"};

Outcome<void> checkOptions(const Invocation& invocation, ServiceType type) {
    if (!takesFolder(type)) {
        return wrongUsage("An account of " + displayName(type) + " is no folder: leave out --folder.",
                          "zelto connect --help");
    }
    if (invocation.has("--name")) {
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
Outcome<void> checkData(const std::filesystem::path& folder) {
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

} // namespace

bool takesFolder(ServiceType type) {
    return type == ServiceType::Evernote;
}

bool isFolderAccount(const Account& account) {
    return takesFolder(account.serviceType()) && EvernoteFolderClient::folderOf(account);
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
    EvernoteFolderClient::setFolder(account, *folder);
    const auto path = EvernoteFolderClient::folderOf(account).value();
    const auto prepared = prepareFolder(path);
    const auto checked = prepared ? checkData(path) : prepared;
    if (!checked) {
        return failure(checked.error());
    }
    // An account has a record of secrets; this one's is empty.
    account.credentials = ServiceAccountCredentials::forIdentifier(account.identifier());
    return account;
}

} // namespace zelto::cli
