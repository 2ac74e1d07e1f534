#include <ZeltoIntegrations/Hubspot/HubspotPayloads.h>

#include <Platform/EnumDescription.h>
#include <Platform/JSON/JSONCases.h>
#include <Platform/JSON/JSONRecordDescription.h>

namespace zelto {

using Category = HubspotPayloadAssociationCategory;
using Direction = HubspotPayloadCreateEmailDirection;

ZELTO_DESCRIBE_ENUM(HubspotPayloadAssociationCategory, hubspotDefined, integratorDefined, userDefined);
ZELTO_DESCRIBE_ENUM(HubspotPayloadAssociationId, emailToContact, meetingToContact, noteToContact);
ZELTO_DESCRIBE_ENUM(HubspotPayloadCreateEmailDirection, email, incomingEmail, forwardedEmail);

ZELTO_JSON_ENUM_TEXTS(HubspotPayloadAssociationCategory, {Category::hubspotDefined, "HUBSPOT_DEFINED"},
                      {Category::integratorDefined, "INTEGRATOR_DEFINED"},
                      {Category::userDefined, "USER_DEFINED"});
ZELTO_JSON_ENUM_TEXTS(HubspotPayloadCreateEmailDirection, {Direction::email, "EMAIL"},
                      {Direction::incomingEmail, "INCOMING_EMAIL"},
                      {Direction::forwardedEmail, "FORWARDED_EMAIL"});

ZELTO_JSON_RECORD(HubspotPayloadAssociationType, associationCategory, associationTypeId);
ZELTO_JSON_RECORD(HubspotPayloadAssociation, to, types);
ZELTO_JSON_RECORD(HubspotPayloadCreateContactProperties, email, firstname, lastname, lifecyclestage,
                  hs_lead_status);
ZELTO_JSON_RECORD(HubspotPayloadCreateContact, properties);
ZELTO_JSON_RECORD(HubspotPayloadCreateEmailHeaderContact, email, firstname, lastname);
ZELTO_JSON_RECORD(HubspotPayloadCreateEmailHeaders, from, to, cc, bcc);
ZELTO_JSON_RECORD(HubspotPayloadCreateEmailProperties, hs_timestamp, hs_email_headers, hs_email_direction,
                  hs_email_subject, hs_email_text, hs_email_html, hs_attachment_ids);
ZELTO_JSON_RECORD(HubspotPayloadCreateEmail, properties, associations);
ZELTO_JSON_RECORD(HubspotPayloadCreateNoteProperties, hs_timestamp, hs_note_body);
ZELTO_JSON_RECORD(HubspotPayloadCreateNote, properties, associations);
ZELTO_JSON_RECORD(HubspotPayloadCreateMeetingProperties, hs_timestamp, hs_meeting_title, hs_meeting_body,
                  hs_internal_meeting_notes, hs_meeting_start_time, hs_meeting_end_time,
                  hs_meeting_external_url);
ZELTO_JSON_RECORD(HubspotPayloadCreateMeeting, properties, associations);

} // namespace zelto
