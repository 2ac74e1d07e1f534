#include <ZeltoIntegrations/MicrosoftTeams/MicrosoftTeamsRecords.h>

#include <Support/MeetingFacts.h>
#include <Support/Suites/MeetingSuite.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;
using Checked = Result<void, IntegrationLoadError>;

constexpr auto headers = "Content-Type: application/json\nAccept: application/json\n"
                         "Authorization: Bearer token\n";

class MicrosoftTeamsClientTest : public MeetingFixture<MicrosoftTeamsFacts> {
  protected:
    static Checked check(IntegrationsServiceDataFetcher& fetcher) {
        Completed<Checked> completed;
        fetcher.fetchServiceData(completed.callback<Completion<void, IntegrationLoadError>>());
        return completed.value();
    }

    Checked checkWith(const std::string& licences) {
        service.onRequest = [licences](const auto&) { return PlayedResponse::json(licences); };
        return check(*client());
    }

    // Licences with plans of these statuses.
    static std::string licences(const std::vector<Texts>& statuses) {
        std::string text;
        for (const auto& plans : statuses) {
            text += (text.empty() ? "" : ",") + licence(plans);
        }
        return R"({"@odata.context":"c","value":[)" + text + "]}";
    }

  private:
    static std::string licence(const Texts& statuses) {
        std::string plans;
        for (const auto& status : statuses) {
            plans += std::string(plans.empty() ? "" : ",") +
                     R"({"servicePlanId":"p","servicePlanName":"TEAMS1","provisioningStatus":")" + status +
                     R"(","appliesTo":"User"})";
        }
        return R"({"id":"l","skuId":"s","skuPartNumber":"E3","servicePlans":[)" + plans + "]}";
    }
};

} // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(MicrosoftTeams, Meetings, MicrosoftTeamsFacts);

TEST_F(MicrosoftTeamsClientTest, AMeetingIsMadeByOneRequest) {
    EXPECT_EQ(create(*client(), "T", at("10:00:00"), at("10:45:00")), MicrosoftTeamsFacts::details());
    EXPECT_EQ(service.texts(), Texts{"POST /v1.0/me/onlineMeetings\n" + std::string(headers) +
                                     "Content-Length: 91\n\n"
                                     R"({"subject":"T","startDateTime":"2026-12-24T10:00:00Z",)"
                                     R"("endDateTime":"2026-12-24T10:45:00Z"})"});
    EXPECT_EQ(service.server.requests().front().headers.value("Host"), "graph.microsoft.com");
}

TEST_F(MicrosoftTeamsClientTest, AMeetingIsChangedByOneRequest) {
    EXPECT_TRUE(update(*client(), "MSpk*YzE3", "T", std::nullopt, at("11:00:00")));
    EXPECT_EQ(service.texts(), Texts{"PATCH /v1.0/me/onlineMeetings/MSpk*YzE3\n" + std::string(headers) +
                                     "Content-Length: 52\n\n"
                                     R"({"subject":"T","endDateTime":"2026-12-24T11:00:00Z"})"});
}

TEST_F(MicrosoftTeamsClientTest, AMeetingIsDeletedByOneRequest) {
    EXPECT_TRUE(remove(*client(), "MSpkYzE3"));
    EXPECT_EQ(service.texts(),
              Texts{"DELETE /v1.0/me/onlineMeetings/MSpkYzE3\n" + std::string(headers) + "\n"});
}

TEST_F(MicrosoftTeamsClientTest, WhatIsAbsentIsLeftOut) {
    const auto one = client();
    const auto sent = [&] { return service.server.requests().back().body; };
    EXPECT_TRUE(update(*one, "1", std::nullopt, at("10:00:00")));
    EXPECT_EQ(sent(), R"({"startDateTime":"2026-12-24T10:00:00Z"})");
    EXPECT_TRUE(update(*one, "1", std::nullopt));
    EXPECT_EQ(sent(), "{}");
    EXPECT_TRUE(create(*one, ""));
    EXPECT_EQ(sent(), R"({"subject":""})");
    EXPECT_TRUE(create(*one, std::nullopt));
    EXPECT_EQ(sent(), "{}");
}

TEST_F(MicrosoftTeamsClientTest, AChangeIsDoneWhenTheServiceRespondsWithTheMeeting) {
    service.onRequest = [](const auto&) { return PlayedResponse::json(MicrosoftTeamsFacts::created); };
    EXPECT_TRUE(update(*client(), "1"));
}

