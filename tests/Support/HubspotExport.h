#pragma once

#include <ZeltoIntegrations/Hubspot/HubspotExporter.h>

#include <Platform/JSON/JSONValue.h>

#include <Support/NetworkExport.h>
#include <Support/ServiceServer.h>

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

// Responds as HubSpot does.
class HubspotService {
  public:
    static constexpr std::string_view tokenPath = "/oauth/v1/token";

    Replaceable<std::string> user{"me@example.org"};
    Replaceable<std::string> stages{
        R"({"results":[{"id":"lead","label":"Lead","displayOrder":1,"archived":false},)"
        R"({"id":"7","label":"Stammkunde 🌳","displayOrder":2,"archived":true}]})"};

    // The identifier of each contact by its address, percent-encoded as in a path.
    Replaceable<std::map<std::string, std::string>> contacts{
        std::map<std::string, std::string>{{"tomas@example.org", "12"}}};

    PlayedResponse usualResponse(const ReceivedRequest& request) const {
        if (request.method == "POST") {
            return PlayedResponse::json(R"({"id":"101","properties":{},"archived":false})", 201);
        }
        if (request.target.starts_with(tokensPath)) {
            return PlayedResponse::json(R"({"token":")" + request.target.substr(tokensPath.size()) +
                                        R"(","user":")" + *user.get() +
                                        R"(","hub_domain":"example.hubspot.com","expires_in":1754})");
        }
        return request.target.starts_with(contactsPath) ? contactAt(request.target)
                                                        : PlayedResponse::json(*stages.get());
    }

    std::optional<std::string> madeBy(const ReceivedRequest& request) const {
        if (request.method != "POST" || !request.target.starts_with(objectsPath)) {
            return std::nullopt;
        }
        const auto kind = request.target.substr(objectsPath.size());
        return kind == "contacts" ? "contact " + emailOf(request) : kind.substr(0, kind.size() - 1);
    }

    static PlayedResponse refusal(int status, const std::string& message) {
        return PlayedResponse::json(R"({"status":"error","message":")" + message +
                                        R"(","correlationId":"c","category":"CATEGORY"})",
                                    status);
    }

  private:
    static constexpr std::string_view tokensPath = "/oauth/v1/access-tokens/";
    static constexpr std::string_view objectsPath = "/crm/v3/objects/";
    static constexpr std::string_view contactsPath = "/crm/v3/objects/contacts/";

    PlayedResponse contactAt(const std::string& target) const {
        const auto known = contacts.get();
        const auto end = target.find('?');
        const auto found = known->find(target.substr(contactsPath.size(), end - contactsPath.size()));
        if (found == known->end()) {
            return refusal(404, "Object not found");
        }
        return PlayedResponse::json(R"({"id":")" + found->second + R"(","properties":{},"archived":false})");
    }

    static std::string emailOf(const ReceivedRequest& request) {
        const auto body = JSONValue::parse(request.body);
        return *body->find("properties")->find("email")->asString();
    }
};

using HubspotServer = ServiceServer<HubspotService>;

// Of an e-mail "Title" from Ana, who is no contact, to Tomas, who is one, and the user; of all of them.
class HubspotExport : public NetworkExport<HubspotExporter> {
  public:
    HubspotExport() : NetworkExport(ServiceType::Hubspot) {
        data->parties = {.from = ana(), .to = std::vector{tomas(), user()}, .cc = {}, .bcc = {}};
        configuration.emailCreateContacts = HubspotCreateContacts::allExternalRecipients;
    }

    // Of a meeting note with its meeting, in which Ana and Tomas took part.
    void exportNote() {
        data->target = IntegrationExportTarget::meetingNote;
        data->attendees = {ana(), tomas(), user()};
        data->meetingNotes = "Notes";
        data->linkText = "https://notes.example/1";
        configuration.noteCreate = HubspotNoteCreate::noteAndMeeting;
    }

    static IntegrationsInteractorAddress party(std::string email) { return {std::move(email), {}, {}, {}}; }

    static IntegrationsInteractorAddress ana() { return {"ana@example.org", "Ana Reis", "Ana", "Reis"}; }

    static IntegrationsInteractorAddress tomas() { return party("tomas@example.org"); }

    static IntegrationsInteractorAddress user() { return party("me@example.org"); }
};

} // namespace zelto
