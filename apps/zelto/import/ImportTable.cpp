#include "import/ImportTable.h"

#include "accounts/ServiceNames.h"

#include <ZeltoIntegrations/Dropbox/DropboxImporter.h>
#include <ZeltoIntegrations/GoogleDrive/GoogleDriveImporter.h>

#include <Platform/Joined.h>

#include <algorithm>
#include <iterator>

namespace zelto::cli {

namespace {

struct ImportRow {
    ServiceType type;
    ImportSession (*open)(IntegrationsManager& manager, const ServiceAccountConfiguration& account);
};

template <class Importer>
void fetchFiles(ServiceImporter& importer, const std::optional<std::string>& folder,
                ImportSession::ListingCompletion completion) {
    const bool isRoot = folder == "/";
    static_cast<Importer&>(importer).fetchFiles(isRoot ? std::nullopt : folder, std::move(completion));
}

template <class Importer>
ImportSession open(IntegrationsManager& manager, const ServiceAccountConfiguration& account) {
    constexpr auto actionSource = "zelto";
    return {manager.createServiceImporter<Importer>(account, actionSource), fetchFiles<Importer>};
}

// Nothing else of the program names one.
constexpr ImportRow rows[] = {
    {ServiceType::Dropbox, open<DropboxImporter>},
    {ServiceType::GoogleDrive, open<GoogleDriveImporter>},
};

} // namespace

std::vector<ServiceType> importableServices() {
    std::vector<ServiceType> types;
    std::ranges::transform(rows, std::back_inserter(types), &ImportRow::type);
    return types;
}

Outcome<void> checkImport(ServiceType type) {
    const auto types = importableServices();
    if (std::ranges::find(types, type) != types.end()) {
        return {};
    }
    return failure(Failure{"unsupportedService",
                           displayName(type) + " is no drive that files can be fetched from; these are: " +
                               joined(types, ", ", displayName) + ".",
                           "zelto accounts", ExitStatus::wrongUsage});
}

ImportSession openImportSession(IntegrationsManager& manager, const ServiceAccountConfiguration& account) {
    return std::ranges::find(rows, account.serviceType(), &ImportRow::type)->open(manager, account);
}

} // namespace zelto::cli
