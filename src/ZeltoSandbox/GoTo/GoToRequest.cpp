#include <ZeltoSandbox/GoTo/GoToRequest.h>

#include <Platform/ISO8601.h>
#include <Platform/Text.h>
#include <ZeltoSandbox/JSONBody.h>

#include <algorithm>
#include <utility>

namespace zelto::sandbox {

namespace {

constexpr std::string_view members[] = {"subject",          "conferencecallinfo", "meetingtype",
                                        "passwordrequired", "starttime",          "endtime",
                                        "timezonekey"};
constexpr std::string_view kinds[] = {"immediate", "recurring", "scheduled"};
constexpr std::size_t maximumSubject = 100;  // characters
constexpr std::size_t maximumCallInfo = 255; // characters

GoToError invalid(std::string description) {
    return {.description = std::move(description)};
}

// "2026-12-24T09:00:00Z"
std::optional<Date> dateOf(const JSONValue& body, std::string_view key) {
    const auto* text = textMember(body, key);
    const std::string_view form = "2026-12-24T09:00:00Z";
    return text && text->size() == form.size() && text->back() == 'Z' ? parseISO8601(*text) : std::nullopt;
}

std::string withoutEntities(std::string_view text) {
    constexpr std::pair<std::string_view, char> entities[] = {{"&lt;", '<'}, {"&gt;", '>'}};
    std::string result;
    while (!text.empty()) {
        const auto found = std::ranges::find_if(
            entities, [&](const auto& entity) { return text.starts_with(entity.first); });
        const bool isEntity = found != std::end(entities);
        result.push_back(isEntity ? found->second : text.front());
        text.remove_prefix(isEntity ? found->first.size() : 1);
    }
    return result;
}

std::optional<GoToError> problemOfSubject(const JSONValue& body, bool needsEntities) {
    const auto* subject = textMember(body, "subject");
    if (!subject) {
        return invalid("subject has to be a string.");
    }
    if (characterCount(*subject) > maximumSubject) {
        return invalid("subject has more than 100 characters.");
    }
    if (needsEntities && subject->find_first_of("<>") != std::string::npos) {
        return invalid("subject has < or > that is not replaced by its HTML character code.");
    }
    return std::nullopt;
}

std::optional<GoToError> problemOf(const JSONValue& body, bool needsEntities) {
    for (const auto member : members) {
        if (!body.find(member)) {
            return invalid(std::string(member) + " is required.");
        }
    }
    if (auto problem = problemOfSubject(body, needsEntities)) {
        return problem;
    }
    const auto* callInfo = textMember(body, "conferencecallinfo");
    if (!callInfo || callInfo->empty() || characterCount(*callInfo) > maximumCallInfo) {
        return invalid(
            "conferencecallinfo has to be PSTN, Free, Hybrid, Private, VoIP or a text of at most 255 "
            "characters.");
    }
    const auto* kind = textMember(body, "meetingtype");
    if (!kind || std::ranges::find(kinds, *kind) == std::end(kinds)) {
        return invalid("meetingtype has to be immediate, recurring or scheduled.");
    }
    if (!body.find("passwordrequired")->asBool()) {
        return invalid("passwordrequired has to be a boolean.");
    }
    for (const auto* key : {"starttime", "endtime"}) {
        if (!dateOf(body, key)) {
            return invalid(std::string(key) + " has to be an ISO 8601 date in UTC, as 2026-12-24T09:00:00Z.");
        }
    }
    const auto* zone = textMember(body, "timezonekey");
    if (!zone || !zone->empty()) {
        return invalid("timezonekey has to be an empty string.");
    }
    return *dateOf(body, "endtime") < *dateOf(body, "starttime")
               ? std::optional(invalid("endtime is before starttime."))
               : std::nullopt;
}

} // namespace

Result<GoToRequest, GoToError> readGoToRequest(const JSONValue& body, bool needsEntities) {
    if (auto problem = problemOf(body, needsEntities)) {
        return failure(*std::move(problem));
    }
    return GoToRequest{{.title = withoutEntities(*textMember(body, "subject")),
                        .start = dateOf(body, "starttime"),
                        .end = dateOf(body, "endtime"),
                        .kind = *textMember(body, "meetingtype")},
                       *textMember(body, "conferencecallinfo")};
}

} // namespace zelto::sandbox
