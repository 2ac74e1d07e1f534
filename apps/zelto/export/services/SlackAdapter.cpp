#include "export/services/SlackAdapter.h"

#include <Platform/JSON/JSONValue.h>
#include <Platform/Text.h>

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>

namespace zelto::cli {

namespace {

using Remedy = RefusalAdvice::Remedy;

// What is longer is cut by the service. https://docs.slack.dev/reference/methods/chat.postMessage
constexpr std::size_t maximumText = 40'000; // code points

constexpr std::string_view channelKind = "channel";
constexpr std::string_view userKind = "user";

// The service's name for a conversation of a few people, which it makes of theirs.
bool isGroupMessage(const SlackChannel& channel) {
    return channel.name.starts_with("mpdm-");
}

std::string remarkOn(const SlackChannel& channel) {
    std::string remark = isGroupMessage(channel) ? "group message" : channel.isPrivate ? "private" : "";
    if (channel.isMember == false) {
        remark += remark.empty() ? "not joined" : ", not joined";
    }
    return remark;
}

TargetNode nodeOf(const SlackChannel& channel) {
    const bool isNamedAlone = channel.name.empty() || isGroupMessage(channel);
    return {.id = channel.id,
            .name = isNamedAlone ? channel.name : "#" + channel.name,
            .aliases = {channel.name},
            .remark = remarkOn(channel),
            .kind = channelKind};
}

TargetNode nodeOf(const SlackUser& user) {
    TargetNode node{.id = user.id,
                    .name = user.name.empty() ? "" : "@" + user.name,
                    .aliases = {user.name},
                    .remark = {},
                    .kind = userKind};
    // An empty one stands for none.
    if (const auto name = user.displayName.value_or(""); !name.empty() && name != user.name) {
        node.aliases.insert(node.aliases.end(), {name, "@" + name});
        node.remark = name;
    }
    return node;
}

struct MeaningOfWord {
    std::string_view word;
    std::string_view reason;
    Remedy remedy;
};

constexpr std::string_view signInRefused = "it does not accept the account's sign-in any more";
constexpr std::string_view postingRestricted = "the workspace does not let this account post there";
constexpr std::string_view ownError = "it had an error of its own; try again later";
constexpr std::string_view tooManyRequests = "it had too many requests; wait some minutes";

// https://docs.slack.dev/reference/methods/chat.postMessage#errors
constexpr MeaningOfWord meanings[] = {
    {"not_in_channel", "the account is no member of the channel; join it in Slack, then export again",
     Remedy::again},
    {"channel_not_found",
     "it has no such channel or person, or none that this account may see; choose another one",
     Remedy::otherTarget},
    {"user_not_found", "it has no such person any more; choose another one", Remedy::otherTarget},
    {"user_disabled", "the person's account there is closed; choose another one", Remedy::otherTarget},
    {"cannot_dm_bot", "nobody can write to a bot like that; choose another one", Remedy::otherTarget},
    {"messages_tab_disabled", "that app takes no messages; choose another one", Remedy::otherTarget},
    {"is_archived", "the channel is archived; choose another one", Remedy::otherTarget},
    {"restricted_action", postingRestricted, Remedy::otherTarget},
    {"restricted_action_read_only_channel", postingRestricted, Remedy::otherTarget},
    {"restricted_action_non_threadable_channel", postingRestricted, Remedy::otherTarget},
    {"restricted_action_thread_only_channel", postingRestricted, Remedy::otherTarget},
    {"missing_scope", "the account's sign-in lacks a permission that this needs", Remedy::reconnect},
    {"no_permission", "the account's sign-in lacks a permission that this needs", Remedy::reconnect},
    {"invalid_auth", signInRefused, Remedy::reconnect},
    {"not_authed", signInRefused, Remedy::reconnect},
    {"token_revoked", signInRefused, Remedy::reconnect},
    {"token_expired", signInRefused, Remedy::reconnect},
    {"account_inactive", "the account there is closed, or its workspace is gone", Remedy::reconnect},
    {"no_text", "the message has no text", Remedy::otherType},
    {"msg_too_long", "the message is too long", Remedy::otherType},
    {"ratelimited", tooManyRequests, Remedy::log},
    {"rate_limited", tooManyRequests, Remedy::log},
    {"message_limit_exceeded", tooManyRequests, Remedy::log},
    {"internal_error", ownError, Remedy::log},
    {"fatal_error", ownError, Remedy::log},
    {"service_unavailable", ownError, Remedy::log},
    {"team_added_to_org", "its workspace is being moved; try again later", Remedy::log},
};

// Of the request that posts the message, the text; no value for another request.
std::optional<std::string> postedText(const SentRequest& request) {
    const auto body = JSONValue::parse(request.text.value_or(""));
    const auto* text = body ? body->find("text") : nullptr;
    const auto* string = text ? text->asString() : nullptr;
    return string ? std::optional(*string) : std::nullopt;
}

// A text of a member of an object; empty where it is missing.
std::string textAt(const JSONValue& object, std::string_view member, std::string_view key) {
    const auto* inner = object.find(member);
    const auto* value = inner ? inner->find(key) : nullptr;
    const auto* text = value ? value->asString() : nullptr;
    return text ? *text : std::string();
}

} // namespace

std::vector<UnusedOption> SlackAdapter::unusedOptions(IntegrationExportContentType /*type*/) {
    return {{"--title", "a message of Slack has no title"}};
}

TargetTree SlackAdapter::targetTree(const SlackFullData& data) {
    // A message must not appear where nobody has chosen to post it.
    TargetTree tree{.levels = {"channel or person"},
                    .nodes = {},
                    .kinds = {channelKind, userKind},
                    .suggestsFirst = false};
    const auto makeNode = [](const auto& each) { return nodeOf(each); };
    std::ranges::transform(data.channels, std::back_inserter(tree.nodes), makeNode);
    std::ranges::transform(data.users, std::back_inserter(tree.nodes), makeNode);
    return tree;
}

void SlackAdapter::setTarget(SlackExportConfiguration& configuration, const SlackFullData& data,
                             const TargetPath& path) {
    const auto index = path.at(0);
    const auto count = data.channels.size();
    configuration.saveTo = index < count ? SlackSaveToInfo::to(data.channels.at(index))
                                         : SlackSaveToInfo::to(data.users.at(index - count));
}

std::string SlackAdapter::targetName(const SlackExportConfiguration& configuration) {
    return configuration.saveTo ? configuration.saveTo->identifier() : std::string();
}

std::string SlackAdapter::targetIdentifier(const JSONValue& saveTo) {
    return textAt(saveTo, channelKind, "channelId") + textAt(saveTo, userKind, "userId");
}

std::optional<SlackFullData> SlackAdapter::keptData(const SlackExporter& exporter) {
    auto me = exporter.me();
    auto channels = exporter.channels();
    auto users = exporter.users();
    if (!channels || !users) {
        return std::nullopt;
    }
    return SlackFullData{.me = std::move(me), .channels = *std::move(channels), .users = *std::move(users)};
}

std::optional<RefusalAdvice> SlackAdapter::adviceOn(const RefusedRequest& refused) {
    // Behind the word may stand what it is about.
    const auto word = refused.words.substr(0, refused.words.find_first_of(" :,;("));
    const auto found = std::ranges::find(meanings, word, &MeaningOfWord::word);
    if (found == std::end(meanings)) {
        return std::nullopt;
    }
    return RefusalAdvice{std::string(found->reason), found->remedy};
}

std::string SlackAdapter::standInResponse(const SentRequest& /*request*/) {
    return R"({"ok":true,"channel":"NEW-CHANNEL","ts":"NEW-MESSAGE"})";
}

std::vector<PassedLimit> SlackAdapter::passedLimits(const SlackExporter& /*exporter*/,
                                                    const SlackExportConfiguration& /*configuration*/,
                                                    const std::vector<SentRequest>& requests) {
    LimitCheck limits;
    for (const auto& request : requests) {
        if (const auto text = postedText(request)) {
            limits.check("the message's text", codePointCount(*text), maximumText, "characters",
                         "Slack cuts what is longer");
        }
    }
    return limits.passed();
}

} // namespace zelto::cli
