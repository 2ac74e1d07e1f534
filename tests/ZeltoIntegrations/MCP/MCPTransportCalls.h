#pragma once

#include "MCPCalls.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <string>
#include <utility>

namespace zelto {

// A transport that holds a session, and a server that answers all that comes after with this.
struct MCPTransportInSession {
    explicit MCPTransportInSession(PlayedResponse answer, std::string sessionID = "s-1")
        : server([answer = std::move(answer), sessionID,
                  isFirst = std::make_shared<std::atomic<bool>>(true)](const ReceivedRequest& request) {
              return isFirst->exchange(false) ? jsonAnswer(request, "{}", {{"MCP-SESSION-ID", sessionID}})
                                              : answer;
          }),
          transport(transportTo(server)) {
        EXPECT_TRUE(send(transport));
        EXPECT_EQ(transport.activeSessionID(), sessionID);
    }

    TestHTTPServer server;
    MCPHTTPTransport transport;
};

// What a message of each kind comes to that gets this answer, without a session.
template <class F> auto outcomeOf(PlayedResponse answer, F&& message) {
    TestHTTPServer server([&](const ReceivedRequest&) { return answer; });
    auto transport = transportTo(server);
    return message(transport);
}

inline const auto aRequest = [](MCPTransport& transport) { return send(transport); };
inline const auto aNotification = [](MCPTransport& transport) { return notify(transport); };
inline const auto aDisconnect = [](MCPTransport& transport) { return disconnect(transport); };

} // namespace zelto
