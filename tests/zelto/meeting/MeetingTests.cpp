#include <zelto/ConnectedProgram.h>

#include <ZeltoIntegrations/MicrosoftTeams/MicrosoftTeamsClient.h>

#include <algorithm>
#include <string>
#include <vector>

namespace zelto {

namespace {

const std::string start = "2026-12-24T10:00:00Z";
const std::string end = "2026-12-24T10:45:00Z";

// The program with an account of each meeting service in a sandbox.
class Meeting : public ConnectedProgram {
  protected:
    void SetUp() override {
        ConnectedProgram::SetUp();
        for (const auto* service : {"zoom", "goto", "teams"}) {
            const auto connected = run({"connect", service, "--follow", "--name", "work"});
            ASSERT_EQ(connected.status, 0) << connected.errorOutput;
        }
        requestsBefore = sandbox->requests().size();
    }

    ProgramOutcome meeting(ZeltoProgram::Arguments arguments) const {
        arguments.insert(arguments.begin(), "meeting");
        return run(arguments);
    }

    // The identifier of a new meeting.
    std::string made(const std::string& service) const {
        const auto outcome =
            meeting({"create", service, "--title", "Weekly", "--start", start, "--end", end, "--json"});
        EXPECT_EQ(outcome.status, 0) << outcome.output;
        return outcome.text("id");
    }

    // "POST /v2/users/me/meetings" and so on.
    std::vector<std::string> sent() const {
        std::vector<std::string> lines;
        const auto requests = sandbox->requests();
        for (auto at = requestsBefore; at < requests.size(); ++at) {
            lines.push_back(requests[at].method + " " + requests[at].target);
        }
        return lines;
    }

    static std::string firstLine(const ProgramOutcome& outcome) {
        return outcome.errorOutput.substr(0, outcome.errorOutput.find('\n'));
    }

    std::size_t requestsBefore = 0;
};

const std::vector<std::string> services = {"zoom", "goto", "teams"};

} // namespace

TEST_F(Meeting, IsMadeChangedAndDeletedOnEachService) {
    for (const auto& service : services) {
        const auto created =
            meeting({"create", service, "--title", "Über uns", "--start", start, "--end", end});
        EXPECT_EQ(created.status, 0) << created.errorOutput;
        EXPECT_TRUE(created.output.starts_with("Meeting: ")) << created.output;
        EXPECT_TRUE(created.output.contains("\nJoin: https://")) << created.output;
        EXPECT_TRUE(created.output.contains("\nCall information: ")) << created.output;
        const auto id = created.output.substr(9, created.output.find('\n') - 9);
        const auto changed = meeting({"update", service, id, "--title", "T", "--start",
                                      "2026-12-24T12:00+01:00", "--end", "2026-12-24T13:00+01:00"});
        EXPECT_EQ(changed.output, "Changed the meeting " + id + ".\n") << changed.errorOutput;
        const auto deleted = meeting({"delete", service, id});
        EXPECT_EQ(deleted.output, "Deleted the meeting " + id + ".\n") << deleted.errorOutput;
        EXPECT_EQ(meeting({"delete", service, made(service), "--quiet"}).output, "");
    }
}

TEST_F(Meeting, IsPrintedAsJSONUnderTheNamesOfItsFields) {
    const std::pair<std::string, std::string> rows[] = {
        {"zoom", "ZoomMeeting"}, {"goto", "G2Meeting"}, {"teams", "MicrosoftTeams"}};
    for (const auto& [service, type] : rows) {
        const auto created = meeting({"create", service, "--json"});
        EXPECT_EQ(created.status, 0) << created.output;
        const auto id = created.text("id");
        EXPECT_EQ(created.output, R"({"result":"success","id":")" + id + R"(","joinURL":")" +
                                      created.text("joinURL") + R"(","callInfo":)" +
                                      created.json().find("callInfo")->text().value() + R"(,"type":")" +
                                      type + "\"}\n");
        const auto expected = R"({"result":"success","id":")" + id + R"(","type":")" + type + "\"}\n";
        EXPECT_EQ(meeting({"delete", service, id, "--json"}).output, expected);
    }
}

