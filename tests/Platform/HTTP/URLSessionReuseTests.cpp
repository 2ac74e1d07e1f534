#include <Platform/HTTP/URLSession.h>

#include "Support/Eventually.h"
#include "Support/ScriptedServer.h"
#include "Support/SessionTasks.h"
#include "Support/TestHTTPServer.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <fstream>
#include <mutex>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {
namespace {

constexpr auto shortResponse = "HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nok";

TEST(URLSessionReuse, OneConnectionServesRequestAfterRequestOfAllSessions) {
    TestHTTPServer server([](const ReceivedRequest&) { return PlayedResponse{.body = "ok"}; });
    for (int round = 0; round < 20; ++round) {
        URLSession session(URLSessionConfiguration::ephemeral());
        URLRequest request(server.url(), round % 2 == 0 ? "GET" : "POST");
        request.body = round % 2 == 0 ? std::nullopt : std::optional(HTTPBody(std::string(100'000, 'x')));
        EXPECT_EQ(TaskEnd::of(session, request).text(), "ok");
    }
    EXPECT_EQ(server.connectionCount(), 1);
}

TEST(URLSessionReuse, EachRequestAsksForItsOwnURL) {
    TestHTTPServer server(
        [](const ReceivedRequest& request) { return PlayedResponse{.body = request.target}; });
    URLSession session(URLSessionConfiguration::ephemeral());
    for (const auto* target : {"/one?x=1", "/one?x=1", "/two", "/one", "/one?x=1", "/one?x=2"}) {
        EXPECT_EQ(TaskEnd::of(session, URLRequest(server.url(target))).text(), target);
    }
    EXPECT_EQ(server.connectionCount(), 1);
}

// Responds to the first request of a connection, reads the next one, and then ends the connection.
class DyingConnections {
  public:
    explicit DyingConnections(bool resets)
        : server_([this, resets](Conversation& conversation) {
              serve(conversation);
              if (resets) {
                  conversation.resetAtEnd();
              }
          }) {}

    URL url(const std::string& path = "/") const { return server_.url(path); }

    int received() const { return received_; }

    int connections() const { return server_.connectionCount(); }

    // The requested targets, in order.
    std::vector<std::string> targets() const {
        const std::lock_guard guard(lock_);
        return targets_;
    }

  private:
    void serve(Conversation& conversation) {
        if (receive(conversation) && conversation.send(shortResponse)) {
            receive(conversation);
        }
    }

    bool receive(Conversation& conversation) {
        const auto head = conversation.readHead();
        if (head.empty()) {
            return false;
        }
        if (const auto length = head.find("Content-Length: "); length != head.npos) {
            conversation.read(std::stoul(head.substr(length + 16)));
        }
        ++received_;
        const auto start = head.find(' ') + 1;
        const std::lock_guard guard(lock_);
        targets_.push_back(head.substr(start, head.find(' ', start) - start));
        return true;
    }

    std::atomic<int> received_ = 0;
    mutable std::mutex lock_; // guards the members below
    std::vector<std::string> targets_;
    ScriptedServer server_;
};

TEST(URLSessionReuse, WhatChangesThingsIsNotSentTwiceWhenAReusedConnectionDies) {
    for (const bool resets : {false, true}) {
        for (const auto* method : {"POST", "PATCH", "DELETE", "REPORT"}) {
            for (const std::size_t size : {0, 10, 300'000}) {
                DyingConnections server(resets);
                URLSession session(URLSessionConfiguration::ephemeral());
                URLRequest request(server.url(), method);
                request.body = HTTPBody(std::string(size, 'x'));
                EXPECT_EQ(TaskEnd::of(session, request).text(), "ok") << method;
                EXPECT_EQ(TaskEnd::of(session, request).code(), URLErrorCode::connectionLost) << method;
                EXPECT_EQ(server.received(), 2) << method << size;
            }
        }
    }
}

TEST(URLSessionReuse, WhatMayBeRepeatedIsSentAgainWhenAReusedConnectionDies) {
    for (const bool resets : {false, true}) {
        for (const auto* method : {"GET", "HEAD", "PUT", "OPTIONS"}) {
            for (const std::size_t size : {0, 10, 300'000}) {
                DyingConnections server(resets);
                URLSession session(URLSessionConfiguration::ephemeral());
                URLRequest request(server.url(), method);
                if (std::string_view(method) != "HEAD") {
                    request.body = HTTPBody(std::string(size, 'x'));
                }
                EXPECT_EQ(TaskEnd::of(session, request).error, std::nullopt) << method;
                const auto second = TaskEnd::of(session, request);
                EXPECT_EQ(second.error, std::nullopt) << method << size << second.error->message;
                EXPECT_EQ(server.received(), 3) << method << size;
                EXPECT_EQ(server.connections(), 2) << method << size;
            }
        }
    }
}

TEST(URLSessionReuse, WhatIsSentAgainAsksForItsOwnURL) {
    const DyingConnections server(false);
    URLSession session(URLSessionConfiguration::ephemeral());
    for (const auto* target : {"/one/./?x=1", "/two"}) {
        EXPECT_EQ(TaskEnd::of(session, URLRequest(server.url(target))).text(), "ok");
    }
    const std::vector<std::string> expected = {"/one/./?x=1", "/two", "/two"};
    EXPECT_EQ(server.targets(), expected);
}

TEST(URLSessionReuse, APostWhoseServerHasGoneMeanwhileDoesNotClaimThatItWasNeverSent) {
    std::optional<ScriptedServer> server;
    std::atomic<bool> isRead = false;
    server.emplace([&](Conversation& conversation) {
        conversation.readHead();
        conversation.send(shortResponse);
        isRead = !conversation.readHead().empty();
        conversation.waitForEnd();
    });
    URLSession session(URLSessionConfiguration::ephemeral());
    URLRequest request(server->url(), "POST");
    EXPECT_EQ(TaskEnd::of(session, request).text(), "ok");
    Completed<TaskEnd> end;
    session.dataTask(request, TaskEnd::into(end))->resume();
    ASSERT_TRUE(eventually([&] { return isRead.load(); }));
    server.reset(); // nobody listens any more, so that a second connection is refused
    EXPECT_EQ(end.value().code(), URLErrorCode::connectionLost);
}

TEST(URLSessionReuse, ANewConnectionIsMadeWhenTheServerSaysClose) {
    TestHTTPServer server([](const ReceivedRequest&) {
        return PlayedResponse{.body = "ok", .fields = {{"Connection", "close"}}, .closes = true};
    });
    URLSession session(URLSessionConfiguration::ephemeral());
    for (int round = 0; round < 5; ++round) {
        EXPECT_EQ(TaskEnd::of(session, URLRequest(server.url(), "POST")).text(), "ok");
    }
    EXPECT_EQ(server.connectionCount(), 5);
}

// Whether the system still has a client's end of a connection to the port, which is so until it has noticed
// that the server closed the connection.
bool isOpenForClients(std::uint16_t port) {
    char remotePort[8];
    std::snprintf(remotePort, sizeof remotePort, ":%04X", port);
    constexpr auto established = "01";
    std::ifstream connections("/proc/self/net/tcp");
    EXPECT_TRUE(connections);
    for (std::string line; std::getline(connections, line);) {
        std::istringstream fields(line);
        std::string number;
        std::string local;
        std::string remote;
        std::string state;
        fields >> number >> local >> remote >> state;
        if (remote.ends_with(remotePort) && state == established) {
            return true;
        }
    }
    return false;
}

TEST(URLSessionReuse, AConnectionThatTheServerHasClosedMeanwhileCostsNoPost) {
    TestHTTPServer server(
        [](const ReceivedRequest&) { return PlayedResponse{.body = "ok", .closes = true}; });
    URLSession session(URLSessionConfiguration::ephemeral());
    for (int round = 0; round < 50; ++round) {
        EXPECT_EQ(TaskEnd::of(session, URLRequest(server.url(), "POST")).text(), "ok") << round;
        ASSERT_TRUE(eventually(
            [&] { return server.openConnectionCount() == 0 && !isOpenForClients(server.port()); }));
    }
    EXPECT_EQ(server.requests().size(), 50u);
}

} // namespace
} // namespace zelto
