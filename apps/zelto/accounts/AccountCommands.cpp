#include "accounts/AccountConnection.h"
#include "accounts/AccountDescription.h"
#include "accounts/KeyChainCheck.h"
#include "base/Terminal.h"
#include "commandline/Commands.h"

#include <Platform/Text.h>

namespace zelto::cli {

namespace {

JSONValue textOrNull(const std::optional<std::string>& text) {
    return text ? JSONValue(*text) : JSONValue();
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
    JSONValue::Array described_;
    for (const auto& account : *accounts) {
        const auto last = workspace->storage().lastUsedConfiguration(account.serviceType());
        const bool isLast = last && last->identifier() == account.identifier();
        described_.push_back(described(account, isLast));
        report.text += terminal.shown(account.displayName ? account.identifier() + "  " + *account.displayName
                                                          : account.identifier()) +
                       (isLast ? "  (last used)" : "") + (account.enabled ? "" : "  (disabled)") + "\n";
    }
    if (accounts->empty()) {
        report.text = "No account is connected yet. Try: zelto connect bear\n";
        report.isNotice = true;
    }
    report.members.set("accounts", std::move(described_));
    return report;
}

Outcome<Report> runAccountsRemove(const Invocation& invocation, const Terminal& terminal) {
    const auto workspace = Workspace::open(invocation);
    if (!workspace) {
        return failure(workspace.error());
    }
    const auto identifier = invocation.value("ID").value();
    auto account = workspace->storage().tryLoad(identifier);
    if (!account) {
        return failure(failureOf(account.error()));
    }
    if (!*account) {
        return failure(
            Failure{"unknownAccount", "There is no account \"" + identifier + "\".", "zelto accounts"});
    }
    // Whoever refreshes its token now would store the new one after the removal.
    const auto lock = workspace->lockForUse(**account);
    if (!lock) {
        return failure(lock.error());
    }
    const auto readable = checkReadable((*account)->credentials);
    managerOf(*workspace).removeServiceConfiguration(**account);
    if (!readable) {
        writeError("zelto: warning: the account's secrets may still be in the key chain. " +
                   escapeControlCharacters(readable.error().message) + "\n");
    }
    if (const auto stored = workspace->storageOutcome(); !stored) {
        return failure(stored.error());
    }
    Report report;
    report.members.set("removed", identifier);
    report.text = "Removed " + terminal.shown(identifier) + ".\n";
    report.isNotice = true;
    return report;
}

} // namespace zelto::cli
