#pragma once

#include "base/Outcome.h"
#include "commandline/CommandLine.h"

#include <ZeltoIntegrations/Accounts/ServiceAccountCredentials.h>
#include <ZeltoIntegrations/Accounts/ServiceType.h>

#include <optional>

namespace zelto::cli {

// Whether the service is signed in to with a user name and a password.
bool takesPassword(ServiceType type);

// Whether there is a way to sign in at the service: by a password, or in the browser.
bool canSignIn(ServiceType type);

// The credentials that the command line, standard input or $ZELTO_TOKEN give, as a record under the given
// key. `nullopt` if none are given, which means a sign-in in the browser.
Outcome<std::optional<ServiceAccountCredentials>>
givenCredentials(const Invocation& invocation, ServiceType type, const std::string& accountIdentifier);

} // namespace zelto::cli