TEST_F(Meeting, OfOneDateAloneGoesOutAsItsServiceWantsIt) {
    for (const auto& service : {"zoom", "goto"}) {
        EXPECT_EQ(meeting({"create", service, "--title", "T", "--start", start}).status, 0) << service;
        EXPECT_EQ(meeting({"create", service, "--title", "T", "--end", end}).status, 0) << service;
    }
    EXPECT_EQ(meeting({"create", "teams", "--title", "T", "--start", start}).status, 0);
    // Graph does not take an end alone.
    const auto refused = meeting({"create", "teams", "--title", "T", "--end", end});
    EXPECT_EQ(refused.status, 1);
    EXPECT_TRUE(
        firstLine(refused).starts_with("zelto: serviceError: Microsoft Teams did not make the meeting (\""))
        << refused.errorOutput;
}

TEST_F(Meeting, ThatWouldEndBeforeItStartsIsWrongUsage) {
    for (const auto* command : {"create", "update"}) {
        ZeltoProgram::Arguments arguments{command, "zoom", "--start", end, "--end", start};
        if (command == std::string("update")) {
            arguments.emplace_back("1");
        }
        const auto outcome = meeting(arguments);
        EXPECT_EQ(outcome.status, 2);
        EXPECT_EQ(firstLine(outcome), "zelto: wrongUsage: The meeting would end before it starts: --end lies "
                                      "before --start.");
    }
    EXPECT_EQ(sent().size(), 0U);
    EXPECT_EQ(meeting({"create", "zoom", "--start", start, "--end", start}).status, 0);
}

TEST_F(Meeting, ThatNothingIsWrittenIntoIsNotChanged) {
    for (const auto& service : services) {
        for (const auto& more : std::vector<ZeltoProgram::Arguments>{{}, {"--dry-run"}}) {
            ZeltoProgram::Arguments arguments{"update", service, "7"};
            arguments.insert(arguments.end(), more.begin(), more.end());
            const auto outcome = meeting(arguments);
            EXPECT_EQ(outcome.status, 2) << service;
            EXPECT_EQ(firstLine(outcome),
                      "zelto: wrongUsage: There is nothing to write into the meeting; give "
                      "--title, --start or --end.");
        }
        EXPECT_EQ(meeting({"update", service, "7", "--title", "", "--dry-run"}).status, 0) << service;
    }
    EXPECT_EQ(sent().size(), 0U);
}

TEST_F(Meeting, WithADateWithoutAZoneIsWrongUsageAndNamesTheZoneOfTheMachine) {
    zelto.variables["TZ"] = "Asia/Kolkata";
    for (const std::string date : {"2026-12-24T10:00", "2026-12-24T10:00:00", "2026-12-24T10:00:00.5"}) {
        const auto outcome = meeting({"create", "zoom", "--start", date, "--end", end});
        EXPECT_EQ(outcome.status, 2);
        EXPECT_EQ(firstLine(outcome), "zelto: wrongUsage: --start \"" + date +
                                          "\" has no time zone; end it with Z for UTC, or with an offset "
                                          "like +01:00.");
        EXPECT_TRUE(outcome.suggestion().contains("--start " + date + "+05:30")) << outcome.suggestion();
    }
    EXPECT_EQ(firstLine(meeting({"create", "zoom", "--start", "2026-12-24", "--end", end})),
              "zelto: wrongUsage: --start \"2026-12-24\" is a day without a time and a zone: write it like "
              "2026-12-24T14:00+05:30.");
    zelto.variables["TZ"] = "America/St_Johns";
    EXPECT_TRUE(meeting({"create", "zoom", "--end", "2026-12-24T10:00"}).suggestion().contains("-03:30"));
    EXPECT_EQ(sent().size(), 0U);
}

TEST_F(Meeting, WithWhatIsNoDateIsWrongUsage) {
    for (const std::string date : {"", "tomorrow", "2026-13-01T10:00Z", "2026-12-24T10:00ZZ", "10:00"}) {
        const auto outcome = meeting({"create", "goto", "--end", date});
        EXPECT_EQ(outcome.status, 2) << date;
        EXPECT_EQ(firstLine(outcome), "zelto: wrongUsage: --end \"" + date +
                                          "\" is no date and time like 2026-03-05T14:00:00Z or "
                                          "2026-03-05T14:00+01:00.");
    }
    EXPECT_EQ(meeting({"create", "goto", "--title", "\xFF"}).status, 2);
    EXPECT_EQ(sent().size(), 0U);
}

