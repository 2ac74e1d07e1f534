#include <ZeltoSandbox/Slack/SlackSandbox.h>

#include <ZeltoSandbox/BearerAccess.h>
#include <ZeltoSandbox/Slack/SlackJSON.h>
#include <ZeltoSandbox/Slack/SlackPage.h>

#include <Platform/Text.h>

#include <algorithm>
#include <utility>

namespace zelto::sandbox {

namespace {

using enum SlackConversationKind;

constexpr std::size_t maximumText = 40'000; // code points
constexpr std::size_t usualConversations = 100;

// The conversations that a client can ask for, with the scope that it needs for them.
struct ConversationType {
    std::string_view name;
    SlackConversationKind kind;
    std::string_view scope;
};

constexpr ConversationType types[] = {
    {"public_channel", publicChannel, "channels:read"},
    {"private_channel", privateChannel, "groups:read"},
    {"mpim", groupMessage, "mpim:read"},
    {"im", directMessage, "im:read"},
};

// The types that a list of names has; nullopt if one is unknown.
std::optional<std::vector<ConversationType>> typesOf(std::string_view names) {
    std::vector<ConversationType> all;
    while (!names.empty()) {
        const auto end = std::min(names.find(','), names.size());
        const auto name = trimmed(names.substr(0, end));
        const auto found = std::ranges::find(types, name, &ConversationType::name);
        if (found == std::end(types)) {
            return std::nullopt;
        }
        all.push_back(*found);
        names.remove_prefix(std::min(end + 1, names.size()));
    }
    return all;
}

SlackError missingScope(const std::string& needed, const SlackScopes& scopes) {
    return {"missing_scope", "the token does not have the scope " + needed,
            JSONObject{{"needed", needed}, {"provided", scopes.text()}}};
}

// The scopes of the types that the token does not have: "groups:read,mpim:read".
std::string missingOf(const std::vector<ConversationType>& asked, const SlackScopes& scopes) {
    std::string missing;
    for (const auto& type : asked) {
        if (!scopes.has(type.scope)) {
            missing.append(missing.empty() ? "" : ",").append(type.scope);
        }
    }
    return missing;
}

bool isTrue(const std::optional<std::string>& text) {
    return text == "true" || text == "1";
}

// The first code points of a text.
std::string_view prefixCodePoints(std::string_view text, std::size_t count) {
    std::size_t end = 0;
    while (end < text.size() && count > 0) {
        ++end;
        while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) {
            ++end;
        }
        --count;
    }
    return text.substr(0, end);
}

std::string joined(const std::vector<std::string>& texts) {
    std::string all;
    for (const auto& text : texts) {
        all.append(all.empty() ? "" : ",").append(text);
    }
    return all;
}

JSONValue::Array arrayOf(const std::vector<std::string>& texts) {
    return {texts.begin(), texts.end()};
}

template <class Record> std::vector<std::string_view> identifiersOf(const std::vector<Record>& records) {
    std::vector<std::string_view> all;
    all.reserve(records.size());
    for (const auto& record : records) {
        all.push_back(record.id);
    }
    return all;
}

// Of those types, as far as the user may see them.
void addSeen(std::vector<SlackConversationRecord>& seen, const auto& records,
             const std::vector<ConversationType>& asked) {
    for (const auto& each : records) {
        if ((each.isMember || each.kind == publicChannel) &&
            std::ranges::find(asked, each.kind, &ConversationType::kind) != asked.end()) {
            seen.push_back(each);
        }
    }
}

} // namespace

void SlackSandbox::addRemarks(JSONObject& json, const Remarks& remarks) {
    if (remarks.warnings.empty()) {
        return;
    }
    json.set("warning", joined(remarks.warnings));
    const auto* present = json.find("response_metadata");
    auto metadata = present ? *present->asObject() : JSONObject();
    metadata.set("warnings", arrayOf(remarks.warnings));
    if (!remarks.messages.empty()) {
        metadata.set("messages", arrayOf(remarks.messages));
    }
    json.set("response_metadata", std::move(metadata));
}

