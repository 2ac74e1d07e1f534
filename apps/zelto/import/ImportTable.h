#pragma once

#include "base/Outcome.h"

#include <ZeltoIntegrations/Import/IntegrationImportFile.h>
#include <ZeltoIntegrations/Import/ServiceImporter.h>
#include <ZeltoIntegrations/IntegrationsManager.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zelto::cli {

// The importer of an account, and how its service is asked for a listing.
struct ImportSession {
    using Listing = std::vector<IntegrationImportFile>;
    using ListingCompletion = Completion<Listing, IntegrationLoadError>;

    std::shared_ptr<ServiceImporter> importer;
    // Without a folder, and of "/", it is the drive's root.
    void (*fetchFiles)(ServiceImporter& importer, const std::optional<std::string>& folder,
                       ListingCompletion completion);
};

// The drives that files can be fetched from.
std::vector<ServiceType> importableServices();

Outcome<void> checkImport(ServiceType type);

// For a service that can be imported from.
ImportSession openImportSession(IntegrationsManager& manager, const ServiceAccountConfiguration& account);

} // namespace zelto::cli
