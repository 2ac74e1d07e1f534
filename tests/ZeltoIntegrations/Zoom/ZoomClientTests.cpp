#include <ZeltoIntegrations/Zoom/ZoomRecords.h>

#include <Support/MeetingFacts.h>
#include <Support/Suites/MeetingSuite.h>

#include <gtest/gtest.h>

#include <limits>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;

constexpr auto headers = "Content-Type: application/json\nAccept: application/json\n"
                         "Authorization: Bearer token\n";

using ZoomClientTest = MeetingFixture<ZoomFacts>;

} // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(Zoom, Meetings, ZoomFacts);

TEST_F(ZoomClientTest, AMeetingIsMadeByOneRequest) {
    EXPECT_EQ(create(*client(), "Über \"uns\"", at("10:00:00"), at("10:45:00")), ZoomFacts::details());
    EXPECT_EQ(service.texts(), Texts{"POST /v2/users/me/meetings\n" + std::string(headers) +
                                     "Content-Length: 84\n\n"
                                     R"({"topic":"Über \"uns\"","type":2,)"
                                     R"("start_time":"2026-12-24T10:00:00Z","duration":45})"});
    EXPECT_EQ(service.server.requests().front().headers.value("Host"), "api.zoom.us");
}

TEST_F(ZoomClientTest, AMeetingIsChangedByOneRequest) {
    EXPECT_TRUE(update(*client(), "92674392836", "T", at("10:00:00"), at("11:00:00")));
    EXPECT_EQ(service.texts(),
              Texts{"PATCH /v2/meetings/92674392836\n" + std::string(headers) +
                    "Content-Length: 72\n\n"
                    R"({"topic":"T","type":2,"start_time":"2026-12-24T10:00:00Z","duration":60})"});
}

TEST_F(ZoomClientTest, AMeetingIsDeletedByOneRequest) {
    EXPECT_TRUE(remove(*client(), "92674392836"));
    EXPECT_EQ(service.texts(), Texts{"DELETE /v2/meetings/92674392836\n" + std::string(headers) + "\n"});
}

TEST_F(ZoomClientTest, WithoutBothDatesAMeetingIsRecurringAtNoTime) {
    const auto recurring = R"({"topic":"T","type":3})";
    EXPECT_EQ(bodyFor(std::nullopt, std::nullopt), recurring);
    EXPECT_EQ(bodyFor(at("10:00:00"), std::nullopt), recurring);
    EXPECT_EQ(bodyFor(std::nullopt, at("10:00:00")), recurring);
}

TEST_F(ZoomClientTest, WithoutATitleTheTopicIsEmpty) {
    EXPECT_TRUE(create(*client(), std::nullopt));
    EXPECT_EQ(service.server.requests().back().body, R"({"topic":"","type":3})");
}

TEST_F(ZoomClientTest, TheDurationIsCutToWholeMinutes) {
    const auto duration = [](const std::string& end) {
        return zoomMeetingRequest("T", at("10:00:00"), at(end)).duration;
    };
    EXPECT_EQ(duration("10:45:00"), 45);
    EXPECT_EQ(duration("10:00:59"), 0);
    EXPECT_EQ(duration("10:01:00"), 1);
    EXPECT_EQ(duration("10:00:00"), 0);
    EXPECT_EQ(duration("09:58:30"), -1);
}

TEST_F(ZoomClientTest, TheDurationOfDatesThatCannotBeWrittenIsZero) {
    const auto endless = Date::fromReferenceSeconds(std::numeric_limits<double>::infinity());
    const auto none = Date::fromReferenceSeconds(std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(zoomMeetingRequest("T", Date(), endless).duration, 0);
    EXPECT_EQ(zoomMeetingRequest("T", none, Date()).duration, 0);
}

TEST_F(ZoomClientTest, TooManyRequestsAreAnInternalError) {
    service.refuse("POST", 429);
    EXPECT_EQ(create(*client()).error(), MeetingCreatorError::internalError);
}

TEST_F(ZoomClientTest, AnIdentifierBeyond32BitsIsKeptWhole) {
    service.onRequest = [](const auto&) {
        return PlayedResponse::json(R"({"id":9223372036854775807})", 201);
    };
    EXPECT_EQ(create(*client()), (ConferenceDetails{"9223372036854775807", std::nullopt, std::nullopt,
                                                    ServiceType::ZoomMeeting}));
}

TEST(ZoomRecords, HaveTheServicesNumbersAndLeaveOutWhatIsAbsent) {
    const JSONEncoder encoder{.dateStrategy = DateStrategy::iso8601};
    const ZoomMeetingRequest whole{.topic = "T",
                                   .timezone = "Europe/Berlin",
                                   .password = "p",
                                   .type = ZoomMeetingType::recurringMeetingFixedTime,
                                   .start_time = Date(),
                                   .duration = 5};
    EXPECT_EQ(encoder.encode(whole).value(), R"({"topic":"T","timezone":"Europe/Berlin","password":"p",)"
                                             R"("type":8,"start_time":"2001-01-01T00:00:00Z","duration":5})");
    EXPECT_EQ(encoder.encode(ZoomMeetingRequest()).value(), R"({"topic":""})");
    EXPECT_EQ(rawValue(ZoomMeetingType::instantMeeting), 1);
    EXPECT_EQ(rawValue(ZoomMeetingType::scheduledMeeting), 2);
    EXPECT_EQ(rawValue(ZoomMeetingType::recurringMeeting), 3);
    EXPECT_EQ(fromRawValue<ZoomMeetingType>(4), std::nullopt);
}

} // namespace zelto
