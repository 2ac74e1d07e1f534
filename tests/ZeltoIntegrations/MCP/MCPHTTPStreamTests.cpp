// Event streams of hostile servers.

#include "MCPCalls.h"

#include <Support/Event.h>

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <string>

namespace zelto {
namespace {

// The result of the request with the id "1" that gets this stream.
MCPResult<MCPResponse> outcomeOf(std::string stream) {
    TestHTTPServer server({eventStream(std::move(stream))});
    auto transport = transportTo(server);
    return send(transport);
}

MCPResult<MCPResponse> outcomeOf(std::function<void(const Sender&)> play,
                                 URLSessionConfiguration configuration = {}) {
    TestHTTPServer server({eventStream(std::move(play))});
    auto transport = transportTo(server, nullptr, std::move(configuration));
    return send(transport);
}

const std::string theResponse = respondTo("\"1\"", "true");
const std::string notification = R"({"jsonrpc":"2.0","method":"notifications/message","params":{}})";

TEST(MCPHTTPStream, SkipsWhatIsNoResponseToTheRequest) {
    const auto result =
        outcomeOf(": hello\n\nevent: x\n\n" + eventOf(notification) + eventOf("{\"id\":null}") +
                  eventOf(respondTo("1", "false")) + eventOf(respondTo("\"2\"", "false")) +
                  "event: ping\nid: 1\nretry: 5\n" + eventOf(theResponse) + eventOf("not read"));
    ASSERT_TRUE(result);
    EXPECT_EQ(result->result, JSONValue(true));
}

TEST(MCPHTTPStream, TheResponseEndsItBeforeTheEndOfTheStream) {
    Event isOver;
    const auto result = outcomeOf([&](const Sender& send) {
        send(eventOf(notification));
        send(eventOf(theResponse));
        while (send(eventOf(notification))) {
        }
        isOver.set();
    });
    EXPECT_TRUE(result);
    isOver.wait();
}

TEST(MCPHTTPStream, EndingWithoutTheResponseSaysSo) {
    EXPECT_EQ(outcomeOf(""), failed(MCPClientError::missingJSONRPCResponse()));
    EXPECT_EQ(outcomeOf(eventOf(notification)), failed(MCPClientError::missingJSONRPCResponse()));
    EXPECT_EQ(outcomeOf("data: " + theResponse + "\n"), failed(MCPClientError::missingJSONRPCResponse()));
    EXPECT_TRUE(outcomeOf("data: " + theResponse + "\n\r"));
}

TEST(MCPHTTPStream, AnEventThatIsNoMessageFailsTheRequest) {
    const auto reasonOf = [](const MCPResult<MCPResponse>& result) {
        const auto* error = result ? nullptr : std::get_if<DecodingError>(&result.error().value);
        return error ? std::optional(error->reason) : std::nullopt;
    };
    EXPECT_EQ(reasonOf(outcomeOf(eventOf("ping") + eventOf(theResponse))), DecodingError::Reason::syntax);
    EXPECT_EQ(reasonOf(outcomeOf(eventOf("[]") + eventOf(theResponse))), DecodingError::Reason::mismatch);
    EXPECT_EQ(outcomeOf(eventOf("{\"id\":[]}") + eventOf(theResponse)),
              failed(MCPClientError::invalidJSONRPCIdentifier()));
    EXPECT_EQ(outcomeOf(eventOf("{\"id\":\"1\"}")),
              failed(MCPClientError::invalidJSONRPCVersion(std::nullopt)));
    EXPECT_EQ(outcomeOf("data: \xFF\n" + eventOf(theResponse)),
              failed(MCPClientError::invalidServerSentEventsUTF8()));
    EXPECT_EQ(reasonOf(outcomeOf("data: ping\n\r")), DecodingError::Reason::syntax);
    EXPECT_EQ(outcomeOf("data: \xFF"), failed(MCPClientError::invalidServerSentEventsUTF8()));
}

TEST(MCPHTTPStream, RespondingTwiceCompletesOnce) {
    const auto result = outcomeOf(eventOf(theResponse) + eventOf(respondTo("\"1\"", "false")));
    ASSERT_TRUE(result);
    EXPECT_EQ(result->result, JSONValue(true));
}

TEST(MCPHTTPStream, ComesTheSameInPiecesOfAnySize) {
    const auto stream = ": c\r\n\r\n" + eventOf(notification) +
                        "data: {\"jsonrpc\":\"2.0\",\ndata:\"id\":\"1\",\r\n" +
                        "data: \"result\":\"é漢😀\"}\n\n";
    for (std::size_t piece = 1; piece < stream.size(); piece += piece < 20 ? 1 : 17) {
        const auto result = outcomeOf([&](const Sender& send) {
            for (std::size_t at = 0; at < stream.size(); at += piece) {
                send(std::string_view(stream).substr(at, piece));
            }
        });
        ASSERT_TRUE(result) << piece;
        EXPECT_EQ(result->result, JSONValue("é漢😀"));
    }
}

TEST(MCPHTTPStream, AStreamThatBreaksOffFailsWithTheConnectionsError) {
    for (const auto* body : {"", "data: {", "data: {}\n\n"}) {
        TestHTTPServer server({PlayedResponse::bytes(
            std::string(
                "HTTP/1.1 200 OK\r\nContent-Type: text/event-stream\r\nTransfer-Encoding: chunked\r\n\r\n") +
            (*body ? "a\r\n" : "") + body)});
        auto transport = transportTo(server);
        EXPECT_EQ(connectionError(send(transport)), URLErrorCode::connectionLost) << body;
    }
    TestHTTPServer server(
        {{.raw = "HTTP/1.1 200 OK\r\nContent-Type: text/event-stream\r\n\r\ndata: 1", .resets = true}});
    auto transport = transportTo(server);
    EXPECT_EQ(connectionError(send(transport)), URLErrorCode::connectionLost);
}

TEST(MCPHTTPStream, AnEventWithoutAnEndEndsAtTheLimitOfTheSession) {
    URLSessionConfiguration small;
    small.maximumResponseSize = 4 << 20;
    const std::string block(1 << 16, 'x');
    for (const auto& piece : {block, "data: " + block + "\n"}) {
        const auto result = outcomeOf(
            [&](const Sender& send) {
                while (send(piece)) {
                }
            },
            small);
        EXPECT_EQ(connectionError(result), URLErrorCode::responseTooLarge);
    }
}

TEST(MCPHTTPStream, AMillionForeignEventsAreReadInPassing) {
    std::string block;
    for (int index = 0; index < 1000; ++index) {
        block += eventOf(respondTo(std::to_string(index), "{}"));
    }
    const auto result = outcomeOf([&](const Sender& send) {
        for (int count = 0; count < 1000; ++count) {
            send(block);
        }
        send(eventOf(theResponse));
    });
    EXPECT_TRUE(result);
}

TEST(MCPHTTPStream, OneThatStallsEndsByCancelling) {
    Event hasBegun;
    Event goOn;
    TestHTTPServer server({eventStream([&](const Sender& send) {
        send(": wait\n");
        hasBegun.set();
        goOn.wait();
        send(eventOf(theResponse));
    })});
    auto transport = transportTo(server);
    Completed<MCPResult<MCPResponse>> end;
    transport.send(MCPRequest{MCPRequestID::string("1"), "m", {}},
                   end.callback<MCPCompletion<MCPResponse>>());
    hasBegun.wait();
    transport.cancelAll();
    EXPECT_EQ(connectionError(end.value()), URLErrorCode::cancelled);
    goOn.set();
}

TEST(MCPHTTPStream, CancellingWhileResponsesComeCompletesEachCallOnce) {
    TestHTTPServer server([](const ReceivedRequest& request) {
        return eventStream(eventOf(notification) + eventOf(respondTo(idOf(request), "1")) +
                           eventOf(notification));
    });
    for (int round = 0; round < 100; ++round) {
        auto transport = transportTo(server);
        constexpr int calls = 8;
        std::atomic<int> left = calls;
        Event all;
        for (int index = 0; index < calls; ++index) {
            transport.send(MCPRequest{MCPRequestID::int_(index), "m", {}},
                           [&](MCPResult<MCPResponse> result) {
                               EXPECT_TRUE(result || connectionError(result) == URLErrorCode::cancelled);
                               if (--left == 0) {
                                   all.set();
                               }
                           });
        }
        transport.cancelAll();
        all.wait();
    }
}

TEST(MCPHTTPStream, ItsConnectionServesTheNextCallWhenTheServerEndsTheStream) {
    TestHTTPServer server([](const ReceivedRequest& request) {
        return eventStream(
            [response = eventOf(respondTo(idOf(request), "1"))](const Sender& send) { send(response); });
    });
    auto transport = transportTo(server);
    constexpr int calls = 200;
    for (int call = 0; call < calls; ++call) {
        ASSERT_TRUE(send(transport, std::to_string(call)));
    }
    // A call that begins before the end of the previous stream has arrived needs another connection.
    EXPECT_LT(server.connectionCount(), calls / 10);
}

TEST(MCPHTTPStream, JSONThatIsCalledAStreamIsNoStream) {
    EXPECT_EQ(outcomeOf(theResponse), failed(MCPClientError::missingJSONRPCResponse()));
    TestHTTPServer server({PlayedResponse::json(eventOf(theResponse))});
    auto transport = transportTo(server);
    const auto result = send(transport);
    ASSERT_FALSE(result);
    EXPECT_TRUE(std::holds_alternative<DecodingError>(result.error().value));
}

} // namespace
} // namespace zelto
