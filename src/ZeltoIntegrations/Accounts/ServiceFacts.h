#pragma once

#include <ZeltoIntegrations/Accounts/ServiceAuthFlow.h>
#include <ZeltoIntegrations/Accounts/ServiceType.h>

#include <string_view>

namespace zelto {

// Who asks a service whose an account is, while the account is being connected.
enum class AccountCheck {
    none, // it is taken as it comes
    byExporter,
    byMeetingCreator,
};

// What is fixed of a service, for all who would otherwise keep a list of services.
struct ServiceFacts {
    ServiceType type;
    std::string_view productName; // empty for the only service without one
    ServiceAuthFlow authFlow;
    AccountCheck accountCheck;
    // Its tokens are replaced while it is used. Whoever uses an account of it has the account for itself.
    bool refreshesTokens;
};

const ServiceFacts& factsOf(ServiceType type);

} // namespace zelto
