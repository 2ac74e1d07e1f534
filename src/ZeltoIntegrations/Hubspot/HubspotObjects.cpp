#include <ZeltoIntegrations/Hubspot/HubspotObjects.h>

#include <ZeltoIntegrations/Accounts/Secrets.h>
#include <ZeltoIntegrations/Helpers/HTMLText.h>

#include <Platform/Text.h>

#include <utility>

namespace zelto {

namespace {

using Address = IntegrationsInteractorAddress;
using HeaderContact = HubspotPayloadCreateEmailHeaderContact;
using AssociationId = HubspotPayloadAssociationId;

constexpr TimeInterval usualDuration{3600};

std::optional<std::vector<HubspotPayloadAssociation>>
associationsOf(const std::vector<std::string>& contactIds, AssociationId type) {
    if (contactIds.empty()) {
        return std::nullopt;
    }
    std::vector<HubspotPayloadAssociation> associations;
    associations.reserve(contactIds.size());
    for (const auto& id : contactIds) {
        associations.push_back({.to = {id}, .types = {{.associationTypeId = type}}});
    }
    return associations;
}

HeaderContact headerContactOf(const Address& address) {
    return {.email = address.email, .firstname = address.firstName, .lastname = address.lastName};
}

std::vector<HeaderContact> headerContactsOf(const std::vector<Address>& addresses) {
    std::vector<HeaderContact> contacts;
    contacts.reserve(addresses.size());
    for (const auto& each : addresses) {
        // A group without members has no address.
        if (!isBlank(each.email)) {
            contacts.push_back(headerContactOf(each));
        }
    }
    return contacts;
}

HubspotPayloadCreateEmailHeaders headersOf(const IntegrationsInteractorAddresses& addresses) {
    return {.from = headerContactOf(addresses.from.value_or(Address())),
            .to = headerContactsOf(addresses.to.value_or(std::vector<Address>())),
            .cc = addresses.cc.transform(headerContactsOf),
            .bcc = addresses.bcc.transform(headerContactsOf)};
}

} // namespace

std::string hubspotFooter() {
    return "<p><a href=\"" + htmlText(Secrets::webSite() + "?utm") + "\">Logged into CRM with Zelto</a></p>";
}

std::optional<HubspotPayloadCreateEmail> hubspotEmail(std::string subject,
                                                      const IntegrationsInteractorAddresses& addresses,
                                                      HubspotEmailBody body,
                                                      const std::vector<std::string>& contactIds, Date now) {
    auto headers = JSONEncoder().encode(headersOf(addresses));
    if (!headers) {
        return std::nullopt;
    }
    return HubspotPayloadCreateEmail{
        .properties = {.hs_timestamp = now,
                       .hs_email_headers = *std::move(headers),
                       .hs_email_direction = HubspotPayloadCreateEmailDirection::incomingEmail,
                       .hs_email_subject = std::move(subject),
                       .hs_email_text = std::move(body.text),
                       .hs_email_html = std::move(body.html),
                       .hs_attachment_ids = std::nullopt},
        .associations = associationsOf(contactIds, AssociationId::emailToContact)};
}

HubspotPayloadCreateNote hubspotNote(const std::string& text, const std::vector<std::string>& contactIds,
                                     Date now) {
    return {.properties = {.hs_timestamp = now,
                           .hs_note_body = std::string(prefixCharacters(text, maximumHubspotNote))},
            .associations = associationsOf(contactIds, AssociationId::noteToContact)};
}

std::size_t leftOutOfHubspotNote(const std::string& text) {
    const auto kept = prefixCharacters(text, maximumHubspotNote);
    return characterCount(std::string_view(text).substr(kept.size()));
}

HubspotPayloadCreateMeeting hubspotMeeting(std::string title, HubspotMeetingContent content,
                                           std::optional<Date> start, std::optional<Date> end,
                                           const std::vector<std::string>& contactIds, Date now) {
    const auto begin = start.value_or(now);
    return {.properties = {.hs_timestamp = begin,
                           .hs_meeting_title = std::move(title),
                           .hs_meeting_body = std::move(content.body),
                           .hs_internal_meeting_notes = std::move(content.notes),
                           .hs_meeting_start_time = begin,
                           .hs_meeting_end_time = end.value_or(begin + usualDuration),
                           .hs_meeting_external_url = std::move(content.externalURL)},
            .associations = associationsOf(contactIds, AssociationId::meetingToContact)};
}

} // namespace zelto
