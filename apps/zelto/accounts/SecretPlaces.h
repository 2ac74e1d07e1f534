#pragma once

#include "accounts/Workspace.h"
#include "base/Outcome.h"

namespace zelto::cli {

// In which key chain the secrets of an account are. A user may use several kinds with one data directory, so
// that is remembered of each account.

// Fails if the key chain in force cannot be read or lacks the account's secrets. That is no sign that the
// service has ended the sign-in. An account without a sign-in needs none.
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
