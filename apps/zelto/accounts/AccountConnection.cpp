#include "accounts/AccountConnection.h"

#include "accounts/FolderAccounts.h"
#include "accounts/KeyChainCheck.h"
#include "accounts/SecretPlaces.h"
#include "accounts/ServiceNames.h"
#include "base/Waiting.h"

#include <ZeltoHost/Platform/EmailValidator.h>
#include <ZeltoHost/Platform/HostPlatformInteractor.h>
#include <ZeltoHost/Storage/ConnectingFlow.h>
#include <ZeltoIntegrations/Content/IntegrationsDataInteractorStub.h>
#include <ZeltoIntegrations/MicrosoftTeams/MicrosoftTeamsClient.h>

namespace zelto::cli {

namespace {

using AccountResult = Result<ServiceAccountConfiguration, IntegrationAccountCreationError>;
using Account = ServiceAccountConfiguration;

// A flow that cannot be noted is run all the same: only a kill would leave something of it.
IntegrationsManager::FlowNote flowNote(const std::filesystem::path& directory) {
    return [directory](const std::string& serviceCredentialsKey) -> std::shared_ptr<void> {
        auto flow = ConnectingFlow::begin(directory, serviceCredentialsKey);
        return flow ? *std::move(flow) : nullptr;
    };
}

std::string reasonOf(const IntegrationAccountCreationError::DataLoadingError& error, AccountCheck check) {
    if (error.nothingWasSent) {
        return " could not be reached, so nothing was kept.";
    }
    if (check == AccountCheck::byMeetingCreator && error.words == MicrosoftTeamsClient::noWorkingPlan) {
        return " makes no meetings for this user, so nothing was kept: " + error.words + ".";
    }
    const auto* said = check == AccountCheck::byMeetingCreator
                           ? " did not say that this account can make meetings, so nothing was kept"
                           : " did not say whose account this is, so nothing was kept";
    return said + (error.words.empty() ? ": it could not be reached, or does not accept these credentials."
                                       : "; it says: \"" + error.words + "\".");
}

Failure connectFailure(const IntegrationAccountCreationError& error, const Account& account,
                       Verification verification) {
    const auto* notLoaded = std::get_if<IntegrationAccountCreationError::DataLoadingError>(&error.value);
    if (!notLoaded) {
        return failureOf(error);
    }
    const auto service = displayName(account.serviceType());
    if (verification == Verification::impossible) {
        return {std::string(error.name()),
                "This version cannot ask " + service + " whose account it is, so nothing was kept.",
                takesFolder(account.serviceType()) ? "zelto connect --help" : "zelto services"};
    }
    Failure failure{std::string(error.name()),
                    service + reasonOf(*notLoaded, IntegrationsManager::accountCheck(account.serviceType())),
                    NextCommand::againWith("--verbose")};
    failure.nothingWasSent = notLoaded->nothingWasSent;
    return failure;
}

// What was stored must be there, or a later command would find the account without its secrets.
Outcome<Account> checked(const Workspace& workspace, const Account& account) {
    if (const auto stored = workspace.storageOutcome(); !stored) {
        return failure(stored.error());
    }
    if (account.credentials) {
        if (const auto kept = checkStored(*account.credentials); !kept) {
            return failure(kept.error());
        }
    }
    const auto remembered = rememberKeyChain(workspace, account);
    return remembered ? Outcome<Account>(account) : failure(remembered.error());
}

} // namespace

IntegrationsManager managerOf(const Workspace& workspace) {
    auto interactor =
        std::make_shared<HostPlatformInteractor>([](const URL&, Callback<bool> done) { done(false); });
    IntegrationsManager manager(workspace.sharedStorage(), std::move(interactor), isEmailAddress, {});
    manager.setFlowNote(flowNote(workspace.directory()));
    return manager;
}

Verification verificationOf(const Account& account, IntegrationsManager& manager) {
    const auto askedBy = [](const auto& client) {
        return client ? Verification::asked : Verification::impossible;
    };
    switch (IntegrationsManager::accountCheck(account.serviceType())) {
    case AccountCheck::none:
        return Verification::notAsked;
    case AccountCheck::byExporter:
        if (takesFolder(account.serviceType()) && !isFolderAccount(account)) {
            return Verification::impossible;
        }
        return askedBy(
            manager.createServiceExporter(account, std::make_shared<IntegrationsDataInteractorStub>()));
    case AccountCheck::byMeetingCreator:
        return askedBy(manager.createMeetingCreator(account));
    }
    return Verification::notAsked;
}

std::string noticeOf(Verification verification, ServiceType type) {
    const auto service = displayName(type);
    switch (verification) {
    case Verification::asked:
        return {};
    case Verification::notAsked:
        return service + " was not asked whether these credentials are good, nor whose they are.";
    case Verification::impossible:
        return "This version has no client for " + service +
               " yet: the sign-in is tried, and nothing is kept." +
               (takesFolder(type) ? " An account of a folder is connected by --folder." : "");
    }
    return {};
}

Outcome<Account> connectAccount(const Workspace& workspace, const Account& account) {
    auto manager = managerOf(workspace);
    const auto type = account.serviceType();
    // Two of one user at once would both find that there is no such account yet.
    const auto lock = workspace.lock(manager.temporaryIdentifier(type));
    if (!lock) {
        return failure(lock.error());
    }
    const auto verification = verificationOf(account, manager);
    const auto connected = waitFor<AccountResult>(
        [&](auto done) { manager.trySaveServiceConfiguration(account, std::move(done)); });
    if (!connected) {
        return failure(connectFailure(connected.error(), account, verification));
    }
    auto kept = checked(workspace, *connected);
    if (!kept) {
        manager.removeServiceConfiguration(*connected);
    }
    return kept;
}

Outcome<Account> reconnectAccount(const Workspace& workspace, const Account& withNew,
                                  const Account& fromOld) {
    auto manager = managerOf(workspace);
    const auto type = fromOld.serviceType();
    const auto temporaryLock = workspace.lock(manager.temporaryIdentifier(type));
    const auto lock = temporaryLock ? workspace.lock(fromOld.identifier()) : failure(temporaryLock.error());
    if (!lock) {
        return failure(lock.error());
    }
    const auto verification = verificationOf(withNew, manager);
    const auto updated = waitFor<AccountResult>(
        [&](auto done) { manager.tryUpdateServiceConfiguration(withNew, fromOld, std::move(done)); });
    if (!updated) {
        return failure(connectFailure(updated.error(), fromOld, verification));
    }
    // The secrets are in place; the record takes what was loaded on the way.
    manager.storeServiceConfiguration(*updated);
    return checked(workspace, *updated);
}

} // namespace zelto::cli
