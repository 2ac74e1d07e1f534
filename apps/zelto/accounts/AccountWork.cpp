#include "accounts/AccountWork.h"

#include "accounts/AccountConnection.h"
#include "accounts/KeyChainCheck.h"
#include "accounts/ServiceNames.h"
#include "export/PlaceholderSecrets.h"

namespace zelto::cli {

Outcome<AccountWork> AccountWork::open(const Invocation& invocation, const std::string& idOrService,
                                       Requests requests) {
    auto workspace = Workspace::open(invocation, true);
    if (!workspace) {
        return failure(workspace.error());
    }
    auto manager = managerOf(*workspace);
    auto account = workspace->account(idOrService, manager, false);
    if (!account) {
        return failure(account.error());
    }
    if (const auto allowed = checkSandboxUse(invocation, *workspace, *account, requests); !allowed) {
        return failure(allowed.error());
    }
    if (requests == Requests::none) {
        usePlaceholderSecrets(*account);
        return AccountWork{*std::move(workspace), std::move(manager), *std::move(account), std::nullopt};
    }
    auto lock = workspace->lockForUse(*account);
    if (!lock) {
        return failure(lock.error());
    }
    if (const auto readable = hasRecord(account->credentials); !readable) {
        return failure(readable.error());
    }
    return AccountWork{*std::move(workspace), std::move(manager), *std::move(account), *std::move(lock)};
}

std::string AccountWork::service() const {
    return displayName(account.serviceType());
}

} // namespace zelto::cli
