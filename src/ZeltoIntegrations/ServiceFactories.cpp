// Which class serves which service: the three factories of the manager.

#include <ZeltoIntegrations/Agenda/AgendaExporter.h>
#include <ZeltoIntegrations/Asana/AsanaExporter.h>
#include <ZeltoIntegrations/Bear/BearExporter.h>
#include <ZeltoIntegrations/Dropbox/DropboxExporter.h>
#include <ZeltoIntegrations/Dropbox/DropboxImporter.h>
#include <ZeltoIntegrations/Evernote/EvernoteExporter.h>
#include <ZeltoIntegrations/GoTo/GoToAuthoriser.h>
#include <ZeltoIntegrations/GoTo/GoToClient.h>
#include <ZeltoIntegrations/GoogleDrive/GoogleDriveExporter.h>
#include <ZeltoIntegrations/GoogleDrive/GoogleDriveImporter.h>
#include <ZeltoIntegrations/Hubspot/HubspotExporter.h>
#include <ZeltoIntegrations/ICloud/ICloudExporter.h>
#include <ZeltoIntegrations/IntegrationsManager.h>
#include <ZeltoIntegrations/MicrosoftTeams/MicrosoftTeamsAuthoriser.h>
#include <ZeltoIntegrations/MicrosoftTeams/MicrosoftTeamsClient.h>
#include <ZeltoIntegrations/Notion/NotionExporter.h>
#include <ZeltoIntegrations/OmniFocus/OmniFocusExporter.h>
#include <ZeltoIntegrations/OneNote/OneNoteExporter.h>
#include <ZeltoIntegrations/Slack/SlackExporter.h>
#include <ZeltoIntegrations/Things/ThingsExporter.h>
#include <ZeltoIntegrations/Todoist/TodoistExporter.h>
#include <ZeltoIntegrations/Trello/TrelloExporter.h>
#include <ZeltoIntegrations/TwoDo/TwoDoExporter.h>
#include <ZeltoIntegrations/Zoom/ZoomAuthoriser.h>
#include <ZeltoIntegrations/Zoom/ZoomClient.h>

#include <algorithm>

