// A foreign response becomes a value or one typed error, by its status and its body; nothing else happens.

#include "Require.h"

#include <ZeltoIntegrations/Asana/AsanaResponses.h>
#include <ZeltoIntegrations/Client/ServiceOutcome.h>
#include <ZeltoIntegrations/Dropbox/DropboxArguments.h>
#include <ZeltoIntegrations/Dropbox/DropboxResponses.h>
#include <ZeltoIntegrations/GoTo/GoToRecords.h>
#include <ZeltoIntegrations/GoogleDrive/GoogleDriveResponses.h>
#include <ZeltoIntegrations/Hubspot/HubspotExportConfiguration.h>
#include <ZeltoIntegrations/Hubspot/HubspotResponses.h>
#include <ZeltoIntegrations/MicrosoftTeams/MicrosoftTeamsRecords.h>
#include <ZeltoIntegrations/Notion/NotionResponses.h>
#include <ZeltoIntegrations/OneNote/OneNoteResponses.h>
#include <ZeltoIntegrations/Slack/SlackResponses.h>
#include <ZeltoIntegrations/Todoist/TodoistResponses.h>
#include <ZeltoIntegrations/Trello/TrelloResponses.h>
#include <ZeltoIntegrations/Zoom/ZoomRecords.h>

#include <NotionModel/Page.h>
#include <Platform/JSON/JSONRecordDescription.h>
#include <Platform/JSON/JSONValue.h>
#include <Platform/Text.h>
#include <Platform/UTF8.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

struct FuzzList {
    std::string id;
    std::string name;
    bool closed = false;

    bool operator==(const FuzzList&) const = default;
};

struct FuzzBoard {
    std::string id;
    std::optional<std::string> name;
    std::vector<FuzzList> lists;
    std::optional<Date> dateLastActivity;

    bool operator==(const FuzzBoard&) const = default;
};

ZELTO_JSON_CODED(FuzzList);
ZELTO_JSON_CODED(FuzzBoard);
ZELTO_JSON_RECORD(FuzzList, id, name, (closed, defaulted));
ZELTO_JSON_RECORD(FuzzBoard, id, name, (lists, defaulted), dateLastActivity);

