#pragma once

#include "accounts/Workspace.h"
#include "base/Outcome.h"

namespace zelto::cli {

// In which key chain the secrets of an account are. A user may use several kinds with one data directory, so
// that is remembered of each account.

// Whether the key chain in force can be read and holds the account's secrets: a sign-in that is missing there
// is none that the service has ended. An account without a sign-in needs none.
Outcome<void> checkSecrets(const Workspace& workspace, const ServiceAccountConfiguration& account);

// Remembers that the account's secrets were just stored in the key chain in force. What another kind still
// holds of them is erased.
Outcome<void> rememberKeyChain(const Workspace& workspace, const ServiceAccountConfiguration& account);

// Remembers it of an account of an earlier version whose secrets were found there.
void rememberKeyChainIfUnknown(const Workspace& workspace, const ServiceAccountConfiguration& account);

// Erases the secrets of an account that is not stored any more, in the key chain in force and in the one that
// is remembered of it.
void eraseSecrets(const ServiceAccountConfiguration& account, const AccountMarks& marks);

// The failure of a command that has used the account, as what it comes from: secrets that are not in the key
// chain in force, or tokens that were wiped and can be restored.
Failure explained(Failure failure, const Workspace& workspace, const ServiceAccountConfiguration& account);

} // namespace zelto::cli
