#pragma once

#include <ZeltoIntegrations/Content/IntegrationError.h>

#include <Platform/Completion.h>

namespace zelto {

// A meeting creator that also checks the account's data while it is connected.
class IntegrationsServiceDataFetcher {
  public:
    virtual ~IntegrationsServiceDataFetcher() = default;

    virtual void fetchServiceData(Completion<void, IntegrationLoadError> completion) = 0;
};

} // namespace zelto
