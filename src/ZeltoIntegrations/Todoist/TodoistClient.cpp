#include <ZeltoIntegrations/Todoist/TodoistClient.h>

#include <ZeltoIntegrations/Client/MappedRequest.h>

#include <Platform/JSON/JSONRecordDescription.h>

#include <utility>

namespace zelto {

// Everything of these kinds.
struct TodoistReadRequest {
    std::string sync_token = "*";
    std::vector<std::string> resource_types = {"projects", "user"};
};

// Commands, and which kinds of what they make come back.
struct TodoistWriteRequest {
    std::vector<std::string> resource_types = {"notes"};
    std::vector<TodoistCommand> commands;
};

ZELTO_JSON_CODED(TodoistReadRequest);
ZELTO_JSON_CODED(TodoistWriteRequest);
ZELTO_JSON_RECORD(TodoistReadRequest, sync_token, resource_types);
ZELTO_JSON_RECORD(TodoistWriteRequest, resource_types, commands);

namespace {

constexpr auto syncPath = "/sync";
constexpr auto uploadsPath = "/uploads";

template <class T> ServiceRequest syncRequest(const T& body) {
    return ServiceRequest("POST", TodoistClient::apiBaseURL, syncPath)
        .header("Content-Type", "application/json")
        .json(body);
}

ServiceResult<JSONValue> objectOf(JSONValue response) {
    if (!response.asObject()) {
        return failure(ServiceClientError::dataParseError);
    }
    return response;
}

} // namespace

void TodoistClient::getAllData(ServiceCompletion<TodoistFetchResponse> completion) {
    performRequest<TodoistFetchResponse>(*this, syncRequest(TodoistReadRequest()), std::move(completion));
}

void TodoistClient::addTask(const std::vector<TodoistCommand>& commands,
                            ServiceCompletion<TodoistUploadResponse> completion) {
    performRequest<TodoistUploadResponse>(*this, syncRequest(TodoistWriteRequest{.commands = commands}),
                                          std::move(completion));
}

void TodoistClient::uploadAttachment(const std::string& fileName, const std::filesystem::path& path,
                                     ServiceCompletion<JSONValue> completion) {
    performMapped<JSONValue>(
        *this,
        ServiceRequest("POST", apiBaseURL, uploadsPath)
            .upload(path, {{"file_name", fileName}}, "file", "uploadAttachment(fileName:path:completion:)"),
        objectOf, std::move(completion));
}

} // namespace zelto
