#pragma once

#include <Platform/Date.h>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto::sandbox {

struct SlackUserRecord {
    std::string id;
    std::string name; // that the user signs in with
    std::string realName;
    std::optional<std::string> displayName; // empty where the user has not chosen one
    bool isDeleted = false;
    bool isBot = false;
};

enum class SlackConversationKind { publicChannel, privateChannel, groupMessage, directMessage };

struct SlackConversationRecord {
    std::string id;
    std::string name; // empty for a direct message
    SlackConversationKind kind = SlackConversationKind::publicChannel;
    std::string userID = {}; // the other one of a direct message
    bool isMember = true;
    bool isArchived = false;
};

struct SlackMessageRecord {
    std::int64_t time = 0; // microseconds of Unix time; no two messages have the same
    std::string conversationID;
    std::string text;                        // as Slack keeps it
    std::optional<std::size_t> cutFrom = {}; // code points that were sent, where Slack has cut the text
};

// What a Slack workspace has: demo users and conversations with the same identifiers in every sandbox, so
// that what a client has stored of them stays valid, others that are to be there beside, and the messages
// that were posted.
class SlackStore {
  public:
    static constexpr std::string_view teamID = "T0SANDBOX01";
    static constexpr std::string_view teamName = "Sandbox";
    static constexpr std::string_view selfID = "U0SANDBOX01"; // the account's user
    static constexpr std::size_t maximumMessageCount = 20'000;
    static constexpr std::uint64_t maximumContent = std::uint64_t{32} << 20; // bytes of all messages

    SlackStore();

    // `additional` of them beside the demo ones.
    const std::vector<SlackUserRecord>& users(std::size_t additional);
    // Without direct messages.
    const std::vector<SlackConversationRecord>& channels(std::size_t additional);

    // Those that have been opened.
    const std::deque<SlackConversationRecord>& directMessages() const { return directMessages_; }

    // Null for none.
    const SlackUserRecord* findUser(std::string_view id, std::size_t additional);
    // A channel by its identifier or its name, with or without "#".
    const SlackConversationRecord* findChannel(std::string_view name, std::size_t additional);
    const SlackConversationRecord* findDirectMessage(std::string_view id) const;
    // With a user of the workspace; opens it where it is not.
    const SlackConversationRecord& directMessageWith(std::string_view userID);

    // The oldest first.
    const std::deque<SlackMessageRecord>& messages() const { return messages_; }

    bool hasSpace(std::uint64_t size) const;
    // Gives the message its time.
    const SlackMessageRecord& addMessage(SlackMessageRecord message);

  private:
    std::vector<SlackUserRecord> users_;
    std::vector<SlackConversationRecord> channels_;
    std::deque<SlackConversationRecord> directMessages_;
    std::deque<SlackMessageRecord> messages_;
    std::uint64_t content_ = 0; // bytes
    std::int64_t lastTime_ = 0;
};

// How many users and channels there are without additional ones.
std::size_t slackDemoUserCount();
std::size_t slackDemoChannelCount();

} // namespace zelto::sandbox
