#pragma once

// What the service is sent.

#include <Platform/Date.h>
#include <Platform/Enum.h>
#include <Platform/JSON/JSONCoding.h>
#include <ZeltoIntegrations/Hubspot/HubspotRecords.h>
#include <ZeltoIntegrations/Hubspot/HubspotResponses.h>

#include <optional>
#include <string>
#include <vector>

namespace zelto {

// Who has defined a type of association. In JSON a text of the service: "HUBSPOT_DEFINED".
enum class HubspotPayloadAssociationCategory : int { hubspotDefined, integratorDefined, userDefined };
ZELTO_ENUM(HubspotPayloadAssociationCategory);
ZELTO_JSON_CODED(HubspotPayloadAssociationCategory);

// The service's own types of association. In JSON a number.
enum class HubspotPayloadAssociationId : int {
    emailToContact = 198,
    meetingToContact = 200,
    noteToContact = 202,
};
ZELTO_ENUM(HubspotPayloadAssociationId);

// In JSON a text of the service: "INCOMING_EMAIL".
enum class HubspotPayloadCreateEmailDirection : int { email, incomingEmail, forwardedEmail };
ZELTO_ENUM(HubspotPayloadCreateEmailDirection);
ZELTO_JSON_CODED(HubspotPayloadCreateEmailDirection);

struct HubspotPayloadAssociationType {
    HubspotPayloadAssociationCategory associationCategory = HubspotPayloadAssociationCategory::hubspotDefined;
    HubspotPayloadAssociationId associationTypeId = HubspotPayloadAssociationId::emailToContact;

    bool operator==(const HubspotPayloadAssociationType&) const = default;
};

ZELTO_JSON_CODED(HubspotPayloadAssociationType);

struct HubspotPayloadAssociation {
    HubspotObject to;
    std::vector<HubspotPayloadAssociationType> types;

    bool operator==(const HubspotPayloadAssociation&) const = default;
};

ZELTO_JSON_CODED(HubspotPayloadAssociation);

struct HubspotPayloadCreateContactProperties {
    std::string email;
    std::optional<std::string> firstname;
    std::optional<std::string> lastname;
    std::optional<std::string> lifecyclestage; // the identifier of a stage
    std::optional<HubspotPayloadLeadStatus> hs_lead_status;

    bool operator==(const HubspotPayloadCreateContactProperties&) const = default;
};

ZELTO_JSON_CODED(HubspotPayloadCreateContactProperties);

struct HubspotPayloadCreateContact {
    HubspotPayloadCreateContactProperties properties;

    bool operator==(const HubspotPayloadCreateContact&) const = default;
};

ZELTO_JSON_CODED(HubspotPayloadCreateContact);

struct HubspotPayloadCreateEmailHeaderContact {
    std::string email;
    std::optional<std::string> firstname;
    std::optional<std::string> lastname;

    bool operator==(const HubspotPayloadCreateEmailHeaderContact&) const = default;
};

ZELTO_JSON_CODED(HubspotPayloadCreateEmailHeaderContact);

// Goes out as a text that holds this as JSON.
struct HubspotPayloadCreateEmailHeaders {
    HubspotPayloadCreateEmailHeaderContact from;
    std::vector<HubspotPayloadCreateEmailHeaderContact> to;
    std::optional<std::vector<HubspotPayloadCreateEmailHeaderContact>> cc;
    std::optional<std::vector<HubspotPayloadCreateEmailHeaderContact>> bcc;

    bool operator==(const HubspotPayloadCreateEmailHeaders&) const = default;
};

ZELTO_JSON_CODED(HubspotPayloadCreateEmailHeaders);

struct HubspotPayloadCreateEmailProperties {
    Date hs_timestamp;
    std::string hs_email_headers; // JSON of HubspotPayloadCreateEmailHeaders
    HubspotPayloadCreateEmailDirection hs_email_direction = HubspotPayloadCreateEmailDirection::incomingEmail;
    std::string hs_email_subject;
    std::optional<std::string> hs_email_text;
    std::optional<std::string> hs_email_html;
    std::optional<std::string> hs_attachment_ids;

    bool operator==(const HubspotPayloadCreateEmailProperties&) const = default;
};

ZELTO_JSON_CODED(HubspotPayloadCreateEmailProperties);

struct HubspotPayloadCreateEmail {
    HubspotPayloadCreateEmailProperties properties;
    std::optional<std::vector<HubspotPayloadAssociation>> associations;

    bool operator==(const HubspotPayloadCreateEmail&) const = default;
};

ZELTO_JSON_CODED(HubspotPayloadCreateEmail);

struct HubspotPayloadCreateNoteProperties {
    Date hs_timestamp;
    std::string hs_note_body;

    bool operator==(const HubspotPayloadCreateNoteProperties&) const = default;
};

ZELTO_JSON_CODED(HubspotPayloadCreateNoteProperties);

struct HubspotPayloadCreateNote {
    HubspotPayloadCreateNoteProperties properties;
    std::optional<std::vector<HubspotPayloadAssociation>> associations;

    bool operator==(const HubspotPayloadCreateNote&) const = default;
};

ZELTO_JSON_CODED(HubspotPayloadCreateNote);

struct HubspotPayloadCreateMeetingProperties {
    Date hs_timestamp;
    std::string hs_meeting_title;
    std::optional<std::string> hs_meeting_body;
    std::optional<std::string> hs_internal_meeting_notes;
    Date hs_meeting_start_time;
    Date hs_meeting_end_time;
    std::optional<std::string> hs_meeting_external_url;

    bool operator==(const HubspotPayloadCreateMeetingProperties&) const = default;
};

ZELTO_JSON_CODED(HubspotPayloadCreateMeetingProperties);

struct HubspotPayloadCreateMeeting {
    HubspotPayloadCreateMeetingProperties properties;
    std::optional<std::vector<HubspotPayloadAssociation>> associations;

    bool operator==(const HubspotPayloadCreateMeeting&) const = default;
};

ZELTO_JSON_CODED(HubspotPayloadCreateMeeting);

} // namespace zelto
