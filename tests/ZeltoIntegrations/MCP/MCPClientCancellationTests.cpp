#include "MCPCalls.h"

#include <Support/Event.h>
#include <Support/HostMistakes.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zelto {
namespace {

// Responds by a function, which gets the message's method and number.
class PlayedTransport final : public MCPTransport {
  public:
    using Responder = std::function<MCPResult<JSONValue>(const std::string& method, std::size_t count)>;

    explicit PlayedTransport(Responder responder) : responder_(std::move(responder)) {}

    std::optional<std::string> activeSessionID() const override { return std::nullopt; }

    void setProtocolVersion(std::optional<MCPProtocolVersion>) override {}

    void clearSession() override {}

    void send(MCPRequest request, MCPCompletion<MCPResponse> completion) override {
        auto result = take(request.method);
        if (keepsResponses) {
            return kept_.push_back(std::move(completion));
        }
        if (!result) {
            return completion(failure(std::move(result.error())));
        }
        completion(MCPResponse{std::move(request.id), *std::move(result), {}});
    }

    void send(MCPNotification notification, MCPCompletion<void> completion) override {
        take(notification.method);
        if (keepsResponses) {
            return keptNotifications_.push_back(std::move(completion));
        }
        completion({});
    }

    void disconnect(MCPCompletion<void> completion) override { completion({}); }

    Log log;
    bool keepsResponses = false;

  private:
    MCPResult<JSONValue> take(const std::string& method) {
        log.push_back(method);
        return responder_(method, log.size());
    }

    Responder responder_;
    std::vector<MCPCompletion<MCPResponse>> kept_;
    std::vector<MCPCompletion<void>> keptNotifications_;
};

JSONValue json(std::string_view text) {
    return JSONValue::parse(text).value();
}

const auto handshake =
    R"({"protocolVersion":"2025-11-25","capabilities":{},"serverInfo":{"name":"s","version":"1"}})";
const MCPError expired(MCPClientError::sessionExpired());

// A client that is cancelled when the transport has no message: while the response to the n-th one is
// processed.
struct Cancelled {
    explicit Cancelled(std::size_t number, PlayedTransport::Responder response)
        : transport(
              std::make_shared<PlayedTransport>([=, this](const std::string& method, std::size_t count) {
                  if (count == number) {
                      transport->keepsResponses = escapes;
                      client.cancelAll();
                  }
                  return response(method, count);
              })),
          client(transport) {}

    bool escapes =
        false; // whether the n-th message is sent after the cancellation, and never gets a response
    std::shared_ptr<PlayedTransport> transport;
    MCPClient client;
};

const PlayedTransport::Responder longListing = [](const std::string&, std::size_t count) {
    return json(count < 100 ? page("a", std::to_string(count)) : page("a"));
};

TEST(MCPClientCancellation, EndsWhatIsUnderWayAndKeepsTheSession) {
    Event goOn;
    MCPServer server([&](const ReceivedRequest& request) {
        if (methodOf(request) == "tools/call") {
            goOn.wait();
        }
        return jsonResponse(request, R"({"content":[]})");
    });
    MCPClient client(server.url());
    ASSERT_TRUE(connect(client));
    Completed<MCPResult<MCPToolCallResult>> end;
    client.callTool("t", {}, end.callback<MCPCompletion<MCPToolCallResult>>());
    client.cancelAll();
    EXPECT_EQ(connectionError(end.value()), URLErrorCode::cancelled);
    goOn.set();
    EXPECT_TRUE(ping(client));
    EXPECT_EQ(server.log().back(), "ping session-1");
}

TEST(MCPClientCancellation, EndsAListingBetweenTwoPages) {
    Cancelled cancelled(3, longListing);
    EXPECT_EQ(connectionError(listTools(cancelled.client)), URLErrorCode::cancelled);
    EXPECT_EQ(cancelled.transport->log.size(), 3u);
}

TEST(MCPClientCancellation, EndsAConnectionBeforeItsConfirmation) {
    Cancelled cancelled(1, [](const std::string&, std::size_t) { return json(handshake); });
    EXPECT_EQ(connectionError(connect(cancelled.client)), URLErrorCode::cancelled);
    EXPECT_EQ(cancelled.transport->log, Log{"initialize"});
}

TEST(MCPClientCancellation, EndsARetryBeforeAndWithinItsHandshakeAndBehindIt) {
    const PlayedTransport::Responder response = [](const std::string& method, std::size_t count) {
        return count == 1 ? MCPResult<JSONValue>(failure(expired))
                          : json(method == "initialize" ? handshake : R"({"content":[]})");
    };
    for (const std::size_t number : {1u, 2u, 3u}) {
        Cancelled cancelled(number, response);
        EXPECT_EQ(connectionError(callTool(cancelled.client, "t")), URLErrorCode::cancelled) << number;
        EXPECT_EQ(cancelled.transport->log.size(), number);
    }
    Cancelled late(4, response);
    EXPECT_TRUE(callTool(late.client, "t"));
}

TEST(MCPClientCancellation, LeavesAnOperationWhoseLastResponseHasCome) {
    Cancelled cancelled(1, [](const std::string&, std::size_t) { return json(page("ab")); });
    EXPECT_EQ(namesOf(listTools(cancelled.client)), (Log{"a", "b"}));
}

TEST(MCPClientCancellation, EndsAnOperationWhoseNextMessageGoesOutInThatMoment) {
    const DroppedCallbacks dropped;
    {
        Cancelled listing(2, longListing);
        listing.escapes = true;
        EXPECT_EQ(connectionError(listTools(listing.client)), URLErrorCode::cancelled);
        Cancelled connecting(2, [](const std::string&, std::size_t) { return json(handshake); });
        connecting.escapes = true;
        EXPECT_EQ(connectionError(connect(connecting.client)), URLErrorCode::cancelled);
    }
}

TEST(MCPClientCancellation, LeavesWhatBeginsAfterIt) {
    Cancelled cancelled(1, longListing);
    EXPECT_FALSE(listTools(cancelled.client));
    EXPECT_TRUE(ping(cancelled.client));
}

} // namespace
} // namespace zelto
