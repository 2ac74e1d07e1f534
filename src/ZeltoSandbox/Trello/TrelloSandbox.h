#pragma once

#include <ZeltoSandbox/SandboxService.h>
#include <ZeltoSandbox/Trello/TrelloStore.h>

#include <memory>

namespace zelto::sandbox {

// Trello's REST API, version 1, as far as cards are made by it.
class TrelloSandbox final : public SandboxService {
  public:
    static std::unique_ptr<SandboxService> make(SandboxWorld& world, const SandboxServiceRow& row);

    explicit TrelloSandbox(SandboxWorld& world) : world_(world) {}

    SandboxAnswer answer(const SandboxRequest& request) override;
    SandboxAnswer failure(int status) const override;
    JSONObject state() const override;
    void reset() override;

  private:
    static const SandboxEndpoint<TrelloSandbox> endpoints[];

    std::optional<SandboxAnswer> refusalOf(const SandboxRequest& request, std::string_view scope);

    SandboxAnswer member(const SandboxRequest& request);
    SandboxAnswer memberBoards(const SandboxRequest& request);
    SandboxAnswer listCards(const SandboxRequest& request);
    SandboxAnswer card(const SandboxRequest& request);
    SandboxAnswer addCard(const SandboxRequest& request);
    SandboxAnswer addAttachment(const SandboxRequest& request);
    SandboxAnswer addFile(const SandboxRequest& request, const TrelloPlace& place, const FormPart& file);

    std::uint64_t attachmentLimit() const;

    SandboxWorld& world_;
    TrelloStore store_;
};

} // namespace zelto::sandbox
