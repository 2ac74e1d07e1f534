#pragma once

#include <ZeltoIntegrations/Content/IntegrationsInteractorTypes.h>
#include <ZeltoIntegrations/Hubspot/HubspotPayloads.h>

#include <Platform/Date.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace zelto {

// The parts of an e-mail's body that the host has.
struct HubspotEmailBody {
    std::optional<std::string> text;
    std::optional<std::string> html;

    bool operator==(const HubspotEmailBody&) const = default;
};

// What the host has of a meeting.
struct HubspotMeetingContent {
    std::optional<std::string> body;
    std::optional<std::string> notes;
    std::optional<std::string> externalURL;

    bool operator==(const HubspotMeetingContent&) const = default;
};

// Characters of a note that the service holds.
constexpr std::size_t maximumHubspotNote = 65536;

// The paragraph at the end of an e-mail's HTML.
std::string hubspotFooter();

// The objects that an export makes, associated with these contacts.

// No value for an address that is not UTF-8.
std::optional<HubspotPayloadCreateEmail> hubspotEmail(std::string subject,
                                                      const IntegrationsInteractorAddresses& addresses,
                                                      HubspotEmailBody body,
                                                      const std::vector<std::string>& contactIds, Date now);

// A text that is too long is cut.
HubspotPayloadCreateNote hubspotNote(const std::string& text, const std::vector<std::string>& contactIds,
                                     Date now);

// How many characters of the text the note lacks.
std::size_t leftOutOfHubspotNote(const std::string& text);

// Begins at `now` without a start, and lasts an hour without an end.
HubspotPayloadCreateMeeting hubspotMeeting(std::string title, HubspotMeetingContent content,
                                           std::optional<Date> start, std::optional<Date> end,
                                           const std::vector<std::string>& contactIds, Date now);

} // namespace zelto
