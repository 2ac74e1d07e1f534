// The handlers on their own, without a network.

#include "MCPCalls.h"

#include <ZeltoIntegrations/MCP/MCPHTTPDisconnectHandler.h>
#include <ZeltoIntegrations/MCP/MCPHTTPNotificationHandler.h>
#include <ZeltoIntegrations/MCP/MCPHTTPRequestHandler.h>

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zelto {
namespace {

// A handler of each kind for the request with the id "1", in a session, and its results.
template <class T> struct Delivered {
    std::vector<MCPResult<T>> results;
    std::shared_ptr<std::optional<std::string>> sessionID =
        std::make_shared<std::optional<std::string>>("held");

    MCPHTTPSessionIDReference reference() const {
        return {[held = sessionID] { return *held; },
                [held = sessionID](std::optional<std::string> value) { *held = std::move(value); }};
    }

    MCPCompletion<T> completion() {
        return [this](MCPResult<T> result) { results.push_back(std::move(result)); };
    }
};

struct Request : Delivered<MCPResponse> {
    ~Request() { handler.complete({}); }

    MCPHTTPRequestHandler handler{MCPRequestID::string("1"), reference(), 100, completion()};
};

struct Notification : Delivered<void> {
    ~Notification() { handler.complete({}); }

    MCPHTTPNotificationHandler handler{reference(), 100, completion()};
};

struct Disconnect : Delivered<void> {
    ~Disconnect() { handler.complete({}); }

    MCPHTTPDisconnectHandler handler{reference(), 100, completion()};
};

MCPHTTPTaskEvent head(int status, std::string contentType = "application/json") {
    HTTPHeaders headers;
    headers.set("Content-Type", std::move(contentType));
    return {
        std::make_shared<const HTTPURLResponse>(URL::parse("http://127.0.0.1/").value(), status, headers)};
}

MCPHTTPTaskEvent piece(std::string_view bytes) {
    return {bytes};
}

bool goesOn(const MCPHTTPTaskDecision& decision) {
    return !decision.outcome;
}

bool succeeds(const MCPHTTPTaskDecision& decision) {
    return decision.outcome && *decision.outcome;
}

const std::unexpected<MCPError> lost = failure(MCPError(URLError{URLErrorCode::connectionLost, "gone"}));
const std::unexpected<MCPError> noHead = failed(MCPClientError::invalidHTTPResponse());
const std::string theResponse = respondTo("\"1\"", "true");

TEST(MCPHTTPTaskHandler, EndingBeforeTheHeadIsAResponseToANotificationAlone) {
    Request request;
    request.handler.complete({});
    EXPECT_EQ(request.results, std::vector<MCPResult<MCPResponse>>{noHead});
    Notification notification;
    notification.handler.complete({});
    EXPECT_EQ(notification.results, std::vector{MCPResult<void>()});
    Disconnect disconnect;
    disconnect.handler.complete({});
    EXPECT_EQ(disconnect.results, std::vector<MCPResult<void>>{noHead});
    EXPECT_EQ(*disconnect.sessionID, "held");
}

TEST(MCPHTTPTaskHandler, DataBeforeTheHeadIsPassedOver) {
    Request request;
    EXPECT_TRUE(goesOn(request.handler.handle(piece(theResponse))));
    request.handler.complete({});
    EXPECT_EQ(request.results, std::vector<MCPResult<MCPResponse>>{noHead});
    Notification notification;
    EXPECT_TRUE(goesOn(notification.handler.handle(piece("x"))));
    Disconnect disconnect;
    EXPECT_TRUE(goesOn(disconnect.handler.handle(piece("x"))));
    EXPECT_TRUE(notification.results.empty() && disconnect.results.empty());
    notification.handler.complete(lost);
    disconnect.handler.complete(lost);
    EXPECT_EQ(notification.results, std::vector<MCPResult<void>>{lost});
    EXPECT_EQ(disconnect.results, std::vector<MCPResult<void>>{lost});
}

TEST(MCPHTTPTaskHandler, CompletesOnce) {
    Request request;
    Notification notification;
    Disconnect disconnect;
    for (int time = 0; time < 2; ++time) {
        request.handler.complete(lost);
        notification.handler.complete(lost);
        disconnect.handler.complete(lost);
        request.handler.complete({});
        notification.handler.complete({});
        disconnect.handler.complete({});
    }
    EXPECT_EQ(request.results, std::vector<MCPResult<MCPResponse>>{lost});
    EXPECT_EQ(notification.results, std::vector<MCPResult<void>>{lost});
    EXPECT_EQ(disconnect.results, std::vector<MCPResult<void>>{lost});
}

TEST(MCPHTTPTaskHandler, WhatIsKnownByThenIsDeliveredWhateverTheEnd) {
    Request request;
    EXPECT_TRUE(goesOn(request.handler.handle(head(200, "text/event-stream"))));
    EXPECT_TRUE(goesOn(request.handler.handle(piece(eventOf(respondTo("\"2\"", "0"))))));
    EXPECT_TRUE(succeeds(request.handler.handle(piece(eventOf(theResponse)))));
    request.handler.complete(lost);
    EXPECT_EQ(request.results, (std::vector<MCPResult<MCPResponse>>{
                                   MCPResponse{MCPRequestID::string("1"), JSONValue(true), {}}}));
    Notification notification;
    EXPECT_TRUE(succeeds(notification.handler.handle(head(202))));
    notification.handler.complete(lost);
    EXPECT_EQ(notification.results, std::vector{MCPResult<void>()});
    for (const int status : {200, 405}) {
        Disconnect disconnect;
        EXPECT_TRUE(succeeds(disconnect.handler.handle(head(status))));
        disconnect.handler.complete(lost);
        EXPECT_EQ(disconnect.results, std::vector{MCPResult<void>()});
        EXPECT_EQ(*disconnect.sessionID, std::nullopt);
    }
}

TEST(MCPHTTPTaskHandler, ANotificationThatGetsAnotherTwoHundredWaitsForTheEnd) {
    for (const int status : {200, 204}) {
        Notification notification;
        EXPECT_TRUE(goesOn(notification.handler.handle(head(status))));
        EXPECT_TRUE(goesOn(notification.handler.handle(piece("x"))));
        EXPECT_TRUE(notification.results.empty());
        notification.handler.complete({});
        EXPECT_EQ(notification.results, std::vector{MCPResult<void>()});
    }
}

TEST(MCPHTTPTaskHandler, ABodyIsDecodedAtItsEndAlone) {
    Request request;
    EXPECT_TRUE(goesOn(request.handler.handle(head(200))));
    EXPECT_TRUE(goesOn(request.handler.handle(piece(theResponse.substr(0, 10)))));
    EXPECT_TRUE(goesOn(request.handler.handle(piece(theResponse.substr(10)))));
    EXPECT_TRUE(request.results.empty());
    request.handler.complete({});
    ASSERT_EQ(request.results.size(), 1u);
    EXPECT_EQ(request.results[0]->result, JSONValue(true));
}

const std::unexpected<MCPError> tooLarge =
    failure(MCPError(URLError{URLErrorCode::responseTooLarge, "The server's response is too large."}));

TEST(MCPHTTPTaskHandler, ABodyEndsBeyondTheLimit) {
    const std::string atLimit = respondTo("\"1\"", '"' + std::string(62, 'x') + '"');
    ASSERT_EQ(atLimit.size(), 100u);
    Request request;
    EXPECT_TRUE(goesOn(request.handler.handle(head(200))));
    EXPECT_TRUE(goesOn(request.handler.handle(piece(atLimit))));
    EXPECT_EQ(request.handler.handle(piece(" ")).outcome, tooLarge);
    request.handler.complete({});
    EXPECT_TRUE(request.results.at(0));
    Notification notification;
    EXPECT_TRUE(goesOn(notification.handler.handle(head(200))));
    EXPECT_TRUE(goesOn(notification.handler.handle(piece(atLimit))));
    EXPECT_EQ(notification.handler.handle(piece("x")).outcome, tooLarge);
}

TEST(MCPHTTPTaskHandler, ABodyWhoseLengthIsBeyondTheLimitIsNotRead) {
    for (const auto& [length, isRead] : {std::pair("100", true), std::pair("101", false)}) {
        Request request;
        HTTPHeaders headers;
        headers.set("Content-Type", "application/json");
        headers.set("Content-Length", length);
        const auto decision = request.handler.handle(
            {std::make_shared<const HTTPURLResponse>(URL::parse("http://127.0.0.1/").value(), 200, headers)});
        EXPECT_EQ(goesOn(decision), isRead);
        EXPECT_TRUE(isRead || decision.outcome == tooLarge);
    }
}

TEST(MCPHTTPTaskHandler, TheLimitOfAStreamIsForOneEvent) {
    Request request;
    EXPECT_TRUE(goesOn(request.handler.handle(head(200, "text/event-stream"))));
    const auto other = eventOf(respondTo("\"2\"", '"' + std::string(62, 'x') + '"'));
    for (int count = 0; count < 100; ++count) {
        EXPECT_TRUE(goesOn(request.handler.handle(piece(other))));
    }
    EXPECT_TRUE(succeeds(request.handler.handle(piece(eventOf(theResponse)))));
    const auto longer = eventOf(respondTo("\"1\"", '"' + std::string(63, 'x') + '"'));
    Request whole;
    EXPECT_TRUE(goesOn(whole.handler.handle(head(200, "text/event-stream"))));
    EXPECT_EQ(whole.handler.handle(piece(longer)).outcome, tooLarge);
    for (const std::string line : {"data: ", ": ", "id: "}) {
        Request open;
        EXPECT_TRUE(goesOn(open.handler.handle(head(200, "text/event-stream"))));
        EXPECT_TRUE(goesOn(open.handler.handle(piece(line + std::string(60, 'x')))));
        EXPECT_EQ(open.handler.handle(piece(std::string(60, 'x'))).outcome, tooLarge) << line;
    }
}

} // namespace
} // namespace zelto
