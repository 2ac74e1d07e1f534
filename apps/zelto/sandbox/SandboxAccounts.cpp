#include "sandbox/SandboxAccounts.h"

#include "accounts/FolderAccounts.h"
#include "base/Question.h"
#include "base/ShellText.h"
#include "commandline/InvocationCheck.h"

#include <ZeltoHost/SignIn/SignInReply.h>
#include <ZeltoSandbox/SandboxProof.h>

#include <Platform/Crypto/RandomBytes.h>
#include <Platform/JSON/JSONValue.h>
#include <Platform/Text.h>

namespace zelto::cli {

namespace {

using Account = ServiceAccountConfiguration;

constexpr auto consentOption = "--real-account";

// Empty if what listens there is a sandbox, else why it was not found to be one.
std::string doubtAbout(const std::string& address) {
    const auto challenge = randomToken();
    const auto base = URL::parse(address);
    const auto url = base ? base->resolving("/control/identity?challenge=" + challenge) : std::nullopt;
    if (!url) {
        return "The address is none.";
    }
    const auto reply = sendForSignIn(URLRequest(*url), "The sandbox", {});
    if (!reply) {
        return reply.error().message;
    }
    const auto json = JSONValue::parse(reply->body);
    const auto* proof = json ? json->find("proof") : nullptr;
    return proof && proof->asString() && *proof->asString() == sandboxProof(challenge)
               ? ""
               : "What listens there is no sandbox of this version.";
}

Failure needsSandbox(const Account& account) {
    return {"sandboxAccount",
            "The account " + account.identifier() +
                " was connected in a sandbox, and is used with one alone. Start one and pass its address by "
                "--sandbox.",
            "zelto sandbox"};
}

std::string connectCommand(const Account& account, const std::string& address) {
    return "zelto connect " + std::string(nameOf(account.serviceType())) + " --sandbox " + shellWord(address);
}

Outcome<void> checkConsent(const Invocation& invocation, const Account& account, const std::string& address) {
    if (invocation.has(consentOption)) {
        return {};
    }
    const auto warning = "The account " + account.identifier() +
                         " was not connected in a sandbox, and its tokens would go to the one at " + address;
    if (!invocation.has("--json") && canAsk()) {
        return confirms("zelto: " + escapeControlCharacters(warning) + ". Use it there?")
                   ? Outcome<void>()
                   : failure(Failure{"canceled", "Nothing was sent.", connectCommand(account, address)});
    }
    return failure(
        Failure{"realAccount",
                warning + ". Connect an account there, or pass " + consentOption + " if that is meant.",
                connectCommand(account, address)});
}

} // namespace

Outcome<void> checkSandboxUse(const Invocation& invocation, const Workspace& workspace,
                              const Account& account, Requests requests) {
    const auto address = invocation.value("--sandbox");
    if (!address && invocation.has(consentOption)) {
        return wrongUsage(std::string(consentOption) + " goes with --sandbox.",
                          helpCommand(invocation.command));
    }
    if (serviceAuthFlow(account.serviceType()) != ServiceAuthFlow::oauth || isFolderAccount(account)) {
        return {};
    }
    const auto isOfSandbox = workspace.isOfSandbox(account);
    if (!isOfSandbox) {
        return failure(isOfSandbox.error());
    }
    if (*isOfSandbox) {
        return address ? Outcome<void>() : failure(needsSandbox(account));
    }
    if (!address || requests == Requests::none) {
        return {};
    }
    if (const auto doubt = doubtAbout(*address); !doubt.empty()) {
        return failure(Failure{"notASandbox",
                               "The account " + account.identifier() +
                                   " was not connected in a sandbox, and its tokens were not sent to " +
                                   *address + ". " + doubt,
                               "zelto sandbox"});
    }
    return checkConsent(invocation, account, *address);
}

} // namespace zelto::cli