const SlackSandbox::Method SlackSandbox::methods[] = {
    {.name = "auth.test", .handler = &SlackSandbox::testAuthorisation, .takesJSON = true},
    {.name = "users.list", .handler = &SlackSandbox::listUsers, .scope = "users:read"},
    {.name = "conversations.list", .handler = &SlackSandbox::listConversations},
    {.name = "chat.postMessage",
     .handler = &SlackSandbox::postMessage,
     .scope = "chat:write",
     .takesJSON = true},
};

std::unique_ptr<SandboxService> SlackSandbox::make(SandboxContext& context, const SandboxServiceRow&) {
    return std::make_unique<SlackSandbox>(context);
}

SlackSandbox::SlackSandbox(SandboxContext& context)
    : context_(context), store_(std::make_unique<SlackStore>()) {}

SandboxResponse SlackSandbox::respond(const SandboxRequest& request) {
    if (request.segments.size() != 2 || request.segments.front() != "api") {
        return SandboxResponse::text("Not Found\n", 404).because("the sandbox does not have it");
    }
    const auto& name = request.segments.back();
    const auto method = std::ranges::find(methods, name, &Method::name);
    if (method == std::end(methods)) {
        const SlackError unknown{"unknown_method", "the sandbox does not have it",
                                 JSONObject{{"req_method", name}}};
        return SandboxResponse::json(unknown.json()).because(unknown.reason);
    }
    Remarks remarks;
    const auto outcome = this->outcome(request, *method, remarks);
    auto json = outcome ? JSONObject{{"ok", true}} : outcome.error().json();
    for (const auto& [key, value] : outcome ? *outcome : JSONObject()) {
        json.set(key, value);
    }
    addRemarks(json, remarks);
    return SandboxResponse::json(std::move(json))
        .because(outcome ? "" : outcome.error().code + ": " + outcome.error().reason);
}

SandboxResponse SlackSandbox::failure(int status) const {
    return slackFailure(status);
}

SlackSandbox::Outcome SlackSandbox::outcome(const SandboxRequest& request, const Method& method,
                                            Remarks& remarks) {
    if (request.method != "GET" && request.method != "POST") {
        return zelto::failure(
            SlackError{"method_not_supported", "a method is called by GET or POST, not " + request.method});
    }
    const auto scopes = authorised(request);
    if (!scopes) {
        return zelto::failure(scopes.error());
    }
    const auto arguments = SlackArguments::read(request, method.takesJSON);
    if (!arguments) {
        return zelto::failure(arguments.error());
    }
    if (!method.scope.empty() && !scopes->has(method.scope)) {
        return zelto::failure(missingScope(std::string(method.scope), *scopes));
    }
    remarks.warnings = arguments->warnings();
    return (this->*method.handler)({*arguments, *scopes, remarks});
}

Result<SlackScopes, SlackError> SlackSandbox::authorised(const SandboxRequest& request) {
    const auto token = bearerToken(request);
    if (!token) {
        return zelto::failure(SlackError{"not_authed", "there is no bearer token"});
    }
    switch (context_.tokens.status("Slack", *token)) {
    case TokenStatus::valid:
        break;
    case TokenStatus::expired:
        return zelto::failure(SlackError{"token_expired", "the access token has expired"});
    case TokenStatus::unknown:
        return zelto::failure(SlackError{"invalid_auth", "the access token is unknown"});
    }
    const auto& settings = context_.settings.slack;
    if (settings.revoked) {
        return zelto::failure(SlackError{"token_revoked", "the setting \"revoked\" says so"});
    }
    return SlackScopes(*context_.tokens.access(*token), settings.missingScopes);
}

SlackSandbox::Outcome SlackSandbox::testAuthorisation(const Call&) {
    return slackSelfJSON();
}

SlackSandbox::Outcome SlackSandbox::listUsers(const Call& call) {
    const auto& users = store_->users(context_.settings.slack.additionalUsers);
    if (!call.arguments.text("limit") && users.size() > SlackPage::maximum) {
        return zelto::failure(SlackError{"limit_required", "there are too many users for one response"});
    }
    const auto page = SlackPage::of(call.arguments, identifiersOf(users), "user", users.size());
    if (!page) {
        return zelto::failure(page.error());
    }
    JSONValue::Array members;
    for (auto i = page->first; i < page->end; ++i) {
        members.push_back(slackUserJSON(users[i]));
    }
    return JSONObject{{"members", std::move(members)},
                      {"cache_ts", static_cast<std::int64_t>(Date::now().unixSeconds())},
                      {"response_metadata", page->metadata()}};
}

