// A server that never stops must not use more memory than is read at a time.

#include "MCPCalls.h"

#include <Support/Event.h>
#include <Support/ProcessMemory.h>

#include <gtest/gtest.h>

#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {
namespace {

#ifdef ZELTO_MEMORY_IS_SHADOWED
constexpr std::size_t flood = std::size_t{32} << 20;
#else
constexpr std::size_t flood = std::size_t{200} << 20;
#endif
constexpr std::size_t little = (std::size_t{16} << 20) + memoryOverhead;

const std::string notification = R"({"jsonrpc":"2.0","method":"notifications/message"})";
const std::string theResponse = respondTo("\"1\"", "true");

std::string repeated(std::string_view piece) {
    std::string text;
    while (text.size() < (1u << 18)) {
        text += piece;
    }
    return text;
}

// Sends the piece until that many bytes were sent.
void pour(const Sender& send, std::string_view piece, std::size_t size) {
    for (std::size_t sent = 0; sent < size && send(piece); sent += piece.size()) {
    }
}

// An endless response of this type.
PlayedResponse endless(std::string contentType, std::string piece) {
    return {.closes = true,
            .raw = "HTTP/1.1 200 OK\r\nContent-Type: " + contentType + "\r\n\r\n",
            .stream = [piece = std::move(piece)](const Sender& send) {
                while (send(piece)) {
                }
            }};
}

URLSessionConfiguration limitedTo(std::size_t size) {
    auto configuration = URLSessionConfiguration::ephemeral();
    configuration.maximumResponseSize = size;
    return configuration;
}

TEST(MCPHTTPFlood, WhatIsPassedOverOnAStreamTakesNoMemory) {
    const std::string kilobyte(1 << 10, 'x');
    for (const auto& each :
         std::vector<std::string>{": " + kilobyte + "\n", ": keep-alive\n\n", "id: " + kilobyte + "\n",
                                  "unknown: " + kilobyte + "\r\n", "event: e\nid: 1\n\n",
                                  eventOf(respondTo("9", "\"" + kilobyte + "\"")), eventOf(notification)}) {
        const auto piece = repeated(each);
        TestHTTPServer server({eventStream([&](const Sender& send) {
            // Short lines take longer.
            pour(send, piece, each.size() < 100 ? flood / 8 : flood);
            send("\n\n" + eventOf(theResponse));
        })});
        // The limit is for one event.
        auto transport = transportTo(server, nullptr, limitedTo(std::size_t{1} << 20));
        std::optional<MCPResult<MCPResponse>> result;
        EXPECT_LT(growthDuring([&] { result = send(transport); }), little) << each;
        EXPECT_TRUE(*result) << each;
    }
}

TEST(MCPHTTPFlood, AnEndlessBodyEndsAtTheLimitAndTakesNoMoreThanIt) {
    constexpr std::size_t limit = std::size_t{16} << 20;
    for (const auto* type : {"application/json", "text/event-stream"}) {
        TestHTTPServer server({endless(type, "data: [" + repeated("0,"))});
        auto transport = transportTo(server, nullptr, limitedTo(limit));
        std::optional<MCPResult<MCPResponse>> result;
        EXPECT_LT(growthDuring([&] { result = send(transport); }), 3 * limit + memoryOverhead) << type;
        EXPECT_EQ(connectionError(*result), URLErrorCode::responseTooLarge) << type;
    }
}

TEST(MCPHTTPFlood, AnEndlessBodyBehindANotificationTakesNoMemory) {
    TestHTTPServer server({endless("application/json", repeated("x"))});
    auto transport = transportTo(server, nullptr, limitedTo(flood));
    std::optional<MCPResult<void>> result;
    EXPECT_LT(growthDuring([&] { result = notify(transport); }), little);
    EXPECT_EQ(connectionError(*result), URLErrorCode::responseTooLarge);
}

TEST(MCPHTTPFlood, CancellingEndsACallWithinIt) {
    for (const auto& piece :
         {repeated(":\n"), repeated(eventOf(respondTo("9", "1"))), std::string(1 << 16, 'x')}) {
        Event hasBegun;
        Event isOver;
        TestHTTPServer server({eventStream([&](const Sender& send) {
            for (int count = 0; send(piece); ++count) {
                if (count == 10) {
                    hasBegun.set();
                }
            }
            isOver.set();
        })});
        // The flood must not end by itself before it is cancelled.
        auto transport = transportTo(server, nullptr, limitedTo(std::numeric_limits<std::size_t>::max()));
        Completed<MCPResult<MCPResponse>> end;
        transport.send(MCPRequest{MCPRequestID::string("1"), "m", {}},
                       end.callback<MCPCompletion<MCPResponse>>());
        hasBegun.wait();
        transport.cancelAll();
        EXPECT_EQ(connectionError(end.value()), URLErrorCode::cancelled);
        isOver.wait();
    }
}

} // namespace
} // namespace zelto
