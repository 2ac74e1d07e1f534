#pragma once

// What the service writes.

#include <ZeltoIntegrations/Hubspot/HubspotRecords.h>

#include <string>
#include <vector>

namespace zelto {

// Whose access token it is. The response holds the token itself as well, which is not read.
struct HubspotTokenMetadata {
    std::string user; // an e-mail address
    std::string hub_domain;

    bool operator==(const HubspotTokenMetadata&) const = default;
};

ZELTO_JSON_CODED(HubspotTokenMetadata);

// A contact, or what is associated with one.
struct HubspotObject {
    std::string id;

    bool operator==(const HubspotObject&) const = default;
};

ZELTO_JSON_CODED(HubspotObject);

struct HubspotPayloadGetContactLifecycleStages {
    std::vector<HubspotPayloadContactLifecycleStage> results;

    bool operator==(const HubspotPayloadGetContactLifecycleStages&) const = default;
};

ZELTO_JSON_CODED(HubspotPayloadGetContactLifecycleStages);

// Any object.
struct HubspotResponse {
    bool operator==(const HubspotResponse&) const = default;
};

ZELTO_JSON_CODED(HubspotResponse);

} // namespace zelto