TEST_F(MicrosoftTeamsClientTest, LicencesAreAskedForByOneRequestWithADoubleSlash) {
    EXPECT_TRUE(checkWith(licences({{"Success"}})));
    EXPECT_EQ(service.texts(), Texts{"GET /v1.0//me/licenseDetails\nAuthorization: Bearer token\n\n"});
}

TEST_F(MicrosoftTeamsClientTest, AnyPlanOfAnyLicenceThatWorksWillDo) {
    EXPECT_TRUE(checkWith(licences({{"Disabled", "PendingInput"}, {"Error", "Success"}})));
    EXPECT_TRUE(checkWith(licences({{}, {"PendingActivation", "PendingProvisioning", "Success"}})));
}

TEST_F(MicrosoftTeamsClientTest, AUserWithoutAWorkingPlanIsRefusedAndTheReasonIsKept) {
    for (const auto& each : std::vector<std::vector<Texts>>{
             {{"Disabled", "Disabled"}}, {}, {{}}, {{"Error"}, {"PendingInput"}}}) {
        service.onRequest = [text = licences(each)](const auto&) { return PlayedResponse::json(text); };
        const auto one = client();
        EXPECT_EQ(check(*one).error(), IntegrationLoadError::internalError);
        EXPECT_EQ(one->lastRefusal(),
                  (ServiceRefusal{std::string(MicrosoftTeamsClient::noWorkingPlan), false}));
    }
}

TEST_F(MicrosoftTeamsClientTest, AnUnknownStatusOfAPlanFailsTheCheckAlsoBesideAWorkingOne) {
    const LogCapture log;
    EXPECT_EQ(checkWith(licences({{"Success"}, {"Suspended"}})).error(), IntegrationLoadError::internalError);
    EXPECT_EQ(log.messages(LogLevel::error).back(),
              "Failed to get licenseDetails with error: dataParseError");
}

TEST_F(MicrosoftTeamsClientTest, EveryFailureOfTheCheckIsAnInternalErrorAndIsLogged) {
    for (const auto& failing : failingResponses()) {
        const LogCapture log;
        service.onRequest = [&](const auto&) { return failing.response; };
        EXPECT_EQ(check(*client()).error(), IntegrationLoadError::internalError) << failing.name;
        EXPECT_EQ(log.messages(LogLevel::error).back(),
                  "Failed to get licenseDetails with error: " + failing.error)
            << failing.name;
    }
    for (const auto& failing : unreadableResponses()) {
        service.onRequest = [&](const auto&) { return failing.response; };
        EXPECT_EQ(check(*client()).error(), IntegrationLoadError::internalError) << failing.name;
    }
}

TEST_F(MicrosoftTeamsClientTest, WhatTheServiceSaysOfARefusedCheckIsKept) {
    service.onRequest = [](const auto&) {
        return PlayedResponse::json(R"({"error":{"code":"Forbidden","message":"No personal accounts."}})",
                                    403);
    };
    const auto one = client();
    EXPECT_FALSE(check(*one));
    EXPECT_EQ(one->lastRefusal(), (ServiceRefusal{"No personal accounts.", false}));
}

TEST(MicrosoftTeamsRecords, LicencesAreReadWhole) {
    const auto read = JSONDecoder().decode<MSLicenceResponse>(
        R"({"@odata.context":"c","value":[{"id":"l","skuId":"s","skuPartNumber":"E3","more":1,)"
        R"("servicePlans":[{"servicePlanId":"p","servicePlanName":"TEAMS1",)"
        R"("provisioningStatus":"PendingProvisioning","appliesTo":"Company"}]}]})");
    using Status = MSLicenceServicePlanProvisioningStatus;
    const MSLicenceServicePlan plan{"p", "TEAMS1", Status::pendingProvisioning, "Company"};
    EXPECT_EQ(read.value(), (MSLicenceResponse{"c", {{"l", "s", "E3", {plan}}}}));
    EXPECT_EQ(JSONDecoder().decode<MSLicenceResponse>(R"({"value":[]})").value(), MSLicenceResponse());
    EXPECT_FALSE(JSONDecoder().decode<MSLicenceResponse>(R"({"@odata.context":"c"})"));
    const std::vector statuses{Status::success,      Status::disabled,          Status::error,
                               Status::pendingInput, Status::pendingActivation, Status::pendingProvisioning};
    EXPECT_EQ(JSONEncoder().encode(statuses).value(),
              R"(["Success","Disabled","Error","PendingInput","PendingActivation","PendingProvisioning"])");
}

} // namespace zelto
