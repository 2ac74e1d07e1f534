#include "accounts/ServiceNames.h"

#include <Platform/ASCII.h>

#include <ZeltoIntegrations/Helpers/ExportServiceHelper.h>

#include <algorithm>

namespace zelto::cli {

namespace {

// Lower case, without blanks. Names of services are ASCII; all else matches none.
std::string folded(std::string_view name) {
    std::string text;
    for (const char c : name) {
        if (c != ' ') {
            text += toASCIILower(c);
        }
    }
    return text;
}

struct OtherName {
    std::string_view name;
    ServiceType type;
};

constexpr OtherName otherNames[] = {
    {"teams", ServiceType::MicrosoftTeams}, {"drive", ServiceType::GoogleDrive},
    {"icloud", ServiceType::iCloudDrive},   {"gotomeeting", ServiceType::G2Meeting},
    {"twodo", ServiceType::Type2Do},
};

} // namespace

std::optional<ServiceType> serviceNamed(std::string_view name) {
    const auto wanted = folded(name);
    for (const auto& each : casesOf<ServiceType>()) {
        const auto product = ExportServiceHelper::getServiceProductNameFor(each.value);
        if (folded(each.name) == wanted || (product && folded(*product) == wanted)) {
            return each.value;
        }
    }
    const auto other = std::ranges::find(otherNames, wanted, &OtherName::name);
    return other == std::end(otherNames) ? std::nullopt : std::optional(other->type);
}

std::string displayName(ServiceType type) {
    return ExportServiceHelper::getServiceProductNameFor(type).value_or(std::string(nameOf(type)));
}

} // namespace zelto::cli
