#pragma once

#include <ZeltoIntegrations/Accounts/ServiceAuthFlow.h>

#include <Platform/Enum.h>

#include <optional>
#include <string>
#include <string_view>

namespace zelto {

// The closed list of outside services. Stored and sent as the raw value; the order of declaration fixes
// nothing on disk.
enum class ServiceType : int {
    Reminders = 30,
    Calendar = 31,
    OmniFocus = 32,
    Type2Do = 33,
    Things = 34,
    TodoIst = 41,
    Asana = 42,
    OneNote = 43,
    Evernote = 44,
    Trello = 45,
    Bear = 46,
    MeisterTask = 47,
    TickTick = 48,
    Agenda = 49,
    Slack = 60,
    Hubspot = 61,
    Notion = 99,
    GoogleDrive = 50,
    OneDrive = 51,
    Box = 52,
    Dropbox = 53,
    iCloudDrive = 54,
    Instapaper = 81,
    OneDriveBusiness = 100,
    iOSShare = 200,
    Albums = 201,
    Zelto = 202,
    iOSSharePDF = 203,
    G2Meeting = 300,
    ZoomMeeting = 301,
    MicrosoftTeams = 302,
};
ZELTO_ENUM(ServiceType);

// How the host presents the connection of an account, not the wire protocol: Instapaper is `oauth` and signs
// in with a user name and a password.
ServiceAuthFlow serviceAuthFlow(ServiceType type);

// The name of the product; no value for `Calendar`, the only service without one.
std::optional<std::string> productName(ServiceType type);

// The identifier of an account: the product name, and "+" and the user name where one is given. A service
// without a product name gives a new random text at each call.
std::string serviceIdentifier(ServiceType type, const std::optional<std::string>& username);

} // namespace zelto
