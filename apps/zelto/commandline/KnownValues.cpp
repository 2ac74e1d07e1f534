#include "commandline/KnownValues.h"

#include "accounts/GivenCredentials.h"
#include "accounts/ServiceNames.h"
#include "export/ServiceTable.h"
#include "meeting/MeetingTable.h"

#include <Platform/ASCII.h>
#include <ZeltoIntegrations/IntegrationsManager.h>

namespace zelto::cli {

namespace {

// As people type them: "2do" rather than "Type2Do".
std::string typedName(ServiceType type) {
    auto name = toASCIILower(displayName(type));
    std::erase(name, ' ');
    return name;
}

// A service without exports that this program signs in at: one of meetings, or one whose accounts are kept
// without asking whose they are.
bool isConnectedAlone(ServiceType type) {
    return canSignIn(type) &&
           (canMakeMeetings(type) || IntegrationsManager::accountCheck(type) == AccountCheck::none);
}

} // namespace

std::vector<std::string> knownValues(ValueKind kind, const std::vector<std::string_view>& choices) {
    std::vector<std::string> values(choices.begin(), choices.end());
    switch (kind) {
    case ValueKind::service:
    case ValueKind::accountOrService:
        for (const auto& each : casesOf<ServiceType>()) {
            if (canExport(each.value) || (kind == ValueKind::service && isConnectedAlone(each.value))) {
                values.push_back(typedName(each.value));
            }
        }
        return values;
    case ValueKind::meetingAccountOrService:
        for (const auto type : meetingServices()) {
            values.push_back(typedName(type));
        }
        return values;
    case ValueKind::contentType:
        for (const auto& each : casesOf<IntegrationExportContentType>()) {
            values.emplace_back(each.name);
        }
        return values;
    case ValueKind::account:
    case ValueKind::text:
    case ValueKind::secret:
    case ValueKind::file:
    case ValueKind::directory:
    case ValueKind::command:
    case ValueKind::target:
    case ValueKind::mail:
        return values;
    }
    return values;
}

} // namespace zelto::cli
