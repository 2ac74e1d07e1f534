#include <ZeltoIntegrations/Hubspot/HubspotResponses.h>

#include <Platform/JSON/JSONRecordDescription.h>

namespace zelto {

ZELTO_JSON_RECORD(HubspotTokenMetadata, user, hub_domain);
ZELTO_JSON_RECORD(HubspotObject, id);
ZELTO_JSON_RECORD(HubspotPayloadGetContactLifecycleStages, results);
ZELTO_JSON_RECORD(HubspotResponse);

} // namespace zelto
