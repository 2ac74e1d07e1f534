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
    // The task that the form describes; the text of an error is Asana's message.
    Result<AsanaTaskRecord, std::string> taskOf(const SandboxRequest& request) const;
    // The workspace that the form names, or that of its first project.
    Result<const AsanaWorkspaceRecord*, std::string>
    workspaceOf(const SandboxRequest& request, const std::vector<std::string>& projects) const;

    // The page of the records that the query's `limit` and `offset` select.
    SandboxResponse list(const SandboxRequest& request, const std::vector<JSONObject>& records);
    // Where the query's offset begins.
    Result<std::size_t, std::string> positionOf(const SandboxRequest& request);
    JSONValue nextPage(const SandboxRequest& request, std::size_t position);

    SandboxContext& context_;
    std::unique_ptr<AsanaStore> store_;
    SecretTable<NextPage> nextPages_;
};

} // namespace zelto::sandbox
