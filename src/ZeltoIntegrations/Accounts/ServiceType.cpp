#include <ZeltoIntegrations/Accounts/ServiceType.h>

#include <ZeltoIntegrations/Accounts/ServiceFacts.h>

#include <Platform/EnumDescription.h>
#include <Platform/UUID.h>

namespace zelto {

ZELTO_DESCRIBE_ENUM(ServiceAuthFlow, oauth, installedApp, systemPermission);
ZELTO_DESCRIBE_ENUM(ServiceType, Reminders, Calendar, OmniFocus, Type2Do, Things, TodoIst, Asana, OneNote,
                    Evernote, Trello, Bear, MeisterTask, TickTick, Agenda, Slack, Hubspot, Notion,
                    GoogleDrive, OneDrive, Box, Dropbox, iCloudDrive, Instapaper, OneDriveBusiness, iOSShare,
                    Albums, Zelto, iOSSharePDF, G2Meeting, ZoomMeeting, MicrosoftTeams);

ServiceAuthFlow serviceAuthFlow(ServiceType type) {
    return factsOf(type).authFlow;
}

std::optional<std::string> productName(ServiceType type) {
    const auto name = factsOf(type).productName;
    return name.empty() ? std::nullopt : std::optional(std::string(name));
}

std::string serviceIdentifier(ServiceType type, const std::optional<std::string>& username) {
    const auto name = productName(type);
    if (!name) {
        return uuid();
    }
    return username ? *name + "+" + *username : *name;
}

} // namespace zelto
