#pragma once

#include "base/Outcome.h"
#include "export/PassedLimit.h"

#include <ZeltoIntegrations/Accounts/ServiceType.h>

#include <optional>
#include <string>
#include <vector>

namespace zelto::cli {

// The services that meetings are made on.
std::vector<ServiceType> meetingServices();

bool canMakeMeetings(ServiceType type);
Outcome<void> checkMeetings(ServiceType type);

// For a service that meetings are made on:

// What a dry run's stand-in responds to a request with that method.
std::string meetingStandIn(ServiceType type, const std::string& method);

// The published limits that a meeting of this title would pass.
std::vector<PassedLimit> passedMeetingLimits(ServiceType type, const std::optional<std::string>& title);

} // namespace zelto::cli