TEST_F(Meeting, OfWhatIsNoMeetingServiceIsWrongUsage) {
    EXPECT_EQ(run({"connect", "trello", "--follow"}).status, 0);
    for (const auto& named : {std::string("trello"), std::string("bear"), sandboxAccount}) {
        const auto outcome = meeting({"create", named});
        EXPECT_EQ(outcome.status, 2);
        EXPECT_TRUE(outcome.errorOutput.contains(" is no service that meetings are made on; these are: Zoom, "
                                                 "GoTo, Microsoft Teams."))
            << outcome.errorOutput;
        EXPECT_EQ(meeting({"delete", named, "1"}).status, 2);
    }
    EXPECT_EQ(meeting({"create"}).status, 2);
    EXPECT_EQ(meeting({"update", "zoom"}).status, 2);
    EXPECT_EQ(meeting({"delete", "zoom", ""}).status, 2);
    EXPECT_TRUE(firstLine(meeting({"create", "Zoom+nobody"})).starts_with("zelto: unknownAccount: "));
}

TEST_F(Meeting, ThatIsNotThereNamesTheNextCommand) {
    for (const auto& [service, account] : std::vector<std::pair<std::string, std::string>>{
             {"Zoom", "Zoom+work"}, {"GoTo", "GoTo+work"}, {"Microsoft Teams", "Microsoft Teams+work"}}) {
        const auto changed = meeting({"update", account, "123456789", "--start", start, "--end", end});
        EXPECT_EQ(changed.status, 1);
        EXPECT_TRUE(firstLine(changed).starts_with("zelto: itemNotFound: " + service +
                                                   " has no meeting \"123456789\" (\""))
            << changed.errorOutput;
        EXPECT_TRUE(changed.suggestion().starts_with("zelto meeting create ")) << changed.suggestion();
        const auto deleted = meeting({"delete", account, "123456789", "--json"});
        EXPECT_EQ(deleted.text("error"), "itemNotFound");
        EXPECT_NE(deleted.text("words"), "");
        EXPECT_TRUE(deleted.text("next").starts_with("zelto meeting delete --help")) << deleted.output;
    }
}

TEST_F(Meeting, IsRefusedInTheWordsOfItsService) {
    const auto tooLong = meeting({"create", "zoom", "--title", std::string(201, 'x')});
    EXPECT_EQ(tooLong.status, 1);
    EXPECT_TRUE(firstLine(tooLong).starts_with("zelto: serviceError: Zoom did not make the meeting (\""))
        << tooLong.errorOutput;
    sandbox->setMeetings({.emptyList = true});
    EXPECT_EQ(firstLine(meeting({"create", "goto"})), "zelto: serviceError: GoTo did not make the meeting.");
    sandbox->setMeetings({.personalAccount = true});
    const auto personal = meeting({"create", "teams", "--json"});
    EXPECT_EQ(personal.text("error"), "forbidden");
    EXPECT_TRUE(
        personal.text("message").starts_with("The account may not make meetings on Microsoft Teams (\""))
        << personal.output;
}

TEST_F(Meeting, BeyondTheLimitOfADayIsRefusedInTheWordsOfItsService) {
    sandbox->setMeetings({.dailyLimit = 1});
    EXPECT_EQ(meeting({"create", "zoom"}).status, 0);
    const auto second = meeting({"create", "zoom"});
    EXPECT_TRUE(firstLine(second).starts_with(
        "zelto: internalError: Zoom had too many requests; try again later (\""))
        << second.errorOutput;
    EXPECT_EQ(second.suggestion(), "zelto meeting create zoom" + surroundings());
}

