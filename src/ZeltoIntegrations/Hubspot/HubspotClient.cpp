#include <ZeltoIntegrations/Hubspot/HubspotClient.h>

#include <ZeltoIntegrations/Client/MappedRequest.h>

#include <utility>

namespace zelto {

namespace {

constexpr auto tokensPath = "oauth/v1/access-tokens/";
constexpr auto stagesPath = "crm/v3/pipelines/contacts/contacts-lifecycle-pipeline/stages";
constexpr auto contactsPath = "crm/v3/objects/contacts";
constexpr auto emailsPath = "crm/v3/objects/emails";
constexpr auto notesPath = "crm/v3/objects/notes";
constexpr auto meetingsPath = "crm/v3/objects/meetings";

constexpr JSONEncoder encoder{.dateStrategy = DateStrategy::iso8601};

ServiceRequest get(const std::string& path, const ServiceRequest::Parameters& query = {}) {
    return ServiceRequest("GET", HubspotClient::apiBaseURL, path, query);
}

template <class T> ServiceRequest creation(std::string_view path, const T& object) {
    return ServiceRequest("POST", HubspotClient::apiBaseURL, path).json(object, encoder);
}

} // namespace

HubspotClient::HubspotClient(std::shared_ptr<ServiceAuthoriser> authoriser, JSONDecoder decoder)
    : ServiceClient(authoriser, decoder), authoriser_(std::move(authoriser)) {}

void HubspotClient::fetchTokenMetadata(ServiceCompletion<HubspotTokenMetadata> completion) {
    // Without a token the request is not signed, and so not sent.
    perform<HubspotTokenMetadata>(
        [authoriser = authoriser_] {
            const auto token = authoriser->accessToken().value_or("");
            return get(tokensPath + pathSegment(token)).maker()();
        },
        nullptr, std::move(completion));
}

void HubspotClient::fetchContactLifecycleStages(
    ServiceCompletion<HubspotPayloadGetContactLifecycleStages> completion) {
    performRequest(*this, get(stagesPath), std::move(completion));
}

void HubspotClient::findContact(const std::string& email, ServiceCompletion<HubspotObject> completion) {
    performRequest(*this,
                   get(std::string(contactsPath) + "/" + pathSegment(email), {{"idProperty", "email"}}),
                   std::move(completion));
}

void HubspotClient::createContact(const HubspotPayloadCreateContact& contact,
                                  ServiceCompletion<HubspotObject> completion) {
    performRequest(*this, creation(contactsPath, contact), std::move(completion));
}

void HubspotClient::createEmail(const HubspotPayloadCreateEmail& email, ServiceCompletion<void> completion) {
    performDiscarding<HubspotResponse>(*this, creation(emailsPath, email), std::move(completion));
}

void HubspotClient::createNote(const HubspotPayloadCreateNote& note, ServiceCompletion<void> completion) {
    performDiscarding<HubspotResponse>(*this, creation(notesPath, note), std::move(completion));
}

void HubspotClient::createMeeting(const HubspotPayloadCreateMeeting& meeting,
                                  ServiceCompletion<void> completion) {
    performDiscarding<HubspotResponse>(*this, creation(meetingsPath, meeting), std::move(completion));
}

} // namespace zelto
