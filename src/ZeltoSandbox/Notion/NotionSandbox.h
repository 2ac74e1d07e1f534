#pragma once

#include <ZeltoSandbox/Notion/NotionCheck.h>
#include <ZeltoSandbox/Notion/NotionStore.h>
#include <ZeltoSandbox/SandboxService.h>

#include <memory>

namespace zelto::sandbox {

// The part of Notion's API, version 2022-06-28, that finds databases and creates pages in them.
class NotionSandbox final : public SandboxService {
  public:
    static std::unique_ptr<SandboxService> make(SandboxContext& context, const SandboxServiceRow& row);

    explicit NotionSandbox(SandboxContext& context);

    SandboxResponse respond(const SandboxRequest& request) override;
    SandboxResponse failure(int status) const override;
    JSONObject state() const override;
    void reset() override;

  private:
    static const SandboxEndpoint<NotionSandbox> endpoints[];

    SandboxResponse me(const SandboxRequest& request);
    SandboxResponse search(const SandboxRequest& request);
    SandboxResponse addPage(const SandboxRequest& request);

    // What the connection may see, the latest edited first.
    std::vector<JSONObject> objects() const;
    const std::vector<NotionDatabaseRecord>& databases() const;
    // The one that the parent names; null with a problem.
    const NotionDatabaseRecord* parentOf(NotionCheck& check, const NotionField& parent) const;

    SandboxContext& context_;
    std::unique_ptr<NotionStore> store_;
};

} // namespace zelto::sandbox
