#pragma once

#include <ZeltoIntegrations/Client/MeetingCreator.h>

#include <Platform/Date.h>
#include <Platform/JSON/JSONCoding.h>

#include <optional>
#include <string>
#include <vector>

namespace zelto {

// A meeting as the service is asked for it.
struct CreateMeetingBody {
    std::optional<std::string> subject;
    std::optional<Date> startDateTime;
    std::optional<Date> endDateTime;

    bool operator==(const CreateMeetingBody&) const = default;
};

ZELTO_JSON_CODED(CreateMeetingBody);

struct CreateMeetingResponse {
    std::string id;
    std::string joinWebUrl;

    bool operator==(const CreateMeetingResponse&) const = default;
};

ZELTO_JSON_CODED(CreateMeetingResponse);

// In JSON a text, the name with a capital. A response with any other text does not decode.
enum class MSLicenceServicePlanProvisioningStatus {
    success,
    disabled,
    error,
    pendingInput,
    pendingActivation,
    pendingProvisioning,
};

ZELTO_JSON_CODED(MSLicenceServicePlanProvisioningStatus);

// A service that is part of a licence.
struct MSLicenceServicePlan {
    std::string servicePlanId;
    std::string servicePlanName;
    MSLicenceServicePlanProvisioningStatus provisioningStatus{};
    std::string appliesTo;

    bool operator==(const MSLicenceServicePlan&) const = default;
};

ZELTO_JSON_CODED(MSLicenceServicePlan);

struct MSLicence {
    std::string id;
    std::string skuId;
    std::string skuPartNumber;
    std::vector<MSLicenceServicePlan> servicePlans;

    bool operator==(const MSLicence&) const = default;
};

ZELTO_JSON_CODED(MSLicence);

// The user's licences.
struct MSLicenceResponse {
    std::optional<std::string> context; // "@odata.context"
    std::vector<MSLicence> value;

    bool operator==(const MSLicenceResponse&) const = default;
};

ZELTO_JSON_CODED(MSLicenceResponse);

ConferenceDetails microsoftTeamsConferenceDetails(CreateMeetingResponse response);

// Whether any plan of any licence works, whatever its name.
bool hasWorkingPlan(const MSLicenceResponse& licences);

} // namespace zelto
