#include "export/ServiceTable.h"

#include "accounts/ServiceNames.h"
#include "export/AdaptedSession.h"
#include "export/services/ApplicationAdapters.h"
#include "export/services/AsanaAdapter.h"
#include "export/services/DropboxAdapter.h"
#include "export/services/EvernoteAdapter.h"
#include "export/services/GoogleDriveAdapter.h"
#include "export/services/HubspotAdapter.h"
#include "export/services/ICloudAdapter.h"
#include "export/services/NotionAdapter.h"
#include "export/services/OneNoteAdapter.h"
#include "export/services/SlackAdapter.h"
#include "export/services/TodoistAdapter.h"
#include "export/services/TrelloAdapter.h"

#include <algorithm>
#include <iterator>

namespace zelto::cli {

namespace {

struct ServiceRow {
    ServiceType type;
    std::unique_ptr<ExportSession> (*open)(IntegrationsManager& manager,
                                           const ServiceAccountConfiguration& account,
                                           std::shared_ptr<IntegrationsDataInteractorProtocol> message,
                                           std::shared_ptr<HostPlatformInteractor> platform);
};

template <class Adapter>
std::unique_ptr<ExportSession> open(IntegrationsManager& manager, const ServiceAccountConfiguration& account,
                                    std::shared_ptr<IntegrationsDataInteractorProtocol> message,
                                    std::shared_ptr<HostPlatformInteractor> platform) {
    constexpr auto actionSource = "zelto";
    auto exporter = manager.createServiceExporter<typename Adapter::Exporter>(account, std::move(message),
                                                                              actionSource, false);
    return std::make_unique<AdaptedSession<Adapter>>(std::move(exporter), displayName(account.serviceType()),
                                                     account.identifier(), std::move(platform));
}

// Every service that the program can export to. Nothing else of the program names one.
constexpr ServiceRow rows[] = {
    {ServiceType::Agenda, open<AgendaAdapter>},     {ServiceType::Asana, open<AsanaAdapter>},
    {ServiceType::Bear, open<BearAdapter>},         {ServiceType::Dropbox, open<DropboxAdapter>},
    {ServiceType::Evernote, open<EvernoteAdapter>}, {ServiceType::GoogleDrive, open<GoogleDriveAdapter>},
    {ServiceType::Hubspot, open<HubspotAdapter>},   {ServiceType::iCloudDrive, open<ICloudAdapter>},
    {ServiceType::Notion, open<NotionAdapter>},     {ServiceType::OmniFocus, open<OmniFocusAdapter>},
    {ServiceType::OneNote, open<OneNoteAdapter>},   {ServiceType::Slack, open<SlackAdapter>},
    {ServiceType::Things, open<ThingsAdapter>},     {ServiceType::TodoIst, open<TodoistAdapter>},
    {ServiceType::Trello, open<TrelloAdapter>},     {ServiceType::Type2Do, open<TwoDoAdapter>},
};

} // namespace

std::vector<ServiceType> exportableServices() {
    std::vector<ServiceType> types;
    std::ranges::transform(rows, std::back_inserter(types), &ServiceRow::type);
    return types;
}

bool canExport(ServiceType type) {
    return std::ranges::find(rows, type, &ServiceRow::type) != std::end(rows);
}

Failure cannotExport(ServiceType type) {
    return {"unsupportedService", "This version cannot export to " + displayName(type) + ".",
            "zelto services"};
}

Outcome<std::unique_ptr<ExportSession>>
openExportSession(IntegrationsManager& manager, const ServiceAccountConfiguration& account,
                  std::shared_ptr<IntegrationsDataInteractorProtocol> message,
                  std::shared_ptr<HostPlatformInteractor> platform) {
    const auto row = std::ranges::find(rows, account.serviceType(), &ServiceRow::type);
    if (row == std::end(rows)) {
        return failure(cannotExport(account.serviceType()));
    }
    return row->open(manager, account, std::move(message), std::move(platform));
}

} // namespace zelto::cli
