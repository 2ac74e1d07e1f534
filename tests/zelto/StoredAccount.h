#pragma once

#include <zelto/ZeltoProgram.h>

#include <ZeltoIntegrations/Accounts/ServiceAccountConfiguration.h>

namespace zelto {

// Whose account one is: tests that send something do so by --sandbox.
enum class AccountOf { sandbox, service };

// Connects the account without the network, with the access token "token".
void addAccount(const ZeltoProgram& zelto, ServiceAccountConfiguration account,
                AccountOf place = AccountOf::sandbox);

// The tokens of an account as the program's key chain holds them.
void storeTokens(const ZeltoProgram& zelto, ServiceAccountCredentials credentials);
void wipeTokens(const ZeltoProgram& zelto, const std::string& identifier); // as a failed refresh does
ServiceAccountCredentials storedTokens(const ZeltoProgram& zelto, const std::string& identifier);

} // namespace zelto
