#pragma once

#include "base/Outcome.h"

namespace zelto::cli {

// Puts the clients that the user has registered in place of those built in: $ZELTO_<SERVICE>_CLIENT_ID and
// $ZELTO_<SERVICE>_CLIENT_SECRET, like ZELTO_TRELLO_CLIENT_ID. For main, before anything is sent; the
// variables are taken out of the environment. A value that no request can hold is wrong usage.
Outcome<void> useClientsOfEnvironment();

} // namespace zelto::cli
