#pragma once

#include <zelto/StoredAccount.h>
#include <zelto/ZeltoProgram.h>

#include <string>

namespace zelto {

// Connects "Trello+me@example.org" without the network: an account with the token "token" and two boards that
// were loaded before.
void addTrelloAccount(const ZeltoProgram& zelto, AccountOf place = AccountOf::sandbox);

inline const std::string trelloAccount = "Trello+me@example.org";

} // namespace zelto
