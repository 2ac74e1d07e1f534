#include <ZeltoSandbox/MicrosoftTeams/TeamsRequest.h>

#include <Platform/ISO8601.h>
#include <ZeltoSandbox/JSONBody.h>

#include <algorithm>
#include <utility>

namespace zelto::sandbox {

namespace {

// Those of an online meeting that a client may set.
constexpr std::string_view properties[] = {"subject",
                                           "startDateTime",
                                           "endDateTime",
                                           "participants",
                                           "externalId",
                                           "chatInfo",
                                           "lobbyBypassSettings",
                                           "isEntryExitAnnounced",
                                           "allowedPresenters",
                                           "allowMeetingChat",
                                           "allowTeamworkReactions",
                                           "allowAttendeeToEnableMic",
                                           "allowAttendeeToEnableCamera",
                                           "recordAutomatically",
                                           "joinMeetingIdSettings"};
constexpr TimeInterval usualLength{3600};

// "2026-12-24T09:00:00Z" or "2026-12-24T09:00:00.1234567+01:00": a time with its offset.
std::optional<Date> dateOf(const std::string& text) {
    const auto time = text.find('T');
    const bool hasOffset = time != std::string::npos && text.find_first_of("Z+-", time) != std::string::npos;
    return hasOffset ? parseISO8601(text) : std::nullopt;
}

struct Dates {
    std::optional<Date> start;
    std::optional<Date> end;
};

// A member that is a text; nullopt if it is left out or null.
Result<std::optional<std::string>, std::string> textOf(const JSONValue& body, std::string_view key) {
    const auto* member = body.find(key);
    if (member && !member->isNull() && !member->asString()) {
        return failure("The value of the property '" + std::string(key) + "' is not a string.");
    }
    return member && member->asString() ? std::optional(*member->asString()) : std::nullopt;
}

Result<std::optional<Date>, std::string> readDate(const JSONValue& body, std::string_view key) {
    const auto text = textOf(body, key);
    if (!text) {
        return failure(text.error());
    }
    const auto date = *text ? dateOf(**text) : std::nullopt;
    if (*text && !date) {
        return failure("Cannot convert the literal '" + **text +
                       "' to the expected type 'Edm.DateTimeOffset'.");
    }
    return date;
}

Result<Dates, std::string> readDates(const JSONValue& body) {
    const auto start = readDate(body, "startDateTime");
    const auto end = readDate(body, "endDateTime");
    if (!start || !end) {
        return failure(!start ? start.error() : end.error());
    }
    if (*start && *end && **end < **start) {
        return failure(std::string("The endDateTime is before the startDateTime."));
    }
    return Dates{*start, *end};
}

Result<Dates, std::string> datesOfNew(const Dates& given) {
    if (given.end && !given.start) {
        return failure(std::string("The endDateTime is there without the startDateTime."));
    }
    const auto start = given.start.value_or(Date::now());
    return Dates{start, given.end.value_or(start + usualLength)};
}

Result<Dates, std::string> datesOfKnown(const Dates& given, const MeetingDetails& before) {
    if (given.start.has_value() != given.end.has_value()) {
        return failure(
            std::string("Changing the dates of a meeting needs both the startDateTime and the endDateTime."));
    }
    return given.start ? given : Dates{before.start, before.end};
}

} // namespace

Result<MeetingDetails, std::string> teamsDetails(const JSONValue& body,
                                                 const std::optional<MeetingDetails>& before) {
    for (const auto& [key, value] : *body.asObject()) {
        if (std::ranges::find(properties, key) == std::end(properties)) {
            return failure("The property '" + key +
                           "' does not exist on type 'microsoft.graph.onlineMeeting'.");
        }
    }
    const auto subject = textOf(body, "subject");
    if (!subject) {
        return failure(subject.error());
    }
    const auto given = readDates(body);
    if (!given) {
        return failure(given.error());
    }
    const auto dates = before ? datesOfKnown(*given, *before) : datesOfNew(*given);
    if (!dates) {
        return failure(dates.error());
    }
    return MeetingDetails{
        .title = subject->value_or(before ? before->title : ""), .start = dates->start, .end = dates->end};
}

} // namespace zelto::sandbox
