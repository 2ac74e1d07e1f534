#include "accounts/RestoreHint.h"

#include "accounts/DeferredKeyChain.h"
#include "accounts/Workspace.h"
#include "base/ShellText.h"

#include <Platform/ISO8601.h>

namespace zelto::cli {

Failure withRestoreHint(Failure failure, const ServiceAccountConfiguration& account) {
    const auto keyChain = DeferredKeyChain::installed();
    if (!keyChain || !account.credentials) {
        return failure;
    }
    const auto& key = account.credentials->serviceCredentialsKey;
    const bool namesReconnect = failure.next == reconnectCommand(account);
    if (!namesReconnect && !keyChain->restorable().hasKept(key)) {
        return failure;
    }
    const auto date = keyChain->restorable().wipeDate(key);
    if (!date || !*date) {
        return failure;
    }
    const auto restore = "zelto accounts restore " + shellWord(account.identifier());
    failure.other = {"restore", "The account's tokens could not be renewed, and were wiped; ", restore,
                     " brings them back until " + iso8601(**date + RestorableKeyChain::keptFor) +
                         ", for when the service was only out of order."};
    if (!namesReconnect) {
        failure.next = restore;
    }
    return failure;
}

} // namespace zelto::cli
