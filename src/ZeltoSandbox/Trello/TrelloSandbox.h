#pragma once

#include <ZeltoSandbox/SandboxService.h>
#include <ZeltoSandbox/Trello/TrelloStore.h>

#include <memory>

namespace zelto::sandbox {

// The part of Trello's REST API, version 1, that creates cards.
class TrelloSandbox final : public SandboxService {
  public:
    static std::unique_ptr<SandboxService> make(SandboxContext& context, const SandboxServiceRow& row);

    explicit TrelloSandbox(SandboxContext& context) : context_(context) {}

    SandboxResponse respond(const SandboxRequest& request) override;
    SandboxResponse failure(int status) const override;
    JSONObject state() const override;
    void reset() override;

  private:
    static const SandboxEndpoint<TrelloSandbox> endpoints[];

    std::optional<SandboxResponse> refusalOf(const SandboxRequest& request, std::string_view scope);

    SandboxResponse member(const SandboxRequest& request);
    SandboxResponse memberBoards(const SandboxRequest& request);
    SandboxResponse listCards(const SandboxRequest& request);
    SandboxResponse card(const SandboxRequest& request);
    SandboxResponse addCard(const SandboxRequest& request);
    SandboxResponse addAttachment(const SandboxRequest& request);
    SandboxResponse addFile(const SandboxRequest& request, const TrelloPlace& place, const FormPart& file);

    std::uint64_t attachmentLimit() const;

    SandboxContext& context_;
    TrelloStore store_;
};

} // namespace zelto::sandbox
