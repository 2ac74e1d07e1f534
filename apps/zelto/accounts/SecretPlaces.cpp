#include "accounts/SecretPlaces.h"

#include "accounts/DeferredKeyChain.h"
#include "accounts/KeyChainCheck.h"
#include "accounts/RestoreHint.h"
#include "base/Terminal.h"

#include <Platform/Text.h>

namespace zelto::cli {

namespace {

using Account = ServiceAccountConfiguration;

std::string described(KeyChainKind kind) {
    switch (kind) {
    case KeyChainKind::secretService:
        return "the desktop's key chain (Secret Service)";
    case KeyChainKind::file:
        return "the encrypted file of the data directory";
    case KeyChainKind::memory:
        return "a key chain in memory";
    }
    return {};
}

Failure elsewhere(const Account& account, KeyChainKind remembered, KeyChainKind opened) {
    const auto tokens = "The tokens of the account " + account.identifier();
    if (remembered == KeyChainKind::memory) {
        return {"noSecrets",
                tokens + " were kept in memory alone (--keychain memory), and are gone. Sign in again.",
                reconnectCommand(account)};
    }
    const auto option = "--keychain " + nameOfKind(remembered);
    const auto start =
        remembered == KeyChainKind::secretService ? "Start it if it is not there, and pass " : "Pass ";
    return {"noSecrets",
            tokens + " are in " + described(remembered) + ", and this command uses " + described(opened) +
                ". " + start + option + ".",
            NextCommand::again("--keychain", nameOfKind(remembered))};
}

Failure missing(const Account& account, KeyChainKind opened) {
    return {"noSecrets",
            "There are no tokens of the account " + account.identifier() + " in " + described(opened) +
                ". Pass --keychain if they are in another key chain, or sign in again.",
            reconnectCommand(account)};
}

// The kind that is remembered, where it is not the one in force.
std::optional<KeyChainKind> otherKind(const AccountMarks& marks, DeferredKeyChain& keyChain) {
    const auto remembered = kindNamed(marks.keyChain.value_or(""));
    return remembered == keyChain.kind() ? std::nullopt : remembered;
}

void warnOfLeftSecrets(const std::string& where, const std::string& reason) {
    writeError("zelto: warning: the account's secrets may still be in " + where + ". " +
               escapeControlCharacters(reason) + "\n");
}

void eraseInOtherKeyChain(const Account& account, const AccountMarks& marks, DeferredKeyChain& keyChain) {
    const auto other = otherKind(marks, keyChain);
    if (!other || *other == KeyChainKind::memory) {
        return;
    }
    const auto erased = keyChain.restorableOf(*other)->erase(account.credentials->serviceCredentialsKey);
    if (!erased) {
        warnOfLeftSecrets(described(*other), erased.error().message);
    }
}

} // namespace

Outcome<void> checkSecrets(const Workspace& workspace, const Account& account) {
    const auto present = hasRecord(account.credentials);
    if (!present) {
        return failure(present.error());
    }
    const auto keyChain = DeferredKeyChain::installed();
    const bool needsNone =
        !account.credentials || serviceAuthFlow(account.serviceType()) != ServiceAuthFlow::oauth;
    if (*present || needsNone || !keyChain) {
        return {};
    }
    const auto marks = workspace.storage().tryMarks(account);
    if (!marks) {
        return failure(failureOf(marks.error()));
    }
    const auto other = otherKind(*marks, *keyChain);
    return failure(other ? elsewhere(account, *other, keyChain->kind()) : missing(account, keyChain->kind()));
}

Outcome<void> rememberKeyChain(const Workspace& workspace, const Account& account) {
    const auto keyChain = DeferredKeyChain::installed();
    if (!account.credentials || !keyChain) {
        return {};
    }
    auto marks = workspace.storage().tryMarks(account);
    if (!marks) {
        return failure(failureOf(marks.error()));
    }
    const auto before = *marks;
    // Memory holds nothing for the next command, which goes on using the earlier key chain.
    if (keyChain->kind() == KeyChainKind::memory && before.keyChain) {
        return {};
    }
    marks->keyChain = nameOfKind(keyChain->kind());
    if (const auto marked = workspace.storage().trySetMarks(account, *marks); !marked) {
        return failure(failureOf(marked.error()));
    }
    eraseInOtherKeyChain(account, before, *keyChain);
    return {};
}

void rememberKeyChainIfUnknown(const Workspace& workspace, const Account& account) {
    const auto keyChain = DeferredKeyChain::installed();
    auto marks = workspace.storage().tryMarks(account);
    if (!keyChain || !marks || marks->keyChain) {
        return;
    }
    const auto present = hasRecord(account.credentials);
    if (present && *present) {
        marks->keyChain = nameOfKind(keyChain->kind());
        (void)workspace.storage().trySetMarks(account, *marks);
    }
}

void eraseSecrets(const Account& account, const AccountMarks& marks) {
    const auto keyChain = DeferredKeyChain::installed();
    if (!account.credentials || !keyChain) {
        return;
    }
    // The manager has tried before, but its interface gives no reason for a failure.
    const auto erased = keyChain->erase(account.credentials->serviceCredentialsKey);
    if (!erased) {
        warnOfLeftSecrets("the key chain", erased.error().message);
    }
    eraseInOtherKeyChain(account, marks, *keyChain);
}

Failure explained(Failure failure, const Workspace& workspace, const Account& account) {
    if (failure.next == reconnectCommand(account) && DeferredKeyChain::installed()) {
        if (const auto secrets = checkSecrets(workspace, account); !secrets) {
            return secrets.error();
        }
    }
    return withRestoreHint(std::move(failure), account);
}

} // namespace zelto::cli
