#pragma once

#include <ZeltoSandbox/Hubspot/HubspotObjects.h>
#include <ZeltoSandbox/SandboxService.h>

#include <deque>
#include <memory>

namespace zelto::sandbox {

// The part of HubSpot's API, version 3, that finds and creates contacts, and creates e-mails, notes and
// meetings that are associated with them.
class HubspotSandbox final : public SandboxService {
  public:
    static std::unique_ptr<SandboxService> make(SandboxContext& context, const SandboxServiceRow& row);

    explicit HubspotSandbox(SandboxContext& context);

    SandboxResponse respond(const SandboxRequest& request) override;
    SandboxResponse failure(int status) const override;
    JSONObject state() const override;
    void reset() override;

  private:
    static const SandboxEndpoint<HubspotSandbox> endpoints[];

    SandboxResponse token(const SandboxRequest& request);
    SandboxResponse stageList(const SandboxRequest& request);
    SandboxResponse contact(const SandboxRequest& request);
    SandboxResponse addContact(const SandboxRequest& request);
    SandboxResponse addEmail(const SandboxRequest& request);
    SandboxResponse addNote(const SandboxRequest& request);
    SandboxResponse addMeeting(const SandboxRequest& request);

    // The refusal of a token that is unknown or has expired, or of a request without one.
    SandboxResponse refusedToken(const SandboxRequest& request, const std::string& reason);
    // Whether the request comes within the published limit, which counts it then.
    bool isWithinRate();
    SandboxResponse addActivity(HubspotActivityType type, const SandboxRequest& request);
    // Its path in the file store; empty if there is no space for it.
    std::string storedHTML(const std::string& html);
    const std::vector<HubspotStageRecord>& stages() const;

    std::size_t additionalContacts() const { return context_.settings.hubspot.additionalContacts; }

    SandboxContext& context_;
    std::unique_ptr<HubspotStore> store_;
    std::deque<Date> recent_; // requests of the last ten seconds
};

} // namespace zelto::sandbox
