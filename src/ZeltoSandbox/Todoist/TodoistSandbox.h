#pragma once

#include <ZeltoSandbox/OAuth/SecretTable.h>
#include <ZeltoSandbox/SandboxService.h>
#include <ZeltoSandbox/Todoist/TodoistCommands.h>
#include <ZeltoSandbox/Todoist/TodoistError.h>
#include <ZeltoSandbox/Todoist/TodoistStore.h>

#include <memory>

namespace zelto::sandbox {

// The part of Todoist's API, version 1, that creates tasks: its sync and uploads endpoints.
class TodoistSandbox final : public SandboxService {
  public:
    static std::unique_ptr<SandboxService> make(SandboxContext& context, const SandboxServiceRow& row);

    explicit TodoistSandbox(SandboxContext& context);

    SandboxResponse respond(const SandboxRequest& request) override;
    SandboxResponse failure(int status) const override;
    JSONObject state() const override;
    void reset() override;

  private:
    // What the account holds, which a reset begins anew.
    struct Account {
        TodoistStore store;
        TodoistCommands commands{store};
    };

    static const SandboxEndpoint<TodoistSandbox> endpoints[];

    SandboxResponse sync(const SandboxRequest& request);
    SandboxResponse upload(const SandboxRequest& request);

    bool mayWrite(const SandboxRequest& request);
    // What is wrong with a sync request, apart from its commands.
    std::optional<TodoistError> bodyProblem(const JSONValue& body);
    // The revision that the client has: 0 for all, nullopt for a token that is unknown.
    std::optional<std::uint64_t> knownRevision(const JSONValue& body);
    void addResources(JSONObject& response, const JSONValue& body);

    SandboxContext& context_;
    std::unique_ptr<Account> account_;
    SecretTable<std::uint64_t> syncTokens_; // revisions
};

} // namespace zelto::sandbox
