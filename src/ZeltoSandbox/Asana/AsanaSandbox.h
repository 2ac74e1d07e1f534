#pragma once

#include <ZeltoSandbox/Asana/AsanaStore.h>
#include <ZeltoSandbox/OAuth/SecretTable.h>
#include <ZeltoSandbox/SandboxService.h>

#include <memory>

namespace zelto::sandbox {

// The part of Asana's REST API, version 1.0, that creates tasks.
class AsanaSandbox final : public SandboxService {
  public:
    static std::unique_ptr<SandboxService> make(SandboxContext& context, const SandboxServiceRow& row);

    explicit AsanaSandbox(SandboxContext& context);

    SandboxResponse respond(const SandboxRequest& request) override;
    SandboxResponse failure(int status) const override;
    JSONObject state() const override;
    void reset() override;

  private:
    // Where the next page of a list begins.
    struct NextPage {
        std::string path;
        std::size_t position = 0;
    };

    static const SandboxEndpoint<AsanaSandbox> endpoints[];

    std::optional<SandboxResponse> accessRefusal(const SandboxRequest& request, std::string_view scope);

    SandboxResponse me(const SandboxRequest& request);
    SandboxResponse workspaces(const SandboxRequest& request);
    SandboxResponse workspaceUsers(const SandboxRequest& request);
    SandboxResponse workspaceProjects(const SandboxRequest& request);
    SandboxResponse task(const SandboxRequest& request);
    SandboxResponse addTask(const SandboxRequest& request);
    SandboxResponse taskAttachments(const SandboxRequest& request);
    SandboxResponse addAttachment(const SandboxRequest& request);

    Result<const AsanaWorkspaceRecord*, SandboxResponse> workspaceAt(const SandboxRequest& request) const;
    Result<AsanaTaskRecord*, SandboxResponse> taskAt(const SandboxRequest& request);
    // The workspace, the projects and the assignee that the form names.
    Result<AsanaTaskRecord, SandboxResponse> taskOf(const SandboxRequest& request) const;

    // The records from `offset` on, `limit` of them, as the query says, and where the next page begins.
    SandboxResponse list(const SandboxRequest& request, const std::vector<JSONObject>& records);

    SandboxContext& context_;
    std::unique_ptr<AsanaStore> store_;
    SecretTable<NextPage> nextPages_;
};

} // namespace zelto::sandbox
