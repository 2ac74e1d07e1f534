#pragma once

#include "accounts/Workspace.h"
#include "base/Outcome.h"

namespace zelto::cli {

// Whether a command sends requests with the account's tokens.
enum class Requests { sent, none };

// Whether the account may be used where the requests of this call go. One of the sandbox is used with a
// sandbox alone. One that was not connected in a sandbox goes to one only if what listens there proves to be
// a sandbox and the user agrees, by --real-account or at the terminal. Applications are not concerned.
Outcome<void> checkSandboxUse(const Invocation& invocation, const Workspace& workspace,
                              const ServiceAccountConfiguration& account, Requests requests);

} // namespace zelto::cli
