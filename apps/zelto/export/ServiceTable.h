#pragma once

#include "export/ExportSession.h"

#include <ZeltoIntegrations/IntegrationsManager.h>

#include <memory>
#include <vector>

namespace zelto::cli {

// The services that the program can export to.
std::vector<ServiceType> exportableServices();
bool canExport(ServiceType type);
Failure cannotExport(ServiceType type);

// A session that exports a message with an account.
Outcome<std::unique_ptr<ExportSession>>
openExportSession(IntegrationsManager& manager, const ServiceAccountConfiguration& account,
                  std::shared_ptr<IntegrationsDataInteractorProtocol> message);

} // namespace zelto::cli
