#include <ZeltoSandbox/Slack/SlackStore.h>

#include <Platform/NeverDestroyed.h>

#include <algorithm>
#include <cmath>

namespace zelto::sandbox {

namespace {

using enum SlackConversationKind;

constexpr std::string_view demoCorrespondent = "U0SANDBOX02";

const auto& demoUsers = neverDestroyed(std::vector<SlackUserRecord>{
    {.id = "USLACKBOT", .name = "slackbot", .realName = "Slackbot", .displayName = "Slackbot"},
    {.id = "U0SANDBOX01", .name = "robin", .realName = "Robin Sandbox", .displayName = "Robin"},
    {.id = "U0SANDBOX02", .name = "zoe", .realName = "Zoë Müller-Ångström", .displayName = "Zoë ✨"},
    {.id = "U0SANDBOX03", .name = "haruto", .realName = "佐藤 陽翔", .displayName = "陽翔"},
    {.id = "U0SANDBOX04", .name = "layla", .realName = "ليلى حداد", .displayName = ""},
    {.id = "U0SANDBOX05", .name = "sam", .realName = "Sam & Sons <Guest>", .displayName = std::nullopt},
    {.id = "U0SANDBOX06",
     .name = "old.colleague",
     .realName = "Former Colleague",
     .displayName = "Former",
     .isDeleted = true},
    {.id = "U0SANDBOX07",
     .name = "lighthouse",
     .realName = "Lighthouse Bot",
     .displayName = "",
     .isBot = true},
});

const auto& demoChannels = neverDestroyed(std::vector<SlackConversationRecord>{
    {.id = "C0SANDBOX01", .name = "general"},
    {.id = "C0SANDBOX02", .name = "büro-münchen"},
    {.id = "C0SANDBOX03", .name = "図書館"},
    {.id = "C0SANDBOX04", .name = "leadership", .kind = privateChannel},
    {.id = "C0SANDBOX05", .name = "old-project", .isArchived = true},
    {.id = "C0SANDBOX06", .name = "announcements", .isMember = false},
    {.id = "C0SANDBOX07", .name = "mpdm-robin--zoe--haruto-1", .kind = groupMessage},
    {.id = "C0SANDBOX08", .name = "board-only", .kind = privateChannel, .isMember = false},
});

// "U1000000017"
std::string additionalID(char kind, std::size_t number) {
    constexpr std::size_t first = 1'000'000'000;
    return kind + std::to_string(first + number);
}

SlackUserRecord additionalUser(std::size_t number) {
    const auto text = std::to_string(number);
    return {.id = additionalID('U', number),
            .name = "additional." + text,
            .realName = "Additional user " + text,
            .displayName = ""};
}

SlackConversationRecord additionalChannel(std::size_t number) {
    return {.id = additionalID('C', number), .name = "additional-" + std::to_string(number)};
}

// The demo records and as many others.
template <class Record>
const std::vector<Record>& filled(std::vector<Record>& records, const std::vector<Record>& demo,
                                  std::size_t additional, Record (*make)(std::size_t)) {
    if (records.size() != demo.size() + additional) {
        records = demo;
        for (std::size_t i = 1; i <= additional; ++i) {
            records.push_back(make(i));
        }
    }
    return records;
}

template <class Records, class Key> auto* found(const Records& records, std::string_view wanted, Key key) {
    const auto place = std::ranges::find(records, wanted, key);
    return place == records.end() ? nullptr : &*place;
}

} // namespace

SlackStore::SlackStore() {
    directMessageWith(demoCorrespondent);
}

const std::vector<SlackUserRecord>& SlackStore::users(std::size_t additional) {
    return filled(users_, demoUsers, additional, additionalUser);
}

const std::vector<SlackConversationRecord>& SlackStore::channels(std::size_t additional) {
    return filled(channels_, demoChannels, additional, additionalChannel);
}

const SlackUserRecord* SlackStore::findUser(std::string_view id, std::size_t additional) {
    return found(users(additional), id, &SlackUserRecord::id);
}

const SlackConversationRecord* SlackStore::findChannel(std::string_view name, std::size_t additional) {
    const auto& all = channels(additional);
    if (const auto* channel = found(all, name, &SlackConversationRecord::id)) {
        return channel;
    }
    return found(all, name.substr(name.starts_with('#') ? 1 : 0), &SlackConversationRecord::name);
}

const SlackConversationRecord* SlackStore::findDirectMessage(std::string_view id) const {
    return found(directMessages_, id, &SlackConversationRecord::id);
}

const SlackConversationRecord& SlackStore::directMessageWith(std::string_view userID) {
    if (const auto* opened = found(directMessages_, userID, &SlackConversationRecord::userID)) {
        return *opened;
    }
    return directMessages_.emplace_back(SlackConversationRecord{.id = "D" + std::string(userID.substr(1)),
                                                                .name = {},
                                                                .kind = directMessage,
                                                                .userID = std::string(userID)});
}

bool SlackStore::hasSpace(std::uint64_t size) const {
    return messages_.size() < maximumMessageCount && content_ + size <= maximumContent;
}

const SlackMessageRecord& SlackStore::addMessage(SlackMessageRecord message) {
    constexpr double microseconds = 1e6;
    const auto now = static_cast<std::int64_t>(std::floor(Date::now().unixSeconds() * microseconds));
    lastTime_ = std::max(now, lastTime_ + 1);
    message.time = lastTime_;
    content_ += message.text.size();
    return messages_.emplace_back(std::move(message));
}

std::size_t slackDemoUserCount() {
    return demoUsers.size();
}

std::size_t slackDemoChannelCount() {
    return demoChannels.size();
}

} // namespace zelto::sandbox
