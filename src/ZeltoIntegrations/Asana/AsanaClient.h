#pragma once

#include <ZeltoIntegrations/Asana/AsanaRecords.h>
#include <ZeltoIntegrations/Asana/AsanaResponses.h>
#include <ZeltoIntegrations/Client/Paging.h>
#include <ZeltoIntegrations/Client/ServiceClient.h>
#include <ZeltoIntegrations/Client/ServiceRequest.h>

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

// Asana's REST API, version 1.0. Always made with std::make_shared.
class AsanaClient final : public ServiceClient {
  public:
    using ServiceClient::ServiceClient;

    // https://developers.asana.com/reference/getuser
    void fetchUser(ServiceCompletion<AsanaSingleUserResponse> completion);

    // https://developers.asana.com/reference/getworkspaces
    void fetchWorkspaces(ServiceCompletion<AsanaWorkspacesResponse> completion);

    // https://developers.asana.com/reference/getusersforworkspace
    void fetchUsers(const std::string& forWorkspace, ServiceCompletion<AsanaUsersResponse> completion);

    // All pages, with archived projects in the service's order.
    // https://developers.asana.com/reference/getprojectsforworkspace
    void fetchProjects(const std::string& forWorkspace,
                       ServiceCompletion<std::vector<AsanaProject>> completion);

    // https://developers.asana.com/reference/createtask
    void createTask(const std::optional<std::string>& withTitle, const std::optional<std::string>& notes,
                    const std::string& toProject, const std::string& inWorkspace,
                    const std::string& assignToUser, ServiceCompletion<AsanaTask> completion);

    // Sends the file as it is read. https://developers.asana.com/reference/createattachmentforobject
    void uploadFile(const std::filesystem::path& fromPath, const std::string& forTaskId,
                    ServiceCompletion<void> completion);

    // The user, and each workspace with its users and projects, by one request after the other.
    void getAllData(ServiceCompletion<AsanaFullData> completion);

    static constexpr std::string_view apiBaseURL = "https://app.asana.com/api/1.0/";

  private:
    static ServiceRequest createUrlRequest(std::string_view path, std::string httpMethod);

    void fetchProjectsPage(const std::string& workspace, const std::optional<std::string>& offset,
                           ServiceCompletion<Page<AsanaProject>> completion);
    void loadWorkspaces(AsanaUser user, ServiceCompletion<AsanaFullData> completion);
    void fillAll(AsanaUser user, std::vector<AsanaWorkspace> workspaces,
                 ServiceCompletion<AsanaFullData> completion);
    void fill(AsanaWorkspace& workspace, ServiceCompletion<void> completion);
    void fillProjects(AsanaWorkspace& workspace, ServiceCompletion<void> completion);
};

} // namespace zelto
