#include <ZeltoIntegrations/MicrosoftTeams/MicrosoftTeamsRecords.h>

#include <Platform/JSON/JSONCases.h>
#include <Platform/JSON/JSONRecordDescription.h>

#include <algorithm>
#include <utility>

namespace zelto {

using Status = MSLicenceServicePlanProvisioningStatus;

ZELTO_JSON_ENUM_TEXTS(Status, {Status::success, "Success"}, {Status::disabled, "Disabled"},
                      {Status::error, "Error"}, {Status::pendingInput, "PendingInput"},
                      {Status::pendingActivation, "PendingActivation"},
                      {Status::pendingProvisioning, "PendingProvisioning"});
ZELTO_JSON_RECORD(CreateMeetingBody, subject, startDateTime, endDateTime);
ZELTO_JSON_RECORD(CreateMeetingResponse, id, joinWebUrl);
ZELTO_JSON_RECORD(MSLicenceServicePlan, servicePlanId, servicePlanName, provisioningStatus, appliesTo);
ZELTO_JSON_RECORD(MSLicence, id, skuId, skuPartNumber, servicePlans);
ZELTO_JSON_RECORD(MSLicenceResponse, (context, "@odata.context"), value);

ConferenceDetails microsoftTeamsConferenceDetails(CreateMeetingResponse response) {
    return {.id = std::move(response.id),
            .joinURL = response.joinWebUrl,
            .callInfo = std::move(response.joinWebUrl),
            .type = ServiceType::MicrosoftTeams};
}

bool hasWorkingPlan(const MSLicenceResponse& licences) {
    return std::ranges::any_of(licences.value, [](const MSLicence& licence) {
        return std::ranges::find(licence.servicePlans, Status::success,
                                 &MSLicenceServicePlan::provisioningStatus) != licence.servicePlans.end();
    });
}

} // namespace zelto
