#pragma once

#include <ZeltoSandbox/Meetings/MeetingStore.h>
#include <ZeltoSandbox/SandboxService.h>

#include <memory>

namespace zelto::sandbox {

// The part of the GoTo Meeting API that creates, changes and deletes meetings, and the pages to join them.
class GoToSandbox final : public SandboxService {
  public:
    static std::unique_ptr<SandboxService> make(SandboxContext& context, const SandboxServiceRow& row);

    explicit GoToSandbox(SandboxContext& context);

    SandboxResponse respond(const SandboxRequest& request) override;
    SandboxResponse failure(int status) const override;
    JSONObject state() const override;
    void reset() override;

  private:
    static const SandboxEndpoint<GoToSandbox> endpoints[];

    SandboxResponse create(const SandboxRequest& request);
    SandboxResponse update(const SandboxRequest& request);
    SandboxResponse remove(const SandboxRequest& request);

    SandboxContext& context_;
    std::unique_ptr<MeetingStore> store_;
};

} // namespace zelto::sandbox