TEST_F(Meeting, FailsWithAPlainSentenceAndTheNextCommandEachTime) {
    struct Row {
        int status;
        std::string body;
        std::string line;
        std::string next;
    };

    const std::vector<Row> rows{
        {401, "no", "oauthError: Zoom does not accept the account's sign-in any more (\"invalid_grant\").",
         "zelto reconnect Zoom+work"},
        {403, "no", "forbidden: The account may not delete meetings on Zoom (\"no\").",
         "zelto reconnect Zoom+work"},
        {404, "<p>", "itemNotFound: Zoom has no meeting \"7\".", "zelto meeting delete --help"},
        {429, "", "internalError: Zoom had too many requests; try again later.",
         "zelto meeting delete zoom 7 "},
        {400, "<p>", "serviceError: Zoom did not delete the meeting.", "zelto meeting delete zoom 7 "},
        {500, "<p>",
         "serviceError: Zoom had an error of its own, so it is not known whether the meeting was deleted.",
         "zelto meeting delete zoom 7 "},
        {503, "ResponseCode 412",
         "invalidAccount: Zoom says that the account cannot be used (\"ResponseCode "
         "412\").",
         "zelto reconnect Zoom+work"},
        {200, "done",
         "internalError: The response of Zoom could not be read, so it is not known whether the meeting was "
         "deleted.",
         "zelto meeting delete zoom 7 "},
    };
    for (const auto& row : rows) {
        if (row.status == 401) {
            sandbox->addFault(
                {.path = "/oauth/token", .status = 400, .body = R"({"error":"invalid_grant"})"});
        }
        sandbox->addFault({.path = "/v2/meetings", .status = row.status, .body = row.body});
        const auto outcome = meeting({"delete", "zoom", "7"});
        EXPECT_EQ(outcome.status, 1) << row.status;
        EXPECT_EQ(firstLine(outcome).substr(0, row.line.size() + 7), "zelto: " + row.line);
        EXPECT_TRUE(outcome.suggestion().starts_with(row.next)) << outcome.suggestion();
        if (row.status == 401) {
            ASSERT_EQ(run({"accounts", "restore", "Zoom+work"}).status, 0);
        }
    }
}

TEST_F(Meeting, OfAnExpiredTokenIsMadeAfterOneRefreshWhoseRotatedTokenIsKept) {
    for (const auto& [service, account] : std::vector<std::pair<std::string, std::string>>{
             {"Zoom", "Zoom+work"}, {"GoTo", "GoTo+work"}, {"MicrosoftTeams", "Microsoft Teams+work"}}) {
        const auto before = stored(account);
        sandbox->expireTokens(service);
        const auto first = meeting({"create", account});
        EXPECT_EQ(first.status, 0) << first.errorOutput;
        const auto after = stored(account);
        EXPECT_NE(after.accessToken, before.accessToken) << service;
        EXPECT_NE(after.refreshToken, before.refreshToken) << service;
        sandbox->expireTokens(service);
        EXPECT_EQ(meeting({"create", account}).status, 0) << service;
    }
}

