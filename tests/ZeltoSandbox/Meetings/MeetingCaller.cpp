#include <ZeltoSandbox/Meetings/MeetingCaller.h>

#include <stdexcept>

namespace zelto {

namespace {

std::string textOf(const JSONValue& meeting, std::string_view key) {
    const auto* member = meeting.find(key);
    return member && member->asString() ? *member->asString() : "none";
}

// To the minute.
std::string dateOf(const JSONValue& meeting, std::string_view key) {
    constexpr std::size_t withMinutes = std::string_view("2026-12-24T09:00").size();
    return textOf(meeting, key).substr(0, withMinutes);
}

std::string summary(const JSONValue& meeting) {
    return textOf(meeting, "title") + "|" + dateOf(meeting, "start") + "|" + dateOf(meeting, "end") + "|" +
           textOf(meeting, "kind") + "|" + meeting.find("changeCount")->text().value_or("") + "|" +
           (meeting.find("deleted")->isNull() ? "there" : "deleted");
}

} // namespace

MeetingCaller::MeetingCaller(std::string host, std::string service, std::string key)
    : token(server->issueTokens(service)->accessToken), host_(std::move(host)), key_(std::move(key)) {}

CallerResponse MeetingCaller::call(const std::string& method, const std::string& target,
                                   const std::string& body, const std::string& type) const {
    const auto authorization = token.empty() ? std::string() : "Authorization: Bearer " + token + "\r\n";
    const auto content = body.empty() ? std::string() : "Content-Type: " + type + "\r\n";
    return send(method + " " + target + " HTTP/1.1\r\nHost: " + host_ + "\r\n" + authorization + content +
                "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body);
}

JSONValue MeetingCaller::create(const std::string& target, const std::string& body) const {
    const auto response = call("POST", target, body);
    if (response.status != 201) {
        throw std::runtime_error(std::to_string(response.status) + " " + response.body);
    }
    return response.json();
}

CallerResponse MeetingCaller::open(const std::string& joinURL) const {
    const std::string_view scheme = "https://";
    return get(ownHost(), "/host/" + joinURL.substr(scheme.size()));
}

std::vector<std::string> MeetingCaller::meetings() const {
    std::vector<std::string> summaries;
    const auto state = server->state();
    for (const auto& meeting : *state.find(key_)->find("meetings")->asArray()) {
        if (!*meeting.find("isAdditional")->asBool()) {
            summaries.push_back(summary(meeting));
        }
    }
    return summaries;
}

JSONValue MeetingCaller::lastMeeting() const {
    return server->state().find(key_)->find("meetings")->asArray()->back();
}

std::size_t MeetingCaller::meetingCount() const {
    return server->state().find(key_)->find("meetings")->asArray()->size();
}

} // namespace zelto
