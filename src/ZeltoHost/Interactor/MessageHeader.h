#pragma once

#include <Platform/Date.h>
#include <ZeltoIntegrations/Content/IntegrationHeaderComponents.h>
#include <ZeltoIntegrations/Content/IntegrationsInteractorTypes.h>

#include <optional>
#include <string>
#include <vector>

namespace zelto {

// Makes the header block of a mail or a note, as data and as HTML.

// One labelled line of addresses.
IntegrationHeaderComponents::Component<std::vector<IntegrationHeaderComponents::Address>>
headerLine(std::string label, const std::vector<IntegrationsInteractorAddress>& addresses);

// "21 October 2025, 14:30 GMT+2"; empty without a date.
std::string headerDate(std::optional<Date> date, const std::optional<std::string>& timeZone);

// A table of the lines, then the date, then the subject unless it is empty; all text is escaped.
std::string headerHTML(const IntegrationHeaderComponents& header, const std::string& subjectLabel,
                       const std::string& subject);

// The parties outside the domain of the user's address (or domain); all of them without one. A list without
// parties becomes absent.
IntegrationsInteractorAddresses externalOf(const IntegrationsInteractorAddresses& all,
                                           const std::optional<std::string>& userAddress);

} // namespace zelto
