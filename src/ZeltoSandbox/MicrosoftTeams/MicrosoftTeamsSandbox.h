#pragma once

#include <ZeltoSandbox/Meetings/MeetingStore.h>
#include <ZeltoSandbox/SandboxService.h>

#include <memory>

namespace zelto::sandbox {

// The part of the Microsoft Graph API, version 1.0, that creates, changes and deletes online meetings and
// lists the user's licences, and the pages to join the meetings.
class MicrosoftTeamsSandbox final : public SandboxService {
  public:
    static std::unique_ptr<SandboxService> make(SandboxContext& context, const SandboxServiceRow& row);

    explicit MicrosoftTeamsSandbox(SandboxContext& context);

    SandboxResponse respond(const SandboxRequest& request) override;
    SandboxResponse failure(int status) const override;
    JSONObject state() const override;
    void reset() override;

  private:
    static const SandboxEndpoint<MicrosoftTeamsSandbox> endpoints[];

    SandboxResponse licenses(const SandboxRequest& request);
    SandboxResponse create(const SandboxRequest& request);
    SandboxResponse update(const SandboxRequest& request);
    SandboxResponse remove(const SandboxRequest& request);

    SandboxContext& context_;
    std::unique_ptr<MeetingStore> store_;
};

} // namespace zelto::sandbox