namespace zelto {

namespace {

// What every exporter is made with.
struct ExporterArguments {
    const ServiceAccountConfiguration& configuration;
    std::shared_ptr<ServiceConfigurationsStorage> storage;
    std::shared_ptr<IntegrationsPlatformInteractorProtocol> interactor;
    std::shared_ptr<IntegrationsDataInteractorProtocol> dataInteractor;
    std::optional<std::string> actionSource;
    bool attachmentsAreSelectedByDefault;
    const IntegrationsManager::EmailValidator& emailValidator;
};

template <class Exporter, class... More>
std::shared_ptr<ServiceExporter> makeWith(ExporterArguments arguments, const More&... more) {
    return std::make_shared<Exporter>(arguments.configuration, std::move(arguments.storage),
                                      std::move(arguments.interactor), std::move(arguments.dataInteractor),
                                      std::move(arguments.actionSource),
                                      arguments.attachmentsAreSelectedByDefault, more...);
}

template <class Exporter> std::shared_ptr<ServiceExporter> make(ExporterArguments arguments) {
    return makeWith<Exporter>(std::move(arguments));
}

std::shared_ptr<ServiceExporter> makeOneNote(ExporterArguments arguments) {
    const auto& emailValidator = arguments.emailValidator;
    return makeWith<OneNoteExporter>(std::move(arguments), emailValidator);
}

struct ExporterRow {
    ServiceType serviceType;
    std::shared_ptr<ServiceExporter> (*make)(ExporterArguments);
};

// A row without a class gives nothing, as a type without a row does.
constexpr ExporterRow exporters[] = {
    {ServiceType::Reminders, nullptr},
    {ServiceType::OmniFocus, make<OmniFocusExporter>},
    {ServiceType::Type2Do, make<TwoDoExporter>},
    {ServiceType::Things, make<ThingsExporter>},
    {ServiceType::TodoIst, make<TodoistExporter>},
    {ServiceType::Asana, make<AsanaExporter>},
    {ServiceType::OneNote, makeOneNote},
    {ServiceType::Evernote, make<EvernoteExporter>},
    {ServiceType::Trello, make<TrelloExporter>},
    {ServiceType::Bear, make<BearExporter>},
    {ServiceType::MeisterTask, nullptr},
    {ServiceType::TickTick, nullptr},
    {ServiceType::Agenda, make<AgendaExporter>},
    {ServiceType::Slack, make<SlackExporter>},
    {ServiceType::Hubspot, make<HubspotExporter>},
    {ServiceType::Notion, make<NotionExporter>},
    {ServiceType::GoogleDrive, make<GoogleDriveExporter>},
    {ServiceType::Dropbox, make<DropboxExporter>},
    {ServiceType::iCloudDrive, make<ICloudExporter>},
    {ServiceType::Instapaper, nullptr},
};

struct ImporterRow {
    ServiceType serviceType;
    std::shared_ptr<ServiceImporter> (*make)(
        const ServiceAccountConfiguration& configuration,
        std::shared_ptr<IntegrationsPlatformInteractorProtocol> interactor,
        std::optional<std::string> actionSource);
};

template <class Importer>
std::shared_ptr<ServiceImporter>
makeImporter(const ServiceAccountConfiguration& configuration,
             std::shared_ptr<IntegrationsPlatformInteractorProtocol> interactor,
             std::optional<std::string> actionSource) {
    return std::make_shared<Importer>(configuration, std::move(interactor), std::move(actionSource));
}

constexpr ImporterRow importers[] = {
    {ServiceType::GoogleDrive, makeImporter<GoogleDriveImporter>},
    {ServiceType::Dropbox, makeImporter<DropboxImporter>},
};

struct MeetingCreatorRow {
    ServiceType serviceType;
    std::shared_ptr<MeetingCreator> (*make)(const ServiceAccountCredentials& credentials);
};

template <class Client, class Authoriser>
std::shared_ptr<MeetingCreator> makeMeetingCreator(const ServiceAccountCredentials& credentials) {
    return std::make_shared<Client>(std::make_shared<Authoriser>(credentials));
}

constexpr MeetingCreatorRow meetingCreators[] = {
    {ServiceType::G2Meeting, makeMeetingCreator<GoToClient, GoToAuthoriser>},
    {ServiceType::ZoomMeeting, makeMeetingCreator<ZoomClient, ZoomAuthoriser>},
    {ServiceType::MicrosoftTeams, makeMeetingCreator<MicrosoftTeamsClient, MicrosoftTeamsAuthoriser>},
};

// The maker in the type's row, or null.
template <class Row, std::size_t count> auto makerFor(ServiceType serviceType, const Row (&rows)[count]) {
    const auto row = std::ranges::find(rows, serviceType, &Row::serviceType);
    return row == std::end(rows) ? nullptr : row->make;
}

} // namespace

std::shared_ptr<ServiceExporter>
IntegrationsManager::makeServiceExporter(const ServiceAccountConfiguration& configuration,
                                         std::shared_ptr<IntegrationsDataInteractorProtocol> dataInteractor,
                                         std::optional<std::string> actionSource,
                                         bool attachmentsAreSelectedByDefault) {
    const auto make = makerFor(configuration.serviceType(), exporters);
    if (!make) {
        return nullptr;
    }
    return make({configuration, configurationStorage_, platformInteractor_, std::move(dataInteractor),
                 std::move(actionSource), attachmentsAreSelectedByDefault, emailValidator_});
}

std::shared_ptr<ServiceImporter>
IntegrationsManager::makeServiceImporter(const ServiceAccountConfiguration& configuration,
                                         std::optional<std::string> actionSource) {
    const auto make = makerFor(configuration.serviceType(), importers);
    return make ? make(configuration, platformInteractor_, std::move(actionSource)) : nullptr;
}

std::shared_ptr<MeetingCreator>
IntegrationsManager::createMeetingCreator(const ServiceAccountConfiguration& configuration) {
    const auto make = makerFor(configuration.serviceType(), meetingCreators);
    return make && configuration.credentials ? make(*configuration.credentials) : nullptr;
}

} // namespace zelto
