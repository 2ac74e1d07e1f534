#include "accounts/Workspace.h"

#include "accounts/DeferredKeyChain.h"
#include "accounts/FolderAccounts.h"
#include "accounts/ServiceNames.h"
#include "base/FileFailure.h"
#include "base/ShellText.h"
#include "base/Terminal.h"

#include <ZeltoHost/Storage/AccountRefreshLock.h>
#include <ZeltoHost/Storage/ConnectingFlow.h>
#include <ZeltoIntegrations/Accounts/ServiceFacts.h>

#include <Platform/FileManager.h>
#include <Platform/Joined.h>
#include <Platform/Text.h>

#include <algorithm>

namespace zelto::cli {

namespace {

using Accounts = std::vector<ServiceAccountConfiguration>;

Failure ambiguousAccount(ServiceType type, const Accounts& accounts) {
    return {"ambiguousAccount",
            displayName(type) + " has several accounts: " +
                joined(accounts, ", ", &ServiceAccountConfiguration::identifier) + ".",
            "zelto accounts"};
}

std::optional<ServiceAccountConfiguration> accountOf(const Accounts& accounts,
                                                     const std::string& identifier) {
    const auto found = std::ranges::find_if(
        accounts, [&](const auto& account) { return account.identifier() == identifier; });
    return found == accounts.end() ? std::nullopt : std::optional(*found);
}

Failure unknownAccount(const std::string& idOrService) {
    return {"unknownAccount", "There is no account and no service \"" + idOrService + "\".",
            "zelto accounts"};
}

Failure notConnected(ServiceType type) {
    return {"unknownAccount", "No account of " + displayName(type) + " is connected.", connectCommand(type)};
}

// The other reasons may be gone at the next attempt, which another directory without the accounts does not
// help.
bool needsAnotherDirectory(StorageErrorCode code) {
    switch (code) {
    case StorageErrorCode::foreignOwner:
    case StorageErrorCode::openToOthers:
    case StorageErrorCode::cannotAccess:
    case StorageErrorCode::damaged:
    case StorageErrorCode::newerVersion:
        return true;
    case StorageErrorCode::noSpace:
    case StorageErrorCode::readOnly:
    case StorageErrorCode::busy:
    case StorageErrorCode::moved:
    case StorageErrorCode::recordDamaged:
    case StorageErrorCode::notEncodable:
        return false;
    }
    return false;
}

// Secrets that were kept for a while are erased in whichever key chain they are.
void eraseOldSecrets(const std::filesystem::path& directory) {
    RestorableKeyChain::eraseOld(directory, [](const std::string& name) {
        const auto kind = kindNamed(name);
        const auto keyChain = DeferredKeyChain::installed();
        return kind && keyChain ? keyChain->storeOf(*kind) : nullptr;
    });
}

} // namespace

std::filesystem::path dataDirectory(const Invocation& invocation) {
    const auto given = invocation.value("--data-dir");
    return given ? std::filesystem::path(*given) : FileManager::userDataDirectory() / "zelto";
}

void installKeyChain(const Invocation& invocation) {
    const auto kind = kindNamed(invocation.value("--keychain").value_or(""));
    LVXKeyChainStoreFactory::setStore(std::make_shared<DeferredKeyChain>(kind, dataDirectory(invocation)));
    RefreshLock::install(std::make_shared<AccountRefreshLock>(dataDirectory(invocation)));
}

std::string reconnectCommand(const ServiceAccountConfiguration& account) {
    return "zelto reconnect " + shellWord(account.identifier());
}

Failure failureOf(const StorageError& error) {
    return {std::string(nameOf(error.code)), error.message(),
            needsAnotherDirectory(error.code) ? NextCommand::again("--data-dir", "zelto-accounts")
                                              : NextCommand::again()};
}

Failure failureOf(const IntegrationAccountCreationError& error) {
    struct Sentence {
        Failure operator()(const IntegrationAccountCreationError::AccountAlreadyExist& error) const {
            const bool needsNoSignIn =
                serviceAuthFlow(error.account.serviceType()) == ServiceAuthFlow::installedApp ||
                isFolderAccount(error.account);
            return {"accountAlreadyExist",
                    "The account " + error.account.identifier() + " is connected already.",
                    needsNoSignIn ? "zelto accounts" : reconnectCommand(error.account)};
        }

        Failure operator()(const IntegrationAccountCreationError::AccountMismatch& error) const {
            return {"accountMismatch",
                    "The sign-in was that of " + error.actualAccount.identifier() + ", not of " +
                        error.requiredAccount.identifier() + ", so nothing was changed.",
                    reconnectCommand(error.requiredAccount)};
        }

        Failure operator()(const IntegrationAccountCreationError::DataLoadingError&) const {
            return {"dataLoadingError", "The service did not say what the account is.", "zelto services"};
        }
    };

    return std::visit(Sentence(), error.value);
}

Outcome<Workspace> Workspace::open(const Invocation& invocation, bool readOnly) {
    auto directory = dataDirectory(invocation);
    std::error_code error;
    if (readOnly && !std::filesystem::exists(directory, error) && !error) {
        auto empty = FileManager::temporaryPath("accounts");
        if (!empty) {
            return failure(failureOf(empty.error()));
        }
        directory = *std::move(empty);
    }
    auto storage =
        readOnly ? SQLiteAccountStorage::openForReading(directory) : SQLiteAccountStorage::open(directory);
    if (!storage) {
        return failure(failureOf(storage.error()));
    }
    if (!readOnly) {
        ConnectingFlow::removeLeftovers(directory, **storage);
        eraseOldSecrets(directory);
    }
    return Workspace(*std::move(storage), std::move(directory), invocation.has("--sandbox"));
}

Outcome<bool> Workspace::isOfSandbox(const ServiceAccountConfiguration& account) const {
    const auto marks = storage_->tryMarks(account);
    if (!marks) {
        return failure(failureOf(marks.error()));
    }
    return marks->isOfSandbox;
}

// Those that go with where the requests go, or else all.
Outcome<Workspace::Accounts> Workspace::suited(Accounts accounts) const {
    Accounts suiting;
    for (const auto& account : accounts) {
        const auto ofSandbox = isOfSandbox(account);
        if (!ofSandbox) {
            return failure(ofSandbox.error());
        }
        if (*ofSandbox == usesSandbox_) {
            suiting.push_back(account);
        }
    }
    return suiting.empty() ? std::move(accounts) : std::move(suiting);
}

Outcome<void> Workspace::storageOutcome() const {
    const auto error = storage_->lastError();
    if (error && error->code != StorageErrorCode::recordDamaged) {
        return failure(failureOf(*error));
    }
    return {};
}

Outcome<AccountLock> Workspace::lock(const std::string& identifier) const {
    auto lock = AccountLock::take(directory_, identifier, [&] {
        writeError("zelto: waiting for another zelto that uses " + escapeControlCharacters(identifier) +
                   ".\n");
    });
    if (!lock) {
        return failure(failureOf(lock.error()));
    }
    return *std::move(lock);
}

Outcome<std::optional<AccountLock>> Workspace::lockForUse(ServiceAccountConfiguration& account) const {
    if (!account.credentials || !factsOf(account.serviceType()).refreshesTokens) {
        return std::nullopt;
    }
    auto taken = lock(account.identifier());
    if (!taken) {
        return failure(taken.error());
    }
    auto present = storage_->tryLoad(account.identifier());
    if (!present) {
        return failure(failureOf(present.error()));
    }
    if (!*present) {
        return failure(Failure{"unknownAccount",
                               "The account \"" + account.identifier() + "\" was removed meanwhile.",
                               "zelto accounts"});
    }
    account = **std::move(present);
    return *std::move(taken);
}

Outcome<ServiceAccountConfiguration> Workspace::storedAccount(const std::string& idOrService) const {
    auto named = storage_->tryLoad(idOrService);
    if (!named) {
        return failure(failureOf(named.error()));
    }
    if (*named) {
        return **std::move(named);
    }
    const auto type = serviceNamed(idOrService);
    if (!type) {
        return failure(unknownAccount(idOrService));
    }
    const auto stored = storage_->tryLoadConfigurations();
    if (!stored) {
        return failure(failureOf(stored.error()));
    }
    Accounts all;
    std::ranges::copy_if(*stored, std::back_inserter(all),
                         [&](const auto& account) { return account.serviceType() == *type; });
    auto ofService = suited(std::move(all));
    if (!ofService) {
        return failure(ofService.error());
    }
    if (ofService->empty()) {
        return failure(notConnected(*type));
    }
    if (ofService->size() > 1) {
        return failure(ambiguousAccount(*type, *ofService));
    }
    return std::move(ofService->front());
}

Outcome<ServiceAccountConfiguration> Workspace::account(const std::string& idOrService,
                                                        IntegrationsManager& manager, bool mayConnect) const {
    const auto stored = storage_->tryLoadConfigurations();
    if (!stored) {
        return failure(failureOf(stored.error()));
    }
    if (auto found = accountOf(*stored, idOrService)) {
        return *std::move(found);
    }
    const auto type = serviceNamed(idOrService);
    if (!type) {
        return failure(unknownAccount(idOrService));
    }
    const auto isOfType = [&](const auto& account) { return account.serviceType() == *type; };
    Accounts allEnabled;
    std::ranges::copy_if(*stored, std::back_inserter(allEnabled),
                         [&](const auto& account) { return isOfType(account) && account.enabled; });
    auto fitting = suited(std::move(allEnabled));
    if (!fitting) {
        return failure(fitting.error());
    }
    const auto& enabled = *fitting;
    if (auto last = manager.lastUsedConfiguration(*type); last && last->enabled) {
        const auto isLast = [&](const auto& account) { return account.identifier() == last->identifier(); };
        if (enabled.empty() || std::ranges::any_of(enabled, isLast)) {
            return *std::move(last);
        }
    }
    if (enabled.size() == 1) {
        return enabled.front();
    }
    if (enabled.empty() && std::ranges::any_of(*stored, isOfType)) {
        return failure(Failure{"disabledAccount", "Every account of " + displayName(*type) + " is disabled.",
                               "zelto accounts"});
    }
    if (!enabled.empty()) {
        return failure(ambiguousAccount(*type, enabled));
    }
    if (serviceAuthFlow(*type) != ServiceAuthFlow::installedApp) {
        return failure(notConnected(*type));
    }
    ServiceAccountConfiguration account(*type, std::nullopt, true);
    if (!mayConnect) {
        return account;
    }
    Outcome<ServiceAccountConfiguration> connected = account;
    manager.trySaveServiceConfiguration(account, [&](const auto& result) {
        if (!result) {
            connected = failure(failureOf(result.error()));
        }
    });
    return connected;
}

} // namespace zelto::cli
