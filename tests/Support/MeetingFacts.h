#pragma once

#include <ZeltoIntegrations/GoTo/GoToAuthoriser.h>
#include <ZeltoIntegrations/GoTo/GoToClient.h>
#include <ZeltoIntegrations/MicrosoftTeams/MicrosoftTeamsAuthoriser.h>
#include <ZeltoIntegrations/MicrosoftTeams/MicrosoftTeamsClient.h>
#include <ZeltoIntegrations/Zoom/ZoomAuthoriser.h>
#include <ZeltoIntegrations/Zoom/ZoomClient.h>

#include <string>
#include <utility>
#include <vector>

namespace zelto {

// What the tests of all meeting services know of each: as MeetingFixture and the suite Meetings ask.
template <class ServiceClient, class ServiceAuthoriser> struct MeetingFacts {
    using Client = ServiceClient;
    using Authoriser = ServiceAuthoriser;
    using Refusals = std::vector<std::pair<std::string, std::string>>;
};

struct ZoomFacts : MeetingFacts<ZoomClient, ZoomAuthoriser> {
    static constexpr auto service = ServiceType::ZoomMeeting;
    static constexpr auto tokenPath = "/oauth/token";
    static constexpr auto created =
        R"({"uuid":"4444AAAiAAAAAiAiAiiAii==","id":92674392836,"host_id":"h","topic":"T","type":2,)"
        R"("start_time":"2026-12-24T10:00:00Z","duration":45,"created_at":"2026-11-22T09:30:00Z",)"
        R"("start_url":"https://zoom.us/s/92674392836?zak=z","join_url":"https://zoom.us/j/92674392836",)"
        R"("settings":{"host_video":true}})";

    static ConferenceDetails details() {
        return {"92674392836", "https://zoom.us/j/92674392836", "https://zoom.us/j/92674392836",
                ServiceType::ZoomMeeting};
    }

    static std::vector<std::string> unreadable() {
        return {R"({"join_url":"x"})",
                R"({"id":"92674392836"})",
                R"({"id":1.5})",
                R"({"id":18446744073709551616})",
                R"({"id":1,"join_url":2})",
                R"({"id":1,"created_at":"yesterday"})"};
    }

    static Refusals refusals() {
        return {{R"({"code":300,"message":"The value that you entered is not valid."})",
                 "The value that you entered is not valid."},
                {R"({"code":300,"message":"Validation Failed.","errors":[{"field":"topic","message":)"
                 R"("Size must be less than 200."}]})",
                 "Size must be less than 200."}};
    }
};

struct GoToFacts : MeetingFacts<GoToClient, GoToAuthoriser> {
    static constexpr auto service = ServiceType::G2Meeting;
    static constexpr auto tokenPath = "/oauth/token";
    static constexpr auto created =
        R"([{"joinURL":"https://meet.goto.com/987654321","meetingid":9876543210,"maxParticipants":26,)"
        R"("uniqueMeetingId":9876543210,"conferenceCallInfo":"Germany: +49 692 5736 7317\nCode: 987"}])";

    static ConferenceDetails details() {
        return {"9876543210", "https://meet.goto.com/987654321", "Germany: +49 692 5736 7317\nCode: 987",
                ServiceType::G2Meeting};
    }

    static std::vector<std::string> unreadable() {
        return {R"({"meetingid":1})", R"([{"joinURL":"x"}])", R"([{"meetingid":"1"}])",
                R"([{"meetingid":1},{}])", R"([{"meetingid":1.5}])"};
    }

    static Refusals refusals() {
        return {
            {R"({"errorCode":"InvalidRequest","description":"Subject is too long"})", "Subject is too long"},
            {R"({"int_err_code":"InvalidToken","msg":"Invalid token passed"})", "Invalid token passed"},
            {R"({"errorCode":"MeetingNotStarted"})", "MeetingNotStarted"}};
    }
};

struct MicrosoftTeamsFacts : MeetingFacts<MicrosoftTeamsClient, MicrosoftTeamsAuthoriser> {
    static constexpr auto service = ServiceType::MicrosoftTeams;
    static constexpr auto tokenPath = "/organizations/oauth2/v2.0/token";
    static constexpr auto created =
        R"({"@odata.context":"https://graph.microsoft.com/v1.0/$metadata#users('u')/onlineMeetings/$entity",)"
        R"("id":"MSpkYzE3","creationDateTime":"2026-11-22T09:30:00Z","subject":"T",)"
        R"("joinWebUrl":"https://teams.microsoft.com/l/meetup-join/19%3ameeting"})";

    static ConferenceDetails details() {
        return {"MSpkYzE3", "https://teams.microsoft.com/l/meetup-join/19%3ameeting",
                "https://teams.microsoft.com/l/meetup-join/19%3ameeting", ServiceType::MicrosoftTeams};
    }

    static std::vector<std::string> unreadable() {
        return {R"({"id":"1"})", R"({"joinWebUrl":"x"})", R"({"id":1,"joinWebUrl":"x"})",
                R"({"id":"1","joinWebUrl":null})"};
    }

    static Refusals refusals() {
        return {{R"({"error":{"code":"General","message":"End time is before start time.","innerError":)"
                 R"({"date":"2026-11-22T09:30:00","request-id":"r"}}})",
                 "End time is before start time."}};
    }
};

} // namespace zelto
