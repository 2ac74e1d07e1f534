#pragma once

#include <ZeltoIntegrations/Client/ServiceClient.h>
#include <ZeltoIntegrations/Hubspot/HubspotPayloads.h>
#include <ZeltoIntegrations/Hubspot/HubspotResponses.h>

#include <memory>
#include <string>
#include <string_view>

namespace zelto {

// HubSpot's API, version 3 of the CRM: https://developers.hubspot.com/docs/reference/api. Dates go out as ISO
// 8601. A text that is not UTF-8 fails with `internalError`, and nothing is sent.
class HubspotClient final : public ServiceClient {
  public:
    HubspotClient(std::shared_ptr<ServiceAuthoriser> authoriser, JSONDecoder decoder);

    // The access token is a part of the address; each try has the token that it is signed with.
    // https://developers.hubspot.com/docs/reference/api/auth-oauth-v1/tokens
    void fetchTokenMetadata(ServiceCompletion<HubspotTokenMetadata> completion);

    // https://developers.hubspot.com/docs/reference/api/crm/pipelines
    void fetchContactLifecycleStages(ServiceCompletion<HubspotPayloadGetContactLifecycleStages> completion);

    // Fails with `itemNotFound` where no contact has the address.
    // https://developers.hubspot.com/docs/reference/api/crm/objects/contacts
    void findContact(const std::string& email, ServiceCompletion<HubspotObject> completion);

    void createContact(const HubspotPayloadCreateContact& contact,
                       ServiceCompletion<HubspotObject> completion);

    // https://developers.hubspot.com/docs/reference/api/crm/engagements/email
    void createEmail(const HubspotPayloadCreateEmail& email, ServiceCompletion<void> completion);

    // https://developers.hubspot.com/docs/reference/api/crm/engagements/notes
    void createNote(const HubspotPayloadCreateNote& note, ServiceCompletion<void> completion);

    // https://developers.hubspot.com/docs/reference/api/crm/engagements/meetings
    void createMeeting(const HubspotPayloadCreateMeeting& meeting, ServiceCompletion<void> completion);

    static constexpr std::string_view apiBaseURL = "https://api.hubapi.com/";

  private:
    const std::shared_ptr<ServiceAuthoriser> authoriser_;
};

} // namespace zelto
