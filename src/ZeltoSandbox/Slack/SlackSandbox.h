#pragma once

#include <ZeltoSandbox/SandboxService.h>
#include <ZeltoSandbox/Slack/SlackArguments.h>
#include <ZeltoSandbox/Slack/SlackScopes.h>
#include <ZeltoSandbox/Slack/SlackStore.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zelto::sandbox {

// The methods of Slack's Web API that list users and conversations and post messages. The account is that of
// a user, in whose name messages are posted.
class SlackSandbox final : public SandboxService {
  public:
    static std::unique_ptr<SandboxService> make(SandboxContext& context, const SandboxServiceRow& row);

    explicit SlackSandbox(SandboxContext& context);

    SandboxResponse respond(const SandboxRequest& request) override;
    SandboxResponse failure(int status) const override;
    JSONObject state() const override;
    void reset() override;

  private:
    using Outcome = Result<JSONObject, SlackError>;

    // What Slack remarks about a call that it may nevertheless have accepted.
    struct Remarks {
        std::vector<std::string> warnings; // "message_truncated"
        std::vector<std::string> messages; // for people
    };

    // A method's call, and what its token is for.
    struct Call {
        const SlackArguments& arguments;
        const SlackScopes& scopes;
        Remarks& remarks;
    };

    struct Method {
        std::string_view name;
        Outcome (SlackSandbox::*handler)(const Call& call);
        std::string_view scope = {}; // that every call needs
        bool takesJSON = false;
    };

    static const Method methods[];

    static void addRemarks(JSONObject& json, const Remarks& remarks);

    Outcome outcome(const SandboxRequest& request, const Method& method, Remarks& remarks);
    Result<SlackScopes, SlackError> authorised(const SandboxRequest& request);

    Outcome testAuthorisation(const Call& call);
    Outcome listUsers(const Call& call);
    Outcome listConversations(const Call& call);
    Outcome postMessage(const Call& call);

    // What a message to that channel or user goes to; opens a direct message where there is none.
    Result<const SlackConversationRecord*, SlackError> destination(const std::string& channel);
    bool isArchived(const SlackConversationRecord& conversation) const;

    SandboxContext& context_;
    std::unique_ptr<SlackStore> store_;
};

} // namespace zelto::sandbox
