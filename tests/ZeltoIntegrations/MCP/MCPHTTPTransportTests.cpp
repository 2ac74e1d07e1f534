#include "MCPTransportCalls.h"

#include <Support/Event.h>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace zelto {
namespace {

using Session = MCPTransportInSession;

TEST(MCPHTTPTransport, SendsAMessageAsOnePostWithoutASessionAtFirst) {
    TestHTTPServer server([](const ReceivedRequest& request) { return jsonResponse(request, "1"); });
    auto transport = transportTo(server);
    const auto response = send(transport, "a", "initialize");
    ASSERT_TRUE(response);
    EXPECT_EQ(*response, (MCPResponse{MCPRequestID::string("a"), JSONValue(1), {}}));
    EXPECT_EQ(server.texts(),
              std::vector<std::string>{"POST /mcp\nAccept: application/json, text/event-stream\n"
                                       "Content-Type: application/json\nContent-Length: 48\n\n"
                                       R"({"jsonrpc":"2.0","id":"a","method":"initialize"})"});
}

TEST(MCPHTTPTransport, AMessageWithoutJSONMakesNoRequest) {
    TestHTTPServer server(std::vector<PlayedResponse>{});
    auto transport = transportTo(server);
    std::optional<MCPResult<MCPResponse>> response;
    transport.send(MCPRequest{MCPRequestID::string("\xFF"), "m", {}},
                   [&](auto result) { response = result; });
    ASSERT_TRUE(response);
    EXPECT_EQ(*response, failure(MCPError(EncodingError{EncodingError::Reason::invalidUTF8, "id"})));
    std::optional<MCPResult<void>> sent;
    transport.send(MCPNotification{"\xFF", {}}, [&](auto result) { sent = result; });
    ASSERT_TRUE(sent);
    EXPECT_EQ(*sent, failure(MCPError(EncodingError{EncodingError::Reason::invalidUTF8, "method"})));
}

TEST(MCPHTTPTransport, TwoHundredAcceptsJSONAndEventStreamsByTheirNames) {
    for (const auto* type :
         {"Application/JSON; charset=utf-8", "application/json", "x; y=application/json"}) {
        const auto result =
            outcomeOf({.body = respondTo("\"1\"", "2"), .fields = {{"Content-Type", type}}}, aRequest);
        ASSERT_TRUE(result) << type;
        EXPECT_EQ(result->result, JSONValue(2));
    }
    for (const auto* type : {"Text/Event-Stream; charset=utf-8", "text/event-stream"}) {
        const auto result = outcomeOf(
            {.status = 299, .body = eventOf(respondTo("\"1\"", "2")), .fields = {{"content-type", type}}},
            aRequest);
        ASSERT_TRUE(result) << type;
        EXPECT_EQ(result->result, JSONValue(2));
    }
}

TEST(MCPHTTPTransport, AnotherContentTypeFailsAsItWasWritten) {
    const auto typed = [](int code, std::string type) {
        return status(code, {{"Content-Type", std::move(type)}});
    };
    EXPECT_EQ(outcomeOf(typed(200, "text/plain"), aRequest),
              failed(MCPClientError::unsupportedHTTPContentType("text/plain")));
    EXPECT_EQ(outcomeOf(typed(201, "Text/HTML"), aRequest),
              failed(MCPClientError::unsupportedHTTPContentType("Text/HTML")));
    EXPECT_EQ(outcomeOf(status(202), aRequest),
              failed(MCPClientError::unsupportedHTTPContentType(std::nullopt)));
    EXPECT_EQ(outcomeOf(status(204), aRequest),
              failed(MCPClientError::unsupportedHTTPContentType(std::nullopt)));
}

TEST(MCPHTTPTransport, StatusesThatNoRuleCoversFailWithTheNumber) {
    for (const int code : {300, 304, 400, 403, 405, 406, 409, 429, 500, 503, 599}) {
        const auto error = MCPClientError::unexpectedHTTPStatus(code);
        EXPECT_EQ(outcomeOf(status(code), aRequest), failed(error));
        EXPECT_EQ(outcomeOf(status(code), aNotification), failed(error));
        if (code != 405) {
            Session session(status(code));
            EXPECT_EQ(disconnect(session.transport), failed(error));
            EXPECT_EQ(session.transport.activeSessionID(), "s-1") << code;
        }
    }
}

TEST(MCPHTTPTransport, AnUnauthorisedMessageFailsWithWhatTheChallengeSays) {
    const auto url = URL::parse("https://h.example/.well-known/x").value();
    const std::vector<std::pair<std::optional<std::string>, MCPClientError>> rows{
        {std::nullopt, MCPClientError::authorizationChallenge(std::nullopt)},
        {"Basic realm=x", MCPClientError::authorizationChallenge("Basic realm=x")},
        {"Bearer realm=x", MCPClientError::authorizationChallengeMissingResourceMetadata()},
        {"Bearer resource_metadata=\"no scheme\"",
         MCPClientError::invalidAuthorizationResourceMetadata("no scheme")},
        {"Basic realm=x, Bearer resource_metadata=\"" + url.absoluteString() + "\"",
         MCPClientError::authorizationRequired(url)}};
    for (const auto& [header, error] : rows) {
        const auto response = header ? status(401, {{"www-authenticate", *header}}) : status(401);
        EXPECT_EQ(outcomeOf(response, aRequest), failed(error));
        EXPECT_EQ(outcomeOf(response, aNotification), failed(error));
        Session session(response);
        EXPECT_EQ(disconnect(session.transport), failed(error));
        EXPECT_EQ(session.transport.activeSessionID(), "s-1");
    }
}

TEST(MCPHTTPTransport, SeveralChallengeFieldsAreReadAsOne) {
    const auto response = status(
        401, {{"WWW-Authenticate", "Basic realm=x"}, {"WWW-Authenticate", "Bearer resource_metadata=a://b"}});
    EXPECT_EQ(outcomeOf(response, aRequest),
              failed(MCPClientError::authorizationRequired(URL::parse("a://b").value())));
}

TEST(MCPHTTPTransport, ANotificationWith202CompletesAtOnce) {
    Event isOver;
    TestHTTPServer server([&](const ReceivedRequest&) {
        return PlayedResponse{.closes = true,
                              .raw = "HTTP/1.1 202 Accepted\r\nContent-Length: 100000000\r\n\r\n",
                              .stream = [&](const Sender& send) {
                                  while (send(std::string(1 << 16, 'x'))) {
                                  }
                                  isOver.set();
                              }};
    });
    auto transport = transportTo(server);
    EXPECT_TRUE(notify(transport));
    isOver.wait();
}

TEST(MCPHTTPTransport, ANotificationWithAnotherStatusCompletesWhenTheBodyHasCome) {
    Event goOn;
    std::atomic<bool> bodyCame = false;
    TestHTTPServer server([&](const ReceivedRequest&) {
        return PlayedResponse{.raw = "HTTP/1.1 200 OK\r\nMcp-Session-Id: s\r\nContent-Length: 5\r\n\r\nab",
                              .stream = [&](const Sender& send) {
                                  goOn.wait();
                                  bodyCame = true;
                                  send("cde");
                              }};
    });
    auto transport = transportTo(server);
    Completed<MCPResult<void>> sent;
    transport.send(MCPNotification{"n", {}}, sent.callback<MCPCompletion<void>>());
    EXPECT_FALSE(sent.hasCome());
    goOn.set();
    EXPECT_TRUE(sent.value());
    EXPECT_TRUE(bodyCame);
    EXPECT_EQ(transport.activeSessionID(), "s");
}

TEST(MCPHTTPTransport, ANotificationWhoseBodyBreaksOffFails) {
    EXPECT_EQ(connectionError(outcomeOf(
                  PlayedResponse::bytes("HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nab"), aNotification)),
              URLErrorCode::connectionLost);
}

TEST(MCPHTTPTransport, AJSONBodyWithAnotherIDIsDeliveredAsItIs) {
    const auto result = outcomeOf(PlayedResponse::json(respondTo("99", "[1.0,1e400]")), aRequest);
    ASSERT_TRUE(result);
    EXPECT_EQ(result->id, MCPRequestID::int_(99));
    EXPECT_EQ(result->result->text(), "[1.0,1e400]");
}

TEST(MCPHTTPTransport, AJSONBodyThatIsNoResponseFailsWithWhatIsWrong) {
    EXPECT_EQ(outcomeOf(PlayedResponse::json(R"({"jsonrpc":"1.0","id":1})"), aRequest),
              failed(MCPClientError::invalidJSONRPCVersion("1.0")));
    EXPECT_EQ(outcomeOf(PlayedResponse::json(R"({"jsonrpc":"2.0","id":null})"), aRequest),
              failed(MCPClientError::invalidJSONRPCIdentifier()));
    for (const auto* body : {"", "ping", "{", "[]", R"({"jsonrpc":"2.0"})", "{} {}"}) {
        const auto result = outcomeOf(PlayedResponse::json(body), aRequest);
        ASSERT_FALSE(result);
        EXPECT_TRUE(std::holds_alternative<DecodingError>(result.error().value)) << body;
    }
}

TEST(MCPHTTPTransport, ConnectionErrorsComeThroughAsTheyAre) {
    EXPECT_EQ(connectionError(outcomeOf(PlayedResponse::reset(), aRequest)), URLErrorCode::connectionLost);
    EXPECT_EQ(connectionError(outcomeOf(PlayedResponse::bytes("no HTTP at all\r\n\r\n"), aRequest)),
              URLErrorCode::badResponse);
    std::optional<MCPHTTPTransport> orphan;
    {
        TestHTTPServer gone(std::vector<PlayedResponse>{});
        orphan.emplace(transportTo(gone));
    }
    EXPECT_EQ(connectionError(send(*orphan)), URLErrorCode::cannotConnect);
    MCPHTTPTransport plain(URL::parse("http://mcp.example/").value(), nullptr, std::nullopt,
                           URLSessionConfiguration::ephemeral());
    EXPECT_EQ(connectionError(send(plain)), URLErrorCode::invalidRequest);
}

TEST(MCPHTTPTransport, CompletesOnItsSerialQueueWhereARequestWasMade) {
    TestHTTPServer server([](const ReceivedRequest& request) { return jsonResponse(request, "1"); });
    auto transport = transportTo(server);
    std::atomic<int> running = 0;
    std::atomic<bool> overlapped = false;
    constexpr int calls = 50;
    std::atomic<int> left = calls;
    Event all;
    for (int index = 0; index < calls; ++index) {
        transport.send(MCPRequest{MCPRequestID::int_(index), "m", {}}, [&](MCPResult<MCPResponse> result) {
            overlapped = overlapped || running++ > 0 || !result;
            std::this_thread::yield();
            --running;
            if (--left == 0) {
                all.set();
            }
        });
    }
    all.wait();
    EXPECT_FALSE(overlapped);
}

TEST(MCPHTTPTransport, ACompletionHoldsUpItsOwnTransportAlone) {
    TestHTTPServer server([](const ReceivedRequest& request) { return jsonResponse(request, "1"); });
    auto transport = transportTo(server);
    auto other = transportTo(server);
    Event hasBegun;
    Event goOn;
    transport.send(MCPRequest{MCPRequestID::int_(1), "m", {}}, [&](MCPResult<MCPResponse>) {
        hasBegun.set();
        goOn.wait();
    });
    hasBegun.wait();
    Completed<MCPResult<MCPResponse>> next;
    transport.send(MCPRequest{MCPRequestID::int_(2), "second", {}},
                   next.callback<MCPCompletion<MCPResponse>>());
    EXPECT_TRUE(eventually([&] { return server.requests().size() == 2u; }));
    for (int call = 0; call < 20; ++call) {
        EXPECT_TRUE(send(other));
    }
    EXPECT_FALSE(next.hasCome());
    goOn.set();
    EXPECT_TRUE(next.value());
}

TEST(MCPHTTPTransport, WhatIsUnderWayEndsAlsoWhenTheTransportIsReleased) {
    Event goOn;
    TestHTTPServer server([&](const ReceivedRequest& request) {
        goOn.wait();
        return jsonResponse(request, "1");
    });
    Completed<MCPResult<MCPResponse>> end;
    {
        auto transport = transportTo(server);
        transport.send(MCPRequest{MCPRequestID::int_(1), "m", {}},
                       end.callback<MCPCompletion<MCPResponse>>());
    }
    goOn.set();
    EXPECT_TRUE(end.value());
}

} // namespace
} // namespace zelto
