#pragma once

#include <ZeltoSandbox/Meetings/MeetingStore.h>
#include <ZeltoSandbox/SandboxService.h>
#include <ZeltoSandbox/Zoom/ZoomError.h>

#include <deque>
#include <memory>
#include <optional>

namespace zelto::sandbox {

// The part of the Zoom API, version 2, that creates, changes and deletes meetings, and the pages to join
// them.
class ZoomSandbox final : public SandboxService {
  public:
    static std::unique_ptr<SandboxService> make(SandboxContext& context, const SandboxServiceRow& row);

    explicit ZoomSandbox(SandboxContext& context);

    SandboxResponse respond(const SandboxRequest& request) override;
    SandboxResponse failure(int status) const override;
    JSONObject state() const override;
    void reset() override;

  private:
    static const SandboxEndpoint<ZoomSandbox> endpoints[];

    SandboxResponse create(const SandboxRequest& request);
    SandboxResponse update(const SandboxRequest& request);
    SandboxResponse remove(const SandboxRequest& request);
    Result<MeetingRecord*, ZoomError> meetingOf(const SandboxRequest& request);
    // nullopt if one more meeting may be created or changed.
    std::optional<SandboxResponse> dailyRefusal();
    void countChange();

    SandboxContext& context_;
    std::unique_ptr<MeetingStore> store_;
    std::deque<Date> changes_; // of the last day, as many as the daily limit can be
};

} // namespace zelto::sandbox
