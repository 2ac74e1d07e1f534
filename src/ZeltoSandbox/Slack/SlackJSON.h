#pragma once

#include <Platform/JSON/JSONValue.h>
#include <ZeltoSandbox/Slack/SlackStore.h>

#include <functional>

namespace zelto::sandbox {

// Slack's JSON of what the sandbox has.

// The response of auth.test.
JSONObject slackSelfJSON();
JSONObject slackUserJSON(const SlackUserRecord& user);
JSONObject slackConversationJSON(const SlackConversationRecord& conversation, bool isArchived);
JSONObject slackMessageJSON(const SlackMessageRecord& message);

// "1503435956.000247"
std::string slackTimeText(std::int64_t microseconds);

// What the page of the sandbox shows: the demo conversations and those with messages; of the others, how many
// there are.
JSONObject slackState(SlackStore& store, std::size_t additionalUsers, std::size_t additionalChannels,
                      const std::function<bool(const SlackConversationRecord&)>& isArchived);

} // namespace zelto::sandbox
