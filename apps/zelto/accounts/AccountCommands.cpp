#include "accounts/AccountConnection.h"
#include "accounts/AccountDescription.h"
#include "accounts/DeferredKeyChain.h"
#include "accounts/SecretPlaces.h"
#include "base/Terminal.h"
#include "base/Waiting.h"
#include "commandline/Commands.h"

#include <ZeltoIntegrations/Client/RefreshLock.h>

#include <Platform/Text.h>

namespace zelto::cli {

namespace {

using Account = ServiceAccountConfiguration;

JSONValue textOrNull(const std::optional<std::string>& text) {
    return text ? JSONValue(*text) : JSONValue();
}

bool isLastUsed(const Account& account, const Workspace& workspace) {
    const auto last = workspace.storage().lastUsedConfiguration(account.serviceType());
    return last && last->identifier() == account.identifier();
}

std::string lineOf(const Account& account, bool isLast, bool ofSandbox, const Terminal& terminal) {
    return terminal.shown(account.displayName ? account.identifier() + "  " + *account.displayName
                                              : account.identifier()) +
           (isLast ? "  (last used)" : "") + (account.enabled ? "" : "  (disabled)") +
           (ofSandbox ? "  (sandbox)" : "") + "\n";
}

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
        return {"keyChainError", error.message, "zelto accounts restore --keychain file"};
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
    return restored ? Outcome<void>() : failure(restoreFailure(restored.error(), account));
}

} // namespace

JSONObject described(const ServiceAccountConfiguration& account, bool lastUsed) {
    JSONObject object;
    object.set("identifier", account.identifier());
    object.set("service", std::string(nameOf(account.serviceType())));
    object.set("userName", textOrNull(account.userName()));
    object.set("displayName", textOrNull(account.displayName));
    object.set("enabled", account.enabled);
    object.set("lastUsed", lastUsed);
    return object;
}

Outcome<Report> runAccounts(const Invocation& invocation, const Terminal& terminal) {
    const auto workspace = Workspace::open(invocation, true);
    if (!workspace) {
        return failure(workspace.error());
    }
    const auto accounts = workspace->storage().tryLoadConfigurations();
    if (!accounts) {
        return failure(failureOf(accounts.error()));
    }
    Report report;
    for (const bool ofSandbox : {false, true}) {
        JSONValue::Array listed;
        for (const auto& account : *accounts) {
            if (workspace->isOfSandbox(account) == ofSandbox) {
                const bool isLast = isLastUsed(account, *workspace);
                listed.push_back(described(account, isLast));
                report.text += lineOf(account, isLast, ofSandbox, terminal);
            }
        }
        report.members.set(ofSandbox ? "sandboxAccounts" : "accounts", std::move(listed));
    }
    if (accounts->empty()) {
        report.text = "No account is connected yet. Try: zelto connect bear\n";
        report.isNotice = true;
    }
    return report;
}

Outcome<Report> runAccountsRemove(const Invocation& invocation, const Terminal& terminal) {
    const auto workspace = Workspace::open(invocation);
    if (!workspace) {
        return failure(workspace.error());
    }
    const auto identifier = invocation.value("ID").value();
    auto account = workspace->storedAccount(identifier);
    if (!account) {
        return failure(account.error());
    }
    // Whoever refreshes its token now would store the new one after the removal.
    const auto lock = workspace->lockForUse(*account);
    if (!lock) {
        return failure(lock.error());
    }
    const auto marks = workspace->storage().tryMarks(*account);
    managerOf(*workspace).removeServiceConfiguration(*account);
    eraseSecrets(*account, marks.value_or(AccountMarks()));
    if (const auto stored = workspace->storageOutcome(); !stored) {
        return failure(stored.error());
    }
    Report report;
    report.members.set("removed", identifier);
    report.text = "Removed " + terminal.shown(identifier) + ".\n";
    report.isNotice = true;
    return report;
}

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