SlackSandbox::Outcome SlackSandbox::listConversations(const Call& call) {
    const auto names = call.arguments.text("types").value_or("");
    const auto asked = typesOf(names.empty() ? types[0].name : names);
    if (!asked) {
        return zelto::failure(SlackError{"invalid_types", "types are \"" + names + "\""});
    }
    if (const auto missing = missingOf(*asked, call.scopes); !missing.empty()) {
        return zelto::failure(missingScope(missing, call.scopes));
    }
    std::vector<SlackConversationRecord> seen;
    addSeen(seen, store_->channels(context_.settings.slack.additionalChannels), *asked);
    addSeen(seen, store_->directMessages(), *asked);
    const auto page = SlackPage::of(call.arguments, identifiersOf(seen), "team", usualConversations);
    if (!page) {
        return zelto::failure(page.error());
    }
    // As at Slack, what is left out shortens its page.
    const bool leavesArchivedOut = isTrue(call.arguments.text("exclude_archived"));
    JSONValue::Array channels;
    for (auto i = page->first; i < page->end; ++i) {
        if (!leavesArchivedOut || !isArchived(seen[i])) {
            channels.push_back(slackConversationJSON(seen[i], isArchived(seen[i])));
        }
    }
    return JSONObject{{"channels", std::move(channels)}, {"response_metadata", page->metadata()}};
}

SlackSandbox::Outcome SlackSandbox::postMessage(const Call& call) {
    const auto channel = call.arguments.text("channel").value_or("");
    if (channel.empty()) {
        return zelto::failure(SlackError::missingArgument("channel"));
    }
    const auto conversation = destination(channel);
    if (!conversation) {
        return zelto::failure(conversation.error());
    }
    const auto text = call.arguments.text("text").value_or("");
    if (isBlank(text)) {
        return zelto::failure(SlackError{"no_text", "there is no text"});
    }
    SlackMessageRecord message{.conversationID = (*conversation)->id,
                               .text = std::string(prefixCodePoints(text, maximumText))};
    if (message.text.size() < text.size()) {
        message.cutFrom = codePointCount(text);
        call.remarks.warnings.push_back("message_truncated");
        call.remarks.messages.push_back(
            "[WARN] Your message was truncated but still posted. The `text` field accepts up to 40,000 "
            "characters.");
    }
    if (!store_->hasSpace(message.text.size())) {
        return zelto::failure(SlackError{"message_limit_exceeded",
                                         "there are as many messages as the sandbox keeps; reset it"});
    }
    const auto& added = store_->addMessage(std::move(message));
    return JSONObject{{"channel", added.conversationID},
                      {"ts", slackTimeText(added.time)},
                      {"message", slackMessageJSON(added)}};
}

Result<const SlackConversationRecord*, SlackError> SlackSandbox::destination(const std::string& channel) {
    const auto& settings = context_.settings.slack;
    if (const auto* user = store_->findUser(channel, settings.additionalUsers)) {
        return &store_->directMessageWith(user->id);
    }
    if (const auto* direct = store_->findDirectMessage(channel)) {
        return direct;
    }
    const auto* found = store_->findChannel(channel, settings.additionalChannels);
    if (!found || (!found->isMember && found->kind != publicChannel)) {
        return zelto::failure(
            SlackError{"channel_not_found", "there is no channel or user \"" + channel + "\" for this user"});
    }
    if (isArchived(*found)) {
        return zelto::failure(SlackError{"is_archived", "the channel is archived"});
    }
    if (!found->isMember) {
        return zelto::failure(SlackError{"not_in_channel", "the user is no member of the channel"});
    }
    return found;
}

bool SlackSandbox::isArchived(const SlackConversationRecord& conversation) const {
    const auto& archived = context_.settings.slack.archivedChannels;
    return conversation.isArchived || std::ranges::find(archived, conversation.id) != archived.end();
}

JSONObject SlackSandbox::state() const {
    const auto& settings = context_.settings.slack;
    return slackState(*store_, settings.additionalUsers, settings.additionalChannels,
                      [&](const SlackConversationRecord& each) { return isArchived(each); });
}

void SlackSandbox::reset() {
    store_ = std::make_unique<SlackStore>();
}

} // namespace zelto::sandbox