TEST_F(Meeting, IsNotAskedForWhenTheSandboxIsGone) {
    sandbox->stop();
    const auto outcome = meeting({"create", "zoom"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(outcome.errorOutput.contains("Nothing was sent.")) << outcome.errorOutput;
}

TEST_F(Meeting, IsGivenUpAfterTheTimeout) {
    sandbox->addFault({.path = "/v2/users/me/meetings", .delay = TimeInterval(600)});
    const auto outcome = meeting({"create", "zoom", "--timeout", "0.2"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(firstLine(outcome),
              "zelto: timedOut: The request was given up, since hardly anything has moved for the time of "
              "--timeout; it is not known whether the meeting was made.");
    EXPECT_EQ(outcome.suggestion(), "zelto meeting create zoom --timeout 1" + surroundings());
    EXPECT_EQ(meeting({"create", "zoom", "--timeout", "x"}).status, 2);
}

TEST_F(Meeting, ThatIsInterruptedEndsAtOnce) {
    sandbox->addFault({.path = "/v2/users/me/meetings", .delay = TimeInterval(600)});
    const auto outcome = interruptWhileReading("meeting create zoom");
    EXPECT_EQ(outcome.status, 130) << outcome.errorOutput;
    EXPECT_TRUE(outcome.errorOutput.contains("zelto: canceled: The request was canceled; it is not known "
                                             "whether the meeting was made."))
        << outcome.errorOutput;
}

TEST_F(Meeting, OfADryRunIsShownAndNotAskedFor) {
    const auto shown = meeting(
        {"create", "goto", "--title", std::string(101, 'x'), "--start", start, "--end", end, "--dry-run"});
    EXPECT_EQ(shown.status, 0) << shown.errorOutput;
    EXPECT_TRUE(
        shown.output.starts_with("Would go to GoTo:\n\n1. POST https://api.getgo.com/G2M/rest/meetings\n"))
        << shown.output;
    EXPECT_TRUE(shown.output.contains("Authorization: Bearer ***\n")) << shown.output;
    EXPECT_TRUE(shown.output.contains(R"("starttime":"2026-12-24T10:00:00Z")")) << shown.output;
    EXPECT_TRUE(
        shown.output.ends_with("\nThe meeting's title would pass the limit of 100 characters: it has 101.\n"))
        << shown.output;
    for (const auto& [service, request] : std::vector<std::pair<std::string, std::string>>{
             {"zoom", "DELETE https://api.zoom.us/v2/meetings/7"},
             {"goto", "DELETE https://api.getgo.com/G2M/rest/meetings/7"},
             {"teams", "DELETE https://graph.microsoft.com/v1.0/me/onlineMeetings/7"}}) {
        const auto deletion = meeting({"delete", service, "7", "--dry-run"});
        EXPECT_TRUE(deletion.output.contains("\n1. " + request + "\n")) << deletion.output;
        const auto update = meeting({"update", service, "7", "--title", "T", "--dry-run", "--json"}).json();
        EXPECT_EQ(update.find("dryRun")->asBool(), true);
        EXPECT_EQ(update.find("requests")->asArray()->size(), 1U);
        EXPECT_EQ(update.find("limits")->text().value(), "[]");
        EXPECT_EQ(meeting({"create", service, "--dry-run"}).status, 0);
    }
    EXPECT_EQ(sent().size(), 0U);
}

TEST_F(Meeting, HasATitleWhoseCharactersAreCountedAsItsServiceCountsThem) {
    const auto titleOf = [](std::size_t count) {
        std::string title;
        for (std::size_t i = 0; i < count; ++i) {
            title += "e\xCC\x81"; // one character of two code points
        }
        return title;
    };
    const std::pair<std::string, std::size_t> limits[] = {{"zoom", 200}, {"goto", 100}};
    for (const auto& [service, limit] : limits) {
        const auto passedBy = [&](std::size_t count) {
            return meeting({"create", service, "--title", titleOf(count), "--dry-run", "--json"})
                .json()
                .find("limits")
                ->asArray()
                ->size();
        };
        EXPECT_EQ(passedBy(limit), 0U) << service;
        EXPECT_EQ(passedBy(limit + 1), 1U) << service;
        EXPECT_EQ(meeting({"create", service, "--title", titleOf(limit)}).status, 0) << service;
        EXPECT_EQ(meeting({"create", service, "--title", titleOf(limit + 1)}).status, 1) << service;
    }
}

TEST_F(Meeting, HasCommandsThatAreListed) {
    EXPECT_EQ(run({"meeting"}).output, "zelto meeting create  Make a meeting\n"
                                       "zelto meeting update  Change a meeting\n"
                                       "zelto meeting delete  Delete a meeting\n");
    EXPECT_EQ(run({"meeting", "--json"}).output,
              "{\"result\":\"success\",\"commands\":[\"meeting create\",\"meeting update\",\"meeting "
              "delete\"]}\n");
}

TEST_F(Meeting, ServicesAreListedAsSuch) {
    const auto listed = run({"services"}).output;
    EXPECT_TRUE(listed.contains("ZoomMeeting       Zoom              sign-in       meetings\n")) << listed;
}

TEST_F(Meeting, AccountsOfTeamsWithoutAWorkingPlanAreNotConnected) {
    sandbox->setMeetings({.licenses = {{{"Disabled", "Disabled"}}}});
    const auto refused = run({"connect", "teams", "--follow", "--name", "home"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(firstLine(refused), "zelto: dataLoadingError: Microsoft Teams makes no meetings for this user, "
                                  "so nothing was kept: " +
                                      std::string(MicrosoftTeamsClient::noWorkingPlan) + ".");
    sandbox->setMeetings({.personalAccount = true});
    const auto personal = run({"connect", "teams", "--follow", "--name", "home"});
    EXPECT_TRUE(firstLine(personal).starts_with(
        "zelto: dataLoadingError: Microsoft Teams did not say that this account can make meetings, so nothing "
        "was kept; it says: \""))
        << personal.errorOutput;
    EXPECT_FALSE(run({"accounts"}).output.contains("home"));
    sandbox->setMeetings({.licenses = {{{"Disabled"}, {"Success"}}}});
    EXPECT_EQ(run({"connect", "teams", "--follow", "--name", "home"}).status, 0);
}

} // namespace zelto
