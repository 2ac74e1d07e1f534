#pragma once

#include "accounts/Workspace.h"
#include "base/Outcome.h"
#include "commandline/CommandLine.h"
#include "sandbox/SandboxAccounts.h"

#include <optional>
#include <string>

namespace zelto::cli {

// All that a command about an account alone works with: the account by its identifier or its service, with a
// sign-in whose secrets can be read.
struct AccountWork {
    Workspace workspace;
    IntegrationsManager manager;
    ServiceAccountConfiguration account;
    std::optional<AccountLock> lock;

    // For a command that sends nothing, no lock is taken, and placeholders stand for the secrets.
    static Outcome<AccountWork> open(const Invocation& invocation, const std::string& idOrService,
                                     Requests requests = Requests::sent);

    std::string service() const; // as the program shows it
};

} // namespace zelto::cli
