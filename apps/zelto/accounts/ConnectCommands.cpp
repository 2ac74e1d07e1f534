#include "accounts/AccountConnection.h"
#include "accounts/AccountDescription.h"
#include "accounts/BrowserSignIn.h"
#include "accounts/DeferredKeyChain.h"
#include "accounts/FolderAccounts.h"
#include "accounts/GivenCredentials.h"
#include "accounts/KeyChainCheck.h"
#include "accounts/ServiceNames.h"
#include "base/Interruption.h"
#include "base/Question.h"
#include "commandline/Commands.h"
#include "commandline/InvocationCheck.h"
#include "sandbox/SandboxAccounts.h"

#include <ZeltoIntegrations/Accounts/LiveSecrets.h>

namespace zelto::cli {

namespace {

using Account = ServiceAccountConfiguration;

Failure cannotSignIn(ServiceType type) {
    return {"unsupportedService", "This version knows no sign-in for " + displayName(type) + ".",
            "zelto services"};
}

Failure needsFolder(ServiceType type) {
    return wrongUsage("An account of " + displayName(type) +
                          " is a folder on this machine: name it by --folder.",
                      connectCommand(type))
        .error();
}

// What is wrong is reported before anything is asked of the user.
Outcome<void> checkBeforehand(const Invocation& invocation, ServiceType type) {
    if (!canSignIn(type)) {
        return failure(takesFolder(type) ? needsFolder(type) : cannotSignIn(type));
    }
    return checkSignInOptions(invocation);
}

// Said before the sign-in, which somebody may not want to make for one command.
void warnOfMemory() {
    const auto keyChain = DeferredKeyChain::installed();
    if (keyChain && keyChain->kind() == KeyChainKind::memory) {
        writeError(
            "zelto: warning: --keychain memory forgets the account's secrets when this command ends, so "
            "the next command cannot use the account. Take --keychain file to keep them.\n");
    }
}

// The account with what was given, or with what the sign-in in the browser gives.
Outcome<Account> signedIn(const Invocation& invocation, const Workspace& workspace, Account account) {
    const auto type = account.serviceType();
    auto given = givenCredentials(invocation, type, account.identifier());
    if (!given) {
        return failure(given.error());
    }
    if (const auto kept = probeKeyChain(); !kept) {
        return failure(kept.error());
    }
    warnOfMemory();
    if (*given) {
        account.credentials = *std::move(given);
        return account;
    }
    account.credentials = ServiceAccountCredentials::forIdentifier(account.identifier());
    auto manager = managerOf(workspace);
    const auto verification = verificationOf(account, manager);
    if (verification == Verification::impossible) {
        writeError("zelto: " + noticeOf(verification, type) + "\n");
    }
    const Interruption interruption;
    const auto token = signInByBrowser(invocation, *signInServiceFor(type), interruption.stop());
    if (!token) {
        return failure(token.error());
    }
    token->fill(*account.credentials);
    maskInLog(*account.credentials);
    return account;
}

Outcome<Report> reportOf(const Account& account, const std::string& verb, const Workspace& workspace,
                         const Terminal& terminal) {
    Report report;
    report.members.set("account", described(account, false));
    report.text = verb + " " + terminal.shown(account.identifier()) + ".\n";
    report.isNotice = true;
    if (serviceAuthFlow(account.serviceType()) == ServiceAuthFlow::oauth) {
        auto manager = managerOf(workspace);
        const auto verification = verificationOf(account, manager);
        report.members.set("verified", verification == Verification::asked);
        const auto isOfSandbox = workspace.isOfSandbox(account);
        if (!isOfSandbox) {
            return failure(isOfSandbox.error());
        }
        report.members.set("sandbox", *isOfSandbox);
        const auto notice = noticeOf(verification, account.serviceType());
        report.text += notice + (notice.empty() ? "" : "\n");
    }
    return report;
}

// Whatever an account was before, tokens of the sandbox make it one of the sandbox.
Outcome<void> markOfSandbox(const Workspace& workspace, const Account& account) {
    auto marks = workspace.storage().tryMarks(account);
    if (!marks) {
        return failure(failureOf(marks.error()));
    }
    if (marks->isOfSandbox == workspace.usesSandbox()) {
        return {};
    }
    marks->isOfSandbox = workspace.usesSandbox();
    const auto marked = workspace.storage().trySetMarks(account, *marks);
    return marked ? Outcome<void>() : failure(failureOf(marked.error()));
}

// An account of the sandbox may become a real one: its tokens are replaced, and go nowhere.
Outcome<void> checkReconnecting(const Invocation& invocation, const Workspace& workspace,
                                const Account& account) {
    const auto isOfSandbox = workspace.isOfSandbox(account);
    if (!isOfSandbox) {
        return failure(isOfSandbox.error());
    }
    return *isOfSandbox && !workspace.usesSandbox()
               ? Outcome<void>()
               : checkSandboxUse(invocation, workspace, account, Requests::sent);
}

// The name that the account starts with; most services give their own.
std::optional<std::string> startingName(const Invocation& invocation, ServiceType type) {
    return takesPassword(type) ? invocation.value("--login") : invocation.value("--name");
}

// Whether the service gives its accounts no name, and somebody is there who can.
bool asksForName(const Invocation& invocation, ServiceType type) {
    const bool isNamedByService = IntegrationsManager::accountCheck(type) == AccountCheck::byExporter;
    const bool isUnattended = invocation.has("--token") || invocation.has("--json") ||
                              invocation.has("--quiet") || invocation.has("--follow");
    return !isNamedByService && !takesPassword(type) && !invocation.has("--name") && !isUnattended &&
           canAsk();
}

std::optional<std::string> nameForSignIn(const Invocation& invocation, ServiceType type) {
    if (!asksForName(invocation, type)) {
        return startingName(invocation, type);
    }
    auto typed = typedText("A name for this account of " + displayName(type) +
                           ", to tell it from others (none with Enter):");
    return typed.empty() ? std::nullopt : std::optional(std::move(typed));
}

} // namespace

Outcome<Report> runConnect(const Invocation& invocation, const Terminal& terminal) {
    const auto name = invocation.value("SERVICE").value();
    const auto type = serviceNamed(name);
    if (!type) {
        return wrongUsage("There is no service \"" + name + "\".", "zelto services");
    }
    const bool isApplication = serviceAuthFlow(*type) == ServiceAuthFlow::installedApp;
    const auto ofFolder = folderAccount(invocation, Account(*type, startingName(invocation, *type), true));
    if (!ofFolder) {
        return failure(ofFolder.error());
    }
    const bool needsSignIn = !isApplication && !*ofFolder;
    if (needsSignIn) {
        if (const auto possible = checkBeforehand(invocation, *type); !possible) {
            return failure(possible.error());
        }
    }
    const auto workspace = Workspace::open(invocation);
    if (!workspace) {
        return failure(workspace.error());
    }
    auto account =
        Outcome<Account>(ofFolder->value_or(Account(*type, startingName(invocation, *type), true)));
    if (needsSignIn) {
        account = Account(*type, nameForSignIn(invocation, *type), true);
        workspace->storage().setMarksNewOfSandbox(workspace->usesSandbox());
        account = signedIn(invocation, *workspace, *std::move(account));
    }
    const auto connected = account ? connectAccount(*workspace, *account) : failure(account.error());
    if (!connected) {
        return failure(connected.error());
    }
    return reportOf(*connected, "Connected", *workspace, terminal);
}

Outcome<Report> runReconnect(const Invocation& invocation, const Terminal& terminal) {
    const auto workspace = Workspace::open(invocation);
    if (!workspace) {
        return failure(workspace.error());
    }
    const auto stored = workspace->storedAccount(invocation.value("ID").value());
    if (!stored) {
        return failure(stored.error());
    }
    const auto type = stored->serviceType();
    if (serviceAuthFlow(type) == ServiceAuthFlow::installedApp) {
        return wrongUsage(displayName(type) + " is an application on this machine, which needs no sign-in.",
                          "zelto accounts");
    }
    if (isFolderAccount(*stored)) {
        return wrongUsage(stored->identifier() + " is a folder on this machine, which needs no sign-in.",
                          "zelto accounts");
    }
    if (const auto possible = checkBeforehand(invocation, type); !possible) {
        return failure(possible.error());
    }
    if (const auto allowed = checkReconnecting(invocation, *workspace, *stored); !allowed) {
        return failure(allowed.error());
    }
    const auto account = signedIn(invocation, *workspace, *stored);
    const auto updated = account ? reconnectAccount(*workspace, *account, *stored) : failure(account.error());
    if (!updated) {
        return failure(updated.error());
    }
    if (const auto marked = markOfSandbox(*workspace, *updated); !marked) {
        return failure(marked.error());
    }
    return reportOf(*updated, "Reconnected", *workspace, terminal);
}

} // namespace zelto::cli
