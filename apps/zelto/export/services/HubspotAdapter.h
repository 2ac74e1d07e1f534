#pragma once

#include "export/ServiceAdapter.h"

#include <ZeltoIntegrations/Hubspot/HubspotExporter.h>

namespace zelto::cli {

// An export has no target: it belongs to contacts. What there is to choose from are the lifecycle stages of
// those that it makes.
struct HubspotAdapter : WebAdapter<HubspotExporter> {
    using TargetData = HubspotFullData;

    // Those that are in use, in the service's order.
    static TargetTree targetTree(const HubspotFullData& data);

    // The options reach the fields that the message's kind has.
    static Outcome<void> setContacts(HubspotExportConfiguration& configuration,
                                     const std::optional<HubspotFullData>& data, const ContactEdits& edits,
                                     IntegrationExportTarget target, const std::string& account);

    // The exporter itself asks the service for what it has not kept, also where nothing may be sent.
    template <class Done> static void loadTargetData(HubspotExporter& exporter, bool force, Done done) {
        if (force) {
            exporter.loadData(force, std::move(done));
        } else {
            done(keptData(exporter));
        }
    }

    static constexpr bool tellsMissingTargets = true;

    static std::optional<RefusalAdvice> adviceOn(const RefusedRequest& refused);

    // No address is a contact yet.
    static std::string standInResponse(const SentRequest& request);
    static int standInStatus(const SentRequest& request);
    static std::string assumption(const std::vector<SentRequest>& requests);

    static std::vector<PassedLimit> passedLimits(const HubspotExporter& exporter,
                                                 const HubspotExportConfiguration& configuration,
                                                 const std::vector<SentRequest>& requests);

  private:
    static std::optional<HubspotFullData> keptData(const HubspotExporter& exporter);
};

} // namespace zelto::cli
