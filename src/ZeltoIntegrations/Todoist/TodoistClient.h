#pragma once

#include <ZeltoIntegrations/Client/ServiceClient.h>
#include <ZeltoIntegrations/Todoist/TodoistResponses.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

// Todoist's API, version 1: https://developer.todoist.com/api/v1/
class TodoistClient final : public ServiceClient {
  public:
    using ServiceClient::ServiceClient;

    // The user and all projects.
    // https://developer.todoist.com/api/v1/#tag/Sync/Overview/Read-resources
    void getAllData(ServiceCompletion<TodoistFetchResponse> completion);

    // Carries out the commands in their order. A response has a status of its own for each of them, which may
    // be an error.
    // https://developer.todoist.com/api/v1/#tag/Sync/Overview/Write-resources
    void addTask(const std::vector<TodoistCommand>& commands,
                 ServiceCompletion<TodoistUploadResponse> completion);

    // Completes with the response as it is, an object, which is what a comment refers to the file by. Sends
    // the file as it is read; nothing of it is held in memory.
    // https://developer.todoist.com/api/v1/#tag/Uploads
    void uploadAttachment(const std::string& fileName, const std::filesystem::path& path,
                          ServiceCompletion<JSONValue> completion);

    static constexpr std::string_view apiBaseURL = "https://api.todoist.com/api/v1";
};

} // namespace zelto
