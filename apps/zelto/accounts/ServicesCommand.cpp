#include "accounts/FolderAccounts.h"
#include "accounts/ServiceNames.h"
#include "commandline/Commands.h"
#include "export/ServiceTable.h"
#include "meeting/MeetingTable.h"

#include <ZeltoIntegrations/Helpers/ExportServiceHelper.h>

namespace zelto::cli {

namespace {

std::string_view wayOfConnecting(ServiceType type) {
    switch (serviceAuthFlow(type)) {
    case ServiceAuthFlow::oauth:
        return "sign-in";
    case ServiceAuthFlow::installedApp:
        return "application";
    case ServiceAuthFlow::systemPermission:
        return takesFolder(type) ? "folder" : "permission";
    }
    return {};
}

// What the column of exports says.
std::string_view useOf(ServiceType type) {
    if (canMakeMeetings(type)) {
        return "meetings";
    }
    return canExport(type) ? "yes" : "not yet";
}

std::string padded(std::string_view text, std::size_t width) {
    std::string cell(text);
    cell.append(cell.size() < width ? width - cell.size() : 1, ' ');
    return cell;
}

JSONValue described(ServiceType type) {
    JSONObject service;
    service.set("service", std::string(nameOf(type)));
    service.set("rawValue", static_cast<std::int64_t>(rawValue(type)));
    if (const auto product = ExportServiceHelper::getServiceProductNameFor(type)) {
        service.set("productName", *product);
    }
    service.set("authFlow", std::string(nameOf(serviceAuthFlow(type))));
    service.set("canExport", canExport(type));
    service.set("canMakeMeetings", canMakeMeetings(type));
    return service;
}

} // namespace

Outcome<Report> runServices(const Invocation&, const Terminal&) {
    Report report;
    JSONValue::Array services;
    report.text = padded("SERVICE", 18) + padded("NAME", 18) + padded("CONNECTED BY", 14) + "EXPORT\n";
    for (const auto& each : casesOf<ServiceType>()) {
        services.push_back(described(each.value));
        report.text += padded(each.name, 18) + padded(displayName(each.value), 18) +
                       padded(wayOfConnecting(each.value), 14) + std::string(useOf(each.value)) + "\n";
    }
    report.members.set("services", std::move(services));
    return report;
}

} // namespace zelto::cli
