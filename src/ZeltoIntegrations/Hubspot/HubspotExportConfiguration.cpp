#include <ZeltoIntegrations/Hubspot/HubspotExportConfiguration.h>

#include <ZeltoIntegrations/Export/ConfigurationDiff.h>
#include <ZeltoIntegrations/Hubspot/HubspotExporter.h>

#include <Platform/JSON/JSONRecordDescription.h>

namespace zelto {

ZELTO_JSON_RECORD(HubspotExportConfiguration, saveAs, emailCreateContacts, emailSaveContactsLifecycleStage,
                  emailSaveContactsLeadStatus, noteCreate, noteSaveContactsLifecycleStage,
                  noteSaveContactsLeadStatus, supportedContentTypes);

std::vector<std::string> HubspotExportConfiguration::diff(const HubspotExportConfiguration& userConfig,
                                                          bool) const {
    return ConfigurationDiff()
        .field("saveAs", saveAs, userConfig.saveAs)
        .field("emailCreateContacts", emailCreateContacts, userConfig.emailCreateContacts)
        .field("emailSaveContactsLifecycleStage", emailSaveContactsLifecycleStage,
               userConfig.emailSaveContactsLifecycleStage)
        .field("emailSaveContactsLeadStatus", emailSaveContactsLeadStatus,
               userConfig.emailSaveContactsLeadStatus)
        .field("noteCreate", noteCreate, userConfig.noteCreate)
        .field("noteSaveContactsLifecycleStage", noteSaveContactsLifecycleStage,
               userConfig.noteSaveContactsLifecycleStage)
        .field("noteSaveContactsLeadStatus", noteSaveContactsLeadStatus,
               userConfig.noteSaveContactsLeadStatus)
        .names();
}

void HubspotExportConfiguration::storeLastExportInfo(HubspotExporter& exporter) const {
    exporter.setLastExportContentType(saveAs);
    switch (exporter.exportTarget()) {
    case IntegrationExportTarget::email:
        exporter.lastEmailCreateContacts.set(emailCreateContacts);
        exporter.lastEmailSaveContactsLifecycleStage.set(emailSaveContactsLifecycleStage);
        exporter.lastEmailSaveContactsLeadStatus.set(emailSaveContactsLeadStatus);
        return;
    case IntegrationExportTarget::meetingNote:
        exporter.lastNoteCreate.set(noteCreate);
        exporter.lastNoteSaveContactsLifecycleStage.set(noteSaveContactsLifecycleStage);
        exporter.lastNoteSaveContactsLeadStatus.set(noteSaveContactsLeadStatus);
        return;
    }
}

} // namespace zelto
