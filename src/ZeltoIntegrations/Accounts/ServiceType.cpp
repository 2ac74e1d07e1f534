#include <ZeltoIntegrations/Accounts/ServiceType.h>

#include <Platform/EnumDescription.h>
#include <Platform/UUID.h>

namespace zelto {

ZELTO_DESCRIBE_ENUM(ServiceAuthFlow, oauth, installedApp, systemPermission);
ZELTO_DESCRIBE_ENUM(ServiceType, Reminders, Calendar, OmniFocus, Type2Do, Things, TodoIst, Asana, OneNote,
                    Evernote, Trello, Bear, MeisterTask, TickTick, Agenda, Slack, Hubspot, Notion,
                    GoogleDrive, OneDrive, Box, Dropbox, iCloudDrive, Instapaper, OneDriveBusiness, iOSShare,
                    Albums, Zelto, iOSSharePDF, G2Meeting, ZoomMeeting, MicrosoftTeams);

ServiceAuthFlow serviceAuthFlow(ServiceType type) {
    switch (type) {
    case ServiceType::OmniFocus:
    case ServiceType::Type2Do:
    case ServiceType::Things:
    case ServiceType::Bear:
    case ServiceType::Agenda:
        return ServiceAuthFlow::installedApp;
    case ServiceType::Reminders:
    case ServiceType::iCloudDrive:
    case ServiceType::iOSShare:
    case ServiceType::Albums:
    case ServiceType::Zelto:
    case ServiceType::iOSSharePDF:
        return ServiceAuthFlow::systemPermission;
    case ServiceType::Calendar:
    case ServiceType::TodoIst:
    case ServiceType::Asana:
    case ServiceType::OneNote:
    case ServiceType::Evernote:
    case ServiceType::Trello:
    case ServiceType::MeisterTask:
    case ServiceType::TickTick:
    case ServiceType::Slack:
    case ServiceType::Hubspot:
    case ServiceType::Notion:
    case ServiceType::GoogleDrive:
    case ServiceType::OneDrive:
    case ServiceType::Box:
    case ServiceType::Dropbox:
    case ServiceType::Instapaper:
    case ServiceType::OneDriveBusiness:
    case ServiceType::G2Meeting:
    case ServiceType::ZoomMeeting:
    case ServiceType::MicrosoftTeams:
        return ServiceAuthFlow::oauth;
    }
    return ServiceAuthFlow::oauth;
}

std::optional<std::string> productName(ServiceType type) {
    switch (type) {
    case ServiceType::Reminders:
        return "Reminders";
    case ServiceType::Calendar:
        return std::nullopt;
    case ServiceType::OmniFocus:
        return "OmniFocus";
    case ServiceType::Type2Do:
        return "2Do";
    case ServiceType::Things:
        return "Things";
    case ServiceType::TodoIst:
        return "Todoist";
    case ServiceType::Asana:
        return "Asana";
    case ServiceType::OneNote:
        return "OneNote";
    case ServiceType::Evernote:
        return "Evernote";
    case ServiceType::Trello:
        return "Trello";
    case ServiceType::Bear:
        return "Bear";
    case ServiceType::MeisterTask:
        return "MeisterTask";
    case ServiceType::TickTick:
        return "TickTick";
    case ServiceType::Agenda:
        return "Agenda";
    case ServiceType::Slack:
        return "Slack";
    case ServiceType::Hubspot:
        return "Hubspot";
    case ServiceType::Notion:
        return "Notion";
    case ServiceType::GoogleDrive:
        return "GoogleDrive";
    case ServiceType::OneDrive:
        return "OneDrive";
    case ServiceType::Box:
        return "Box";
    case ServiceType::Dropbox:
        return "Dropbox";
    case ServiceType::iCloudDrive:
        return "iCloudDrive";
    case ServiceType::Instapaper:
        return "Instapaper";
    case ServiceType::OneDriveBusiness:
        return "OneDriveBusiness";
    case ServiceType::iOSShare:
        return "iOSShare";
    case ServiceType::Albums:
        return "Albums";
    case ServiceType::Zelto:
        return "Zelto";
    case ServiceType::iOSSharePDF:
        return "iOSSharePDF";
    case ServiceType::G2Meeting:
        return "GoTo";
    case ServiceType::ZoomMeeting:
        return "Zoom";
    case ServiceType::MicrosoftTeams:
        return "Microsoft Teams";
    }
    return std::nullopt;
}

std::string serviceIdentifier(ServiceType type, const std::optional<std::string>& username) {
    const auto name = productName(type);
    if (!name) {
        return uuid();
    }
    return username ? *name + "+" + *username : *name;
}

} // namespace zelto
