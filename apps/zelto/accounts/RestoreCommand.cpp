#include "accounts/DeferredKeyChain.h"
#include "accounts/SecretPlaces.h"
#include "accounts/Workspace.h"
#include "base/Waiting.h"
#include "commandline/Commands.h"

#include <ZeltoIntegrations/Client/RefreshLock.h>

namespace zelto::cli {

namespace {

using Account = ServiceAccountConfiguration;

Failure restoreFailure(const RestoreError& error, const Account& account) {
    const auto identifier = account.identifier();
    const bool hasSignIn = serviceAuthFlow(account.serviceType()) == ServiceAuthFlow::oauth;
    const auto next = hasSignIn ? reconnectCommand(account) : "zelto accounts";
    switch (error.code) {
    case RestoreErrorCode::newerTokens:
        return {"newerTokens", "The account " + identifier + " has tokens, which stay as they are.",
                "zelto accounts"};
    case RestoreErrorCode::nothingKept:
        return {"nothingKept",
                "No wiped tokens of the account " + identifier + " are kept in this key chain.", next};
    case RestoreErrorCode::tooOld:
        return {"tooOld",
                "The tokens of the account " + identifier +
                    " were wiped more than seven days ago. They are erased now.",
                next};
    case RestoreErrorCode::keyChain:
        return {"keyChainError", error.message, NextCommand::again("--keychain", "file")};
    }
    return {};
}

// Held while no other process refreshes the account's tokens; null if it is not to be had.
std::shared_ptr<void> refreshLock(const std::string& serviceCredentialsKey) {
    return waitFor<std::shared_ptr<void>>(
        [&](auto done) { RefreshLock::installed()->take(serviceCredentialsKey, std::move(done)); });
}

Outcome<void> restoreSecrets(const Workspace& workspace, const Account& account) {
    if (!account.credentials) {
        return failure(restoreFailure({RestoreErrorCode::nothingKept, {}}, account));
    }
    const auto lock = workspace.lock(account.identifier());
    if (!lock) {
        return failure(lock.error());
    }
    const auto& key = account.credentials->serviceCredentialsKey;
    const auto ofRefreshes = refreshLock(key);
    if (!ofRefreshes) {
        return failure(
            Failure{"busy", "Another program is renewing the account's tokens.", "zelto accounts"});
    }
    const auto restored = DeferredKeyChain::installed()->restorable().restore(key);
    if (restored) {
        return {};
    }
    // What is kept lies beside the account's record.
    const auto there = checkSecrets(workspace, account);
    return failure(there ? restoreFailure(restored.error(), account) : there.error());
}

} // namespace

Outcome<Report> runAccountsRestore(const Invocation& invocation, const Terminal& terminal) {
    // Nothing is erased before the look: what is too old is reported as that.
    const auto workspace = Workspace::open(invocation, true);
    if (!workspace) {
        return failure(workspace.error());
    }
    const auto account = workspace->storedAccount(invocation.value("ID").value());
    if (!account) {
        return failure(account.error());
    }
    if (const auto restored = restoreSecrets(*workspace, *account); !restored) {
        return failure(restored.error());
    }
    Report report;
    report.members.set("restored", account->identifier());
    report.text = "Restored the tokens of " + terminal.shown(account->identifier()) + ".\n";
    report.isNotice = true;
    return report;
}

} // namespace zelto::cli
