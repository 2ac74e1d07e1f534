#pragma once

#include "MCPCalls.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <string>
#include <utility>

namespace zelto {

// A transport within a session, and a server that responds to every later request with this.
struct MCPTransportInSession {
    explicit MCPTransportInSession(PlayedResponse response, std::string sessionID = "s-1")
        : server([response = std::move(response), sessionID,
                  isFirst = std::make_shared<std::atomic<bool>>(true)](const ReceivedRequest& request) {
              return isFirst->exchange(false) ? jsonResponse(request, "{}", {{"MCP-SESSION-ID", sessionID}})
                                              : response;
          }),
          transport(transportTo(server)) {
        EXPECT_TRUE(send(transport));
        EXPECT_EQ(transport.activeSessionID(), sessionID);
    }

    TestHTTPServer server;
    MCPHTTPTransport transport;
};

// The result of a message of each kind that gets this response, without a session.
template <class F> auto outcomeOf(PlayedResponse response, F&& message) {
    TestHTTPServer server([&](const ReceivedRequest&) { return response; });
    auto transport = transportTo(server);
    return message(transport);
}

inline const auto aRequest = [](MCPTransport& transport) { return send(transport); };
inline const auto aNotification = [](MCPTransport& transport) { return notify(transport); };
inline const auto aDisconnect = [](MCPTransport& transport) { return disconnect(transport); };

} // namespace zelto
