#include <ZeltoIntegrations/Client/ServiceOutcome.h>

#include <Support/LogCapture.h>

#include <gtest/gtest.h>

#include <vector>

namespace zelto {

namespace {

using E = ServiceClientError;
using Lines = std::vector<std::string>;

const URL& url() {
    static const auto all = *URL::parse("https://api.example/1/items?limit=5");
    return all;
}

ServiceResult<ServiceResponse> outcomeOf(int status, std::string_view body) {
    return serviceOutcome(url(), dataOf(body),
                          std::make_shared<HTTPURLResponse>(url(), status, HTTPHeaders()), std::nullopt);
}

std::optional<E> errorOf(int status, std::string_view body = "") {
    const auto outcome = outcomeOf(status, body);
    return outcome ? std::nullopt : std::optional(outcome.error());
}

std::optional<E> expectedError(int status) {
    if (status >= 200 && status <= 299) {
        return std::nullopt;
    }
    switch (status) {
    case 401:
        return E::authorizationError;
    case 403:
        return E::forbidden;
    case 404:
        return E::itemNotFound;
    case 429:
        return E::toManyRequests;
    }
    return status >= 500 ? E::serviceInternalError : E::apiCallError;
}

ServiceResponse responseOf(int status, std::string_view body) {
    return {url(), status, dataOf(body)};
}

template <class T> ServiceResult<T> valueOf(int status, std::string_view body) {
    return serviceValue<T>(responseOf(status, body), JSONDecoder());
}

} // namespace

TEST(ServiceOutcome, EveryStatusHasItsMeaning) {
    for (int status = 0; status <= 999; ++status) {
        EXPECT_EQ(errorOf(status), expectedError(status)) << status;
    }
}

TEST(ServiceOutcome, AResponseOfSuccessIsGivenAsItCame) {
    for (const int status : {200, 201, 204, 299}) {
        const auto outcome = outcomeOf(status, "the body");
        ASSERT_TRUE(outcome);
        EXPECT_EQ(outcome->status, status);
        EXPECT_EQ(outcome->body, dataOf("the body"));
        EXPECT_EQ(outcome->url, url());
    }
}

TEST(ServiceOutcome, AnInvalidGrantIsAnAuthorizationErrorWhereTheStatusSaysNothing) {
    for (const int status : {0, 1, 100, 199, 300, 302, 400, 402, 405, 412, 428, 430, 499}) {
        EXPECT_EQ(errorOf(status, R"({"error":"invalid_grant"})"), E::authorizationError) << status;
        EXPECT_EQ(errorOf(status, R"({"error":"invalid_grant","x":[1]})"), E::authorizationError) << status;
        for (const auto* other : {R"({"error":"invalid_client"})", R"({"error":"INVALID_GRANT"})",
                                  R"({"error":["invalid_grant"]})", R"({"error":{"code":"invalid_grant"}})",
                                  R"(["invalid_grant"])", "invalid_grant", "", "{", "\xff"}) {
            EXPECT_EQ(errorOf(status, other), E::apiCallError) << status << " " << other;
        }
    }
    for (const int status : {403, 404, 429, 500, 503}) {
        EXPECT_EQ(errorOf(status, R"({"error":"invalid_grant"})"), expectedError(status)) << status;
    }
}

TEST(ServiceOutcome, TwoTextsOfAServersErrorMeanAnInvalidAccount) {
    for (const int status : {500, 502, 503, 599, 600, 999}) {
        EXPECT_EQ(errorOf(status, "ResponseCode 412"), E::invalidAccount) << status;
        EXPECT_EQ(errorOf(status, "before ResponseCode 4123 behind"), E::invalidAccount) << status;
        EXPECT_EQ(errorOf(status, "<p>Status 500 - 403 Forbidden</p>"), E::invalidAccount) << status;
        EXPECT_EQ(errorOf(status, "ResponseCode 412 Status 500 - 403 Forbidden"), E::invalidAccount);
        for (const auto* other : {"responsecode 412", "ResponseCode  412", "ResponseCode 41",
                                  "Status 500 - 403 forbidden", "403 Forbidden", ""}) {
            EXPECT_EQ(errorOf(status, other), E::serviceInternalError) << status << " " << other;
        }
    }
    // A body that is no text counts as an empty one.
    EXPECT_EQ(errorOf(503, "ResponseCode 412 \xff"), E::serviceInternalError);
    EXPECT_EQ(errorOf(412, "ResponseCode 412"), E::apiCallError);
    EXPECT_EQ(errorOf(499, "Status 500 - 403 Forbidden"), E::apiCallError);
    EXPECT_EQ(errorOf(412, R"({"error":"invalid_grant"})"), E::authorizationError);
}

TEST(ServiceOutcome, AResponseThatIsNotHTTPIsNoSuccess) {
    const auto response = std::make_shared<URLResponse>(url());
    EXPECT_EQ(serviceOutcome(url(), dataOf("{}"), response, std::nullopt).error(), E::apiCallError);
    EXPECT_EQ(serviceOutcome(url(), dataOf(R"({"error":"invalid_grant"})"), response, std::nullopt).error(),
              E::authorizationError);
    EXPECT_EQ(serviceOutcome(url(), dataOf("{}"), nullptr, std::nullopt).error(), E::apiCallError);
}

TEST(ServiceOutcome, AnErrorOrNoDataIsAConnectionErrorWhateverTheStatus) {
    for (const int status : {200, 401, 404, 503}) {
        const auto response = std::make_shared<HTTPURLResponse>(url(), status, HTTPHeaders());
        const URLError error{URLErrorCode::connectionLost, "The connection ended."};
        EXPECT_EQ(serviceOutcome(url(), dataOf("{}"), response, error).error(), E::connectionError);
        EXPECT_EQ(serviceOutcome(url(), std::nullopt, response, error).error(), E::connectionError);
        EXPECT_EQ(serviceOutcome(url(), std::nullopt, response, std::nullopt).error(), E::connectionError);
    }
}

TEST(ServiceOutcome, AConnectionErrorIsLogged) {
    const LogCapture log;
    serviceOutcome(url(), std::nullopt, nullptr, URLError{URLErrorCode::timedOut, "Nothing moved."});
    serviceOutcome(url(), std::nullopt, std::make_shared<HTTPURLResponse>(url(), 200, HTTPHeaders()),
                   std::nullopt);
    EXPECT_EQ(log.messages(LogLevel::error),
              (Lines{"Connection error Nothing moved. for request: https://api.example/1/items?limit=5 with "
                     "response nil",
                     "Connection error nil for request: https://api.example/1/items?limit=5 with response "
                     "HTTP 200 response from https://api.example/1/items"}));
    EXPECT_EQ(log.messages().size(), 2u);
}

TEST(ServiceOutcome, AStatusOfFailureIsLoggedWithTheBody) {
    const LogCapture log;
    outcomeOf(404, "no such \xc3\xa4 item\nat all");
    outcomeOf(500, "\xff");
    EXPECT_EQ(log.messages(LogLevel::error),
              (Lines{"API call error for request: https://api.example/1/items?limit=5\nwith status code: "
                     "404\nwith error response: no such \xc3\xa4 item\nat all",
                     "API call error for request: https://api.example/1/items?limit=5\nwith status code: "
                     "500\nwith error response: "}));
    EXPECT_EQ(log.messages().size(), 2u);
}

TEST(ServiceOutcome, ASuccessIsTraced) {
    const LogCapture log;
    outcomeOf(200, "{}");
    EXPECT_EQ(log.messages(LogLevel::trace),
              (Lines{"API call success for request: https://api.example/1/items?limit=5"}));
    EXPECT_EQ(log.messages().size(), 1u);
}

TEST(ServiceValue, ATextIsTheBody) {
    EXPECT_EQ(valueOf<std::string>(200, "gr\xc3\xbc\xc3\x9f"), "gr\xc3\xbc\xc3\x9f");
    EXPECT_EQ(valueOf<std::string>(200, "\"quoted\""), "\"quoted\"");
    EXPECT_EQ(valueOf<std::string>(204, ""), "");
    EXPECT_EQ(valueOf<std::string>(200, "\"\xff\"").error(), E::dataParseError);
}

TEST(ServiceValue, BytesAreTheBody) {
    EXPECT_EQ(valueOf<Data>(200, "\xff\x01"), dataOf("\xff\x01"));
    EXPECT_EQ(valueOf<Data>(200, ""), Data());
}

TEST(ServiceValue, NothingNeedsNoBodyWithStatus204Alone) {
    EXPECT_TRUE(valueOf<Empty>(204, ""));
    EXPECT_TRUE(valueOf<Empty>(204, "no JSON"));
    EXPECT_TRUE(valueOf<Empty>(200, "{}"));
    EXPECT_EQ(valueOf<Empty>(200, "").error(), E::dataParseError);
    EXPECT_EQ(valueOf<Empty>(201, "ok").error(), E::dataParseError);
}

TEST(ServiceValue, ARecordIsTheBodysJSONByTheGivenDecoder) {
    EXPECT_EQ(valueOf<OAuthToken>(200, R"({"access_token":"a"})"), (OAuthToken{"a", std::nullopt, 0}));
    EXPECT_EQ(valueOf<OAuthToken>(204, "").error(), E::dataParseError);
    const JSONDecoder iso{.dateStrategy = DateStrategy::iso8601};
    EXPECT_EQ(serviceValue<Date>(responseOf(200, "\"2001-01-01T00:01:00Z\""), iso),
              Date::fromReferenceSeconds(60));
    EXPECT_EQ(serviceValue<Date>(responseOf(200, "\"2001-01-01T00:01:00Z\""), JSONDecoder()).error(),
              E::dataParseError);
}

TEST(ServiceValue, WhatCannotBeReadIsLoggedWithoutItsContent) {
    const LogCapture log;
    valueOf<OAuthErrorBody>(200, R"({"error":123456789})");
    EXPECT_EQ(log.messages(),
              Lines{"Data parse error for request: https://api.example/1/items?limit=5 with error: error: "
                    "expected a string, found a number"});
}

} // namespace zelto
