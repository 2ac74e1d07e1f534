#pragma once

#include "accounts/Workspace.h"
#include "base/Outcome.h"

#include <optional>

namespace zelto::cli {

// The manager for commands that open nothing.
IntegrationsManager managerOf(const Workspace& workspace);

// Whether the services of such accounts are asked whose an account is.
enum class Verification {
    asked,
    notAsked,   // they are taken as they come
    impossible, // they would have to be, and this version has no client for the service
};

Verification verificationOf(const ServiceAccountConfiguration& account, IntegrationsManager& manager);

// What to say of an account beside its connection; empty where all is known.
std::string noticeOf(Verification verification, ServiceType type);

// Keeps an account that was signed in to: the manager checks and stores it, and what it stored is read back.
Outcome<ServiceAccountConfiguration> connectAccount(const Workspace& workspace,
                                                    const ServiceAccountConfiguration& account);

// Puts new secrets into an account that is there.
Outcome<ServiceAccountConfiguration> reconnectAccount(const Workspace& workspace,
                                                      const ServiceAccountConfiguration& withNew,
                                                      const ServiceAccountConfiguration& fromOld);

} // namespace zelto::cli
