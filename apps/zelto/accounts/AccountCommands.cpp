#include "accounts/AccountConnection.h"
#include "accounts/AccountDescription.h"
#include "accounts/SecretPlaces.h"
#include "base/Terminal.h"
#include "commandline/Commands.h"
#include "commandline/NextCommandLine.h"

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
            const auto isOfSandbox = workspace->isOfSandbox(account);
            if (!isOfSandbox) {
                return failure(isOfSandbox.error());
            }
            if (*isOfSandbox == ofSandbox) {
                const bool isLast = isLastUsed(account, *workspace);
                listed.push_back(described(account, isLast));
                report.text += lineOf(account, isLast, ofSandbox, terminal);
            }
        }
        report.members.set(ofSandbox ? "sandboxAccounts" : "accounts", std::move(listed));
    }
    if (accounts->empty()) {
        report.text = "No account is connected yet. Try: " + lineOf("zelto connect bear", invocation) + "\n";
        report.isNotice = true;
    }
    return report;
}

Outcome<Report> runAccountsRemove(const Invocation& invocation, const Terminal& terminal) {
    const auto workspace = Workspace::open(invocation);
    if (!workspace) {
        return failure(workspace.error());
    }
    auto account = workspace->storedAccount(invocation.value("ID").value());
    if (!account) {
        return failure(account.error());
    }
    const auto identifier = account->identifier();
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

} // namespace zelto::cli
