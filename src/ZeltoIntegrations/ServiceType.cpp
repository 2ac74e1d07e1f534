#include <ZeltoIntegrations/ServiceType.h>

#include <Platform/EnumDescription.h>

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

} // namespace zelto
