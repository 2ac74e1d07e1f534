#pragma once

#include "accounts/Workspace.h"
#include "base/Outcome.h"
#include "commandline/CommandLine.h"

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

    static Outcome<AccountWork> open(const Invocation& invocation, const std::string& idOrService);

    std::string service() const; // as the program shows it
};

} // namespace zelto::cli