namespace {

template <class T> void checkRecord(const ServiceResponse& response, const JSONDecoder& decoder) {
    const auto value = serviceValue<T>(response, decoder);
    if (!value) {
        require(value.error() == ServiceClientError::dataParseError);
        return;
    }
    const JSONEncoder encoder{.dateStrategy = decoder.dateStrategy};
    const auto text = encoder.encode(*value);
    require(text.has_value());
    // A response without a body (204) has no JSON; everything else has.
    require(decoder.decode<T>(*text).has_value());
}

template <class... T> void checkRecords(const ServiceResponse& response, const JSONDecoder& decoder) {
    (checkRecord<T>(response, decoder), ...);
}

void checkNotion(const ServiceResponse& response) {
    if (const auto user = serviceValue<notion::User>(response, {})) {
        const auto owner = user->bot && user->bot->owner ? user->bot->owner->user : std::nullopt;
        require(toNotionUser(*user).id == (owner ? owner->id : user->id).rawValue);
    }
    if (const auto found = serviceValue<notion::ListResponse<notion::SearchResultItem>>(response, {})) {
        const auto isDatabase = [](const auto& item) { return item.object == "database"; };
        const auto databases = toNotionDatabases(*found);
        require(std::ssize(databases.databases) == std::ranges::count_if(found->results, isDatabase));
        require(databases.hasMore == found->has_more);
    }
}

// What is asked of the service by the names that it has given.
void checkDropboxNames(const std::vector<DropboxMetadata>& entries) {
    std::vector<std::string> names;
    for (const auto& entry : entries) {
        names.push_back(entry.name);
        const JSONValue arguments(JSONObject{{"path", entry.path_lower.value_or(entry.id)}});
        const auto escaped = asciiEscaped(*arguments.text());
        require(std::ranges::all_of(escaped, [](char each) { return each >= ' ' && each < 0x7F; }));
        require(JSONValue::parse(escaped) == arguments);
    }
    for (const auto& query : dropboxQueries(names)) {
        require(isValidUTF8(query) && codePointCount(query) <= maximumDropboxQuery);
    }
}

void checkDropbox(const ServiceResponse& response) {
    if (const auto listing = serviceValue<DropboxListFolderResponse>(response, {})) {
        const auto folders = filterFolders(*listing);
        require(folders.has_value() == (!listing->has_more || listing->cursor.has_value()));
        if (folders) {
            require(folders->next.has_value() == listing->has_more);
            require(std::ssize(folders->items) ==
                    std::ranges::count_if(listing->entries, &DropboxMetadata::isFolder));
        }
        checkDropboxNames(listing->entries);
    }
    if (auto found = serviceValue<DropboxSearchResponse>(response, {})) {
        checkDropboxNames(toDropboxMatches(*std::move(found)));
    }
}

void checkGoogleDrive(const ServiceResponse& response) {
    if (const auto listing = serviceValue<GoogleDriveSingleFilesResponse>(response, {})) {
        for (const auto& file : listing->files) {
            require(getNameWithExtension(file).starts_with(file.name));
            require(toIntegrationImportFile(file).isFolder() == file.isFolder());
        }
    }
}

// What does not say ok is no response, and each page but the last names the next.
void checkSlack(const ServiceResponse& response) {
    const auto json = JSONValue::parse(viewOf(response.body));
    const auto* ok = json && json->asObject() ? json->asObject()->find("ok") : nullptr;
    const bool isOk = ok && *ok == JSONValue(true);
    require(isOk || !serviceValue<SlackSelfUserResponse>(response, {}));
    require(isOk || !serviceValue<SlackPostMessageResponse>(response, {}));
    if (auto found = serviceValue<SlackUserListResponse>(response, {})) {
        require(isOk && !toSlackUsers(*std::move(found)).next.value_or("next").empty());
    }
    if (auto found = serviceValue<SlackChannelListResponse>(response, {})) {
        require(isOk && !toSlackChannels(*std::move(found)).next.value_or("next").empty());
    }
}

// A meeting has an identifier that is a number on Zoom and GoTo, and joins by the link that its service
// gives.
void checkMeetings(const ServiceResponse& response) {
    const JSONDecoder decoder{DateStrategy::iso8601};
    checkRecords<ZoomMeetingResponse, std::vector<GoToMeetingResponse>, CreateMeetingResponse,
                 MSLicenceResponse>(response, decoder);
    if (auto zoom = serviceValue<ZoomMeetingResponse>(response, decoder)) {
        const auto details = zoomConferenceDetails(*zoom);
        require(std::stoll(details.id) == zoom->id && details.joinURL == zoom->join_url);
    }
    if (auto goTo = serviceValue<std::vector<GoToMeetingResponse>>(response, decoder)) {
        const auto details = goToConferenceDetails(*goTo);
        require(details.has_value() != goTo->empty());
        require(!details || std::stoll(details->id) == goTo->front().meetingid);
    }
    if (const auto licences = serviceValue<MSLicenceResponse>(response, decoder)) {
        const auto written = JSONEncoder().encode(*licences).value();
        require(hasWorkingPlan(*licences) == written.contains(R"("provisioningStatus":"Success")"));
    }
}

void checkValues(const ServiceResponse& response) {
    require(serviceValue<Data>(response, {}) == response.body);
    const auto text = serviceValue<std::string>(response, {});
    require(text.has_value() == isValidUTF8(viewOf(response.body)));
    for (const auto strategy : {DateStrategy::default_, DateStrategy::iso8601}) {
        checkRecords<std::vector<FuzzBoard>, FuzzBoard>(response, {strategy});
    }
    checkRecords<OAuthToken, OAuthErrorBody, Empty>(response, {});
    checkRecords<std::vector<TrelloBoardResponse>, AddCardResponse, AttachmentResponse, GetUserResponse>(
        response, {});
    checkRecords<AsanaProjectsResponse, AsanaTaskResponse, AsanaUsersResponse, AsanaSingleUserResponse,
                 AsanaWorkspacesResponse>(response, {});
    checkRecords<OneNoteUserResponse, OneNoteNotebooksResponse, OneNoteSectionsResponse>(response, {});
    checkRecords<TodoistFetchResponse, TodoistUploadResponse>(response, {});
    checkRecords<DropboxAccountResponse, DropboxListFolderResponse, DropboxSearchResponse>(response, {});
    checkRecords<GoogleDriveSingleUserResponse, GoogleDriveSingleFilesResponse>(response, {});
    checkRecords<SlackSelfUserResponse, SlackChannelListResponse, SlackUserListResponse,
                 SlackPostMessageResponse>(response, {});
    checkSlack(response);
    checkRecords<HubspotTokenMetadata, HubspotObject, HubspotPayloadGetContactLifecycleStages,
                 HubspotResponse, HubspotExportConfiguration>(response, {});
    checkDropbox(response);
    checkGoogleDrive(response);
    checkRecords<notion::User, notion::ListResponse<notion::SearchResultItem>, notion::Page>(
        response, {DateStrategy::iso8601});
    checkNotion(response);
    checkMeetings(response);
}

void checkError(int status, std::string_view body, ServiceClientError error) {
    using E = ServiceClientError;
    require(error != E::connectionError && error != E::dataParseError && error != E::internalError);
    require((error == E::forbidden) == (status == 403) && (error == E::itemNotFound) == (status == 404));
    require((error == E::toManyRequests) == (status == 429));
    require((error == E::serviceInternalError || error == E::invalidAccount) == (status >= 500));
    if (error == E::authorizationError && status != 401) {
        const auto decoded = JSONDecoder().decode<OAuthErrorBody>(body);
        require(decoded && decoded->error == "invalid_grant");
    }
}

} // namespace

} // namespace zelto

// Two bytes of status, then the body.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    using namespace zelto;
    if (size < 2) {
        return 0;
    }
    static const auto url = *URL::parse("https://api.example/1/boards");
    const int status = (bytes[0] | bytes[1] << 8) % 1000;
    const std::string_view body(reinterpret_cast<const char*>(bytes) + 2, size - 2);
    const auto response = std::make_shared<HTTPURLResponse>(url, status, HTTPHeaders());
    const auto outcome = serviceOutcome(url, dataOf(body), response, std::nullopt);
    require(outcome.has_value() == (status >= 200 && status <= 299));
    if (outcome) {
        require(outcome->status == status && viewOf(outcome->body) == body);
        checkValues(*outcome);
    } else {
        checkError(status, body, outcome.error());
    }
    return 0;
}
