#pragma once

#include <ZeltoIntegrations/Content/IntegrationExportContentType.h>
#include <ZeltoIntegrations/Hubspot/HubspotRecords.h>

#include <Platform/JSON/JSONCoding.h>
#include <Platform/JSON/JSONKeys.h>

#include <optional>
#include <string>
#include <vector>

namespace zelto {

class HubspotExporter;

// An export uses the fields of its target: those of an e-mail, or those of a meeting note.
struct HubspotExportConfiguration {
    using Exporter = HubspotExporter;

    IntegrationExportContentType saveAs = IntegrationExportContentType::plainText;
    // Without it the e-mail is made without contacts.
    std::optional<HubspotCreateContacts> emailCreateContacts;
    // The stage and the status are those of contacts that are created; one that is there is not changed.
    std::optional<HubspotSaveContactsLifecycleStage> emailSaveContactsLifecycleStage;
    std::optional<HubspotSaveContactsLeadStatus> emailSaveContactsLeadStatus;
    std::optional<HubspotNoteCreate> noteCreate; // without it the note alone
    std::optional<HubspotSaveContactsLifecycleStage> noteSaveContactsLifecycleStage;
    std::optional<HubspotSaveContactsLeadStatus> noteSaveContactsLeadStatus;
    std::vector<IntegrationExportContentType> supportedContentTypes;

    IntegrationExportContentType exportType() const { return saveAs; }

    std::vector<std::string> diff(const HubspotExportConfiguration& userConfig,
                                  bool attachmentsAreSelectedByDefault) const;
    // The fields of the exporter's target; what was chosen for the other one stays.
    void storeLastExportInfo(HubspotExporter& exporter) const;

    bool operator==(const HubspotExportConfiguration&) const = default;
};

ZELTO_JSON_CODED(HubspotExportConfiguration);
ZELTO_JSON_KEYS(HubspotExportConfiguration);

} // namespace zelto
