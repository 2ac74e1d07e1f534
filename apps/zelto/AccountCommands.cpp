#include "Commands.h"
#include "ServiceNames.h"
#include "Workspace.h"

#include <ZeltoHost/Platform/EmailValidator.h>
#include <ZeltoHost/Platform/HostPlatformInteractor.h>

namespace zelto::cli {

namespace {

// For the commands that open nothing.
std::shared_ptr<IntegrationsPlatformInteractorProtocol> interactorWithoutOpener() {
    return std::make_shared<HostPlatformInteractor>([](const URL&, Callback<bool> done) { done(false); });
}

IntegrationsManager managerOf(const Workspace& workspace) {
    return IntegrationsManager(workspace.sharedStorage(), interactorWithoutOpener(), isEmailAddress, {});
}

JSONValue textOrNull(const std::optional<std::string>& text) {
    return text ? JSONValue(*text) : JSONValue();
}

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

Failure cannotConnect(ServiceType type) {
    return {"unsupportedService",
            "This version connects applications on this machine only; " + displayName(type) + " is none.",
            "zelto services"};
}

} // namespace

Outcome<Report> runConnect(const Invocation& invocation, const Terminal& terminal) {
    const auto name = invocation.value("SERVICE").value();
    const auto type = serviceNamed(name);
    if (!type) {
        return wrongUsage("There is no service \"" + name + "\".", "zelto services");
    }
    if (serviceAuthFlow(*type) != ServiceAuthFlow::installedApp) {
        return failure(cannotConnect(*type));
    }
    const auto workspace = Workspace::open(invocation);
    if (!workspace) {
        return failure(workspace.error());
    }
    Outcome<ServiceAccountConfiguration> connected =
        ServiceAccountConfiguration(*type, invocation.value("--name"), true);
    managerOf(*workspace).trySaveServiceConfiguration(*connected, [&](const auto& result) {
        if (!result) {
            connected = failure(failureOf(result.error()));
        }
    });
    if (!connected) {
        return failure(connected.error());
    }
    if (const auto stored = workspace->storageOutcome(); !stored) {
        return failure(stored.error());
    }
    Report report;
    report.members.set("account", described(*connected, false));
    report.text = "Connected " + terminal.shown(connected->identifier()) + ".\n";
    report.isNotice = true;
    return report;
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
    const auto account = workspace->storage().tryLoad(identifier);
    if (!account) {
        return failure(failureOf(account.error()));
    }
    if (!*account) {
        return failure(
            Failure{"unknownAccount", "There is no account \"" + identifier + "\".", "zelto accounts"});
    }
    managerOf(*workspace).removeServiceConfiguration(**account);
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
