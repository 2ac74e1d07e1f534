#pragma once

#include <ZeltoSandbox/OneNote/OneNoteStore.h>
#include <ZeltoSandbox/SandboxService.h>

#include <memory>

namespace zelto::sandbox {

// The part of the Microsoft Graph API, version 1.0, that creates OneNote pages.
class OneNoteSandbox final : public SandboxService {
  public:
    static std::unique_ptr<SandboxService> make(SandboxContext& context, const SandboxServiceRow& row);

    explicit OneNoteSandbox(SandboxContext& context);

    SandboxResponse respond(const SandboxRequest& request) override;
    SandboxResponse failure(int status) const override;
    JSONObject state() const override;
    void reset() override;

  private:
    static const SandboxEndpoint<OneNoteSandbox> endpoints[];

    SandboxResponse me(const SandboxRequest& request);
    SandboxResponse notebooks(const SandboxRequest& request);
    SandboxResponse sections(const SandboxRequest& request);
    SandboxResponse addPage(const SandboxRequest& request);

    SandboxContext& context_;
    std::unique_ptr<OneNoteStore> store_;
};

} // namespace zelto::sandbox
