#pragma once

#include <zelto/ZeltoProgram.h>

#include <ZeltoIntegrations/Accounts/ServiceAccountConfiguration.h>

namespace zelto {

// Connects the account without the network, with the access token "token".
void addAccount(const ZeltoProgram& zelto, ServiceAccountConfiguration account);

} // namespace zelto
