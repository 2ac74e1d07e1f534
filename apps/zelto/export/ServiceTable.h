#pragma once

#include "export/ExportSession.h"

#include <ZeltoHost/Platform/HostPlatformInteractor.h>
#include <ZeltoIntegrations/IntegrationsManager.h>

#include <memory>
#include <vector>

namespace zelto::cli {

// The services that the program can export to.
std::vector<ServiceType> exportableServices();
bool canExport(ServiceType type);
Failure cannotExport(ServiceType type);

// A session that exports a message with an account. Without the platform it exports nothing.
Outcome<std::unique_ptr<ExportSession>>
openExportSession(IntegrationsManager& manager, const ServiceAccountConfiguration& account,
                  std::shared_ptr<IntegrationsDataInteractorProtocol> message,
                  std::shared_ptr<HostPlatformInteractor> platform = nullptr);

} // namespace zelto::cli
