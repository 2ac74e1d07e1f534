#include <ZeltoSandbox/SandboxCaller.h>

#include <Support/Eventually.h>

#include <gtest/gtest.h>

#include <atomic>
#include <list>
#include <thread>

namespace zelto {

namespace {

const std::string simple = "GET /1/nothing HTTP/1.1\r\nHost: api.trello.com\r\n\r\n";

CallerResponse responseTo(const SandboxCaller& caller, const std::string& bytes) {
    return caller.send(bytes);
}

} // namespace

TEST(SandboxHTTP, ListensOnBothLoopbackAddressesAndFailsWhenAPortIsTaken) {
    const SandboxCaller caller;
    EXPECT_EQ(caller.server->url().absoluteString(),
              "http://127.0.0.1:" + std::to_string(caller.server->port()));
    SandboxOptions options;
    options.port = caller.server->port();
    const auto second = SandboxServer::start(options);
    ASSERT_FALSE(second);
    EXPECT_EQ(second.error().message,
              "Port " + std::to_string(options.port) +
                  " of 127.0.0.1 is in use by another program; choose another port, or 0 for "
                  "a free one.");
}

bool takesAPortAgain() {
    SandboxOptions options;
    {
        const SandboxCaller caller;
        options.port = caller.server->port();
        EXPECT_EQ(responseTo(caller, simple).status, 404);
    }
    return SandboxServer::start(options).has_value();
}

TEST(SandboxHTTP, TakesAPortAgainAtOnce) {
    // The system may give the port to a connection of another program meanwhile.
    EXPECT_TRUE(takesAPortAgain() || takesAPortAgain() || takesAPortAgain());
}

TEST(SandboxHTTP, RespondsForTheServicesHostsAndItsOwnNamesAlone) {
    const SandboxCaller caller;
    const auto port = std::to_string(caller.server->port());

    struct Row {
        std::string host;
        int status;
    };

    const Row rows[] = {{"api.trello.com", 404},
                        {"API.Trello.com:443", 404},
                        {"api.trello.com:80", 404},
                        {"127.0.0.1:" + port, 200},
                        {"localhost:" + port, 200},
                        {"[::1]:" + port, 200},
                        {"127.0.0.1", 421},
                        {"127.0.0.1:1", 421},
                        {"evil.example", 421},
                        {"evil.example:" + port, 421},
                        {"trello.com.evil", 421},
                        {"", 421},
                        {"api.trello.com:" + port, 421}};
    for (const auto& row : rows) {
        EXPECT_EQ(caller.get(row.host, "/").status, row.status) << row.host;
    }
    EXPECT_EQ(responseTo(caller, "GET / HTTP/1.1\r\n\r\n").status, 400);
    EXPECT_EQ(responseTo(caller, "GET / HTTP/1.1\r\nHost: api.zoom.us\r\nHost: api.zoom.us\r\n\r\n").status,
              400);
    EXPECT_EQ(responseTo(caller, "GET http://zoom.us/ HTTP/1.1\r\nHost: api.zoom.us\r\n\r\n").status, 400);
}

TEST(SandboxHTTP, TakesABrowserToAServiceBelowHost) {
    const SandboxCaller caller;
    const auto response = caller.get(caller.ownHost(), "/host/api.trello.com/1/members/me?key=k");
    EXPECT_EQ(response.body, "invalid token");
    EXPECT_EQ(response.field("X-Content-Type-Options"), "nosniff");
    const auto record = caller.server->requests().back();
    EXPECT_EQ(record.host, "api.trello.com");
    EXPECT_EQ(record.target, "/1/members/me?key=***");
    EXPECT_TRUE(record.isWeb);
    EXPECT_EQ(caller.get(caller.ownHost(), "/host/evil.example/").status, 404);
    EXPECT_EQ(caller.server->webURL(*URL::parse("https://trello.com/1/x?a=b"))->absoluteString(),
              caller.server->url().absoluteString() + "/host/trello.com/1/x?a=b");
    EXPECT_FALSE(caller.server->webURL(*URL::parse("mailto:x")));
}

TEST(SandboxHTTP, ServesItsPageWithAStrictPolicy) {
    const SandboxCaller caller;
    const auto page = caller.get(caller.ownHost(), "/");
    EXPECT_EQ(page.status, 200);
    EXPECT_TRUE(page.field("Content-Security-Policy").starts_with("default-src 'none'; script-src 'self';"));
    EXPECT_EQ(page.field("X-Frame-Options"), "DENY");
    const auto head = caller.send("HEAD / HTTP/1.1\r\nHost: " + caller.ownHost() + "\r\n\r\n");
    EXPECT_EQ(head.field("Content-Length"), std::to_string(page.body.size()));
    EXPECT_EQ(caller.get(caller.ownHost(), "/nothing").status, 404);
    EXPECT_EQ(caller.post(caller.ownHost(), "/", "text/plain", "x").status, 405);
    EXPECT_EQ(caller.get(caller.ownHost(), "/consent.css").status, 200);
}

TEST(SandboxHTTP, KeepsConnectionsAndCountsThem) {
    const SandboxCaller caller;
    CallerConnection connection(caller.server->port());
    for (int i = 0; i < 20; ++i) {
        connection.send(simple);
        EXPECT_EQ(connection.read().status, 404);
    }
    EXPECT_EQ(caller.server->connectionCount(), 1U);
    EXPECT_EQ(caller.server->openConnectionCount(), 1U);
    connection.send(simple + simple + simple);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(connection.read().status, 404);
    }
    connection.send("GET / HTTP/1.1\r\nHost: api.zoom.us\r\nConnection: close\r\n\r\n");
    EXPECT_EQ(connection.read().status, 401);
    EXPECT_TRUE(connection.isEnded());
    EXPECT_EQ(caller.server->requests().back().connection, 1U);
}

TEST(SandboxHTTP, ReadsRequestsHoweverTheyAreCut) {
    const SandboxCaller caller;
    const std::string request = "POST /control/expire HTTP/1.1\r\nHost: " + caller.ownHost() +
                                "\r\nX-Zelto-Sandbox: 1\r\nContent-Type: application/json\r\nContent-Length: "
                                "18\r\n\r\n{\"service\":\"Zoom\"}";
    for (const std::size_t size : {1, 2, 3, 7, 31}) {
        CallerConnection connection(caller.server->port());
        for (std::size_t i = 0; i < request.size(); i += size) {
            connection.send(std::string_view(request).substr(i, size));
        }
        EXPECT_EQ(connection.read().status, 204) << size;
    }
}

TEST(SandboxHTTP, ReadsChunkedBodies) {
    const SandboxCaller caller;
    const auto response =
        responseTo(caller, "POST /oauth/token HTTP/1.1\r\nHost: todoist.com\r\nTransfer-Encoding: "
                           "chunked\r\nContent-Type: application/x-www-form-urlencoded\r\n\r\n"
                           "4\r\na=b&\r\n3;x=y\r\nc=d\r\n0\r\n\r\n");
    EXPECT_EQ(response.status, 404);
    EXPECT_EQ(caller.server->requests().back().bodySize, 7U);
    EXPECT_EQ(caller.server->requests().back().body, "a=b&c=d");
}

TEST(SandboxHTTP, RefusesWhatIsNoHTTP) {
    const SandboxCaller caller;
    const std::string start = "POST / HTTP/1.1\r\nHost: api.zoom.us\r\n";
    for (const auto& bytes :
         {std::string("\x16\x03\x01\x02") + std::string(100, 'x') + "\r\n\r\n", std::string("GET /\r\n\r\n"),
          std::string("GET / HTTP/2.0\r\n\r\n"),
          start + "Content-Length: 1\r\nTransfer-Encoding: chunked\r\n\r\n",
          start + "Content-Length: 1\r\nContent-Length: 2\r\n\r\n", start + "Content-Length: -1\r\n\r\n",
          start + "bad name: x\r\n\r\n", start + "Transfer-Encoding: chunked\r\n\r\nzz\r\n"}) {
        EXPECT_EQ(responseTo(caller, bytes).status, 400) << bytes.substr(0, 80);
    }
    EXPECT_TRUE(caller.server->requests().empty());
}

TEST(SandboxHTTP, RefusesALargeHeader) {
    SandboxOptions options;
    options.maximumHeader = 4096;
    const SandboxCaller caller(options);
    EXPECT_EQ(caller.get("api.zoom.us", "/", "X: " + std::string(3000, 'x') + "\r\n").status, 401);
    EXPECT_EQ(caller.get("api.zoom.us", "/", "X: " + std::string(5000, 'x') + "\r\n").status, 431);
    EXPECT_EQ(responseTo(caller, "GET /" + std::string(70'000, 'x')).status, 431);
    EXPECT_EQ(
        responseTo(caller, "POST / HTTP/1.1\r\nHost: api.zoom.us\r\nTransfer-Encoding: chunked\r\n\r\n1;" +
                               std::string(70'000, 'x'))
            .status,
        431);
}

TEST(SandboxHTTP, RefusesALargeBodyAndAFullDisk) {
    SandboxOptions options;
    options.maximumBody = 2 << 20;
    options.maximumDiskUse = 1 << 20;
    const SandboxCaller caller(options);
    const auto post = [&](std::size_t size) {
        return caller
            .post("api.zoom.us", "/", "text/plain", std::string(size, 'x'), "Expect: 100-continue\r\n")
            .status;
    };
    EXPECT_EQ(post((2 << 20) + 1), 413);
    EXPECT_EQ(
        responseTo(caller,
                   "POST / HTTP/1.1\r\nHost: api.zoom.us\r\nTransfer-Encoding: chunked\r\n\r\nfffffff0\r\n")
            .status,
        413);
    EXPECT_EQ(caller.post("api.zoom.us", "/", "text/plain", std::string((1 << 20) + 1, 'x')).status, 507);
    // What was refused takes no space.
    EXPECT_EQ(caller.post("api.zoom.us", "/", "text/plain", std::string(1 << 20, 'x')).status, 401);
    EXPECT_EQ(caller.server->state().find("diskUse")->asInt64(), 0);
    EXPECT_EQ(
        caller.post(caller.ownHost(), "/control/reset", "application/json", std::string((1 << 20) + 1, ' '))
            .status,
        413);
}

// Each with the one limit that it runs into: a client that is slow to begin must not meet another.
TEST(SandboxHTTP, ClosesConnectionsThatStandStill) {
    constexpr TimeInterval soon{0.2};
    SandboxOptions idle;
    idle.idleTimeout = soon;
    const SandboxCaller idleCaller(idle);
    CallerConnection silent(idleCaller.server->port());
    EXPECT_TRUE(silent.isEnded());

    SandboxOptions header;
    header.headerTimeout = soon;
    const SandboxCaller headerCaller(header);
    CallerConnection halfHeader(headerCaller.server->port());
    halfHeader.send("GET / HTTP/1.1\r\nHo");
    EXPECT_EQ(halfHeader.read().status, 408);

    SandboxOptions body;
    body.bodyTimeout = soon;
    const SandboxCaller bodyCaller(body);
    CallerConnection halfBody(bodyCaller.server->port());
    halfBody.send("POST / HTTP/1.1\r\nHost: api.zoom.us\r\nContent-Length: 9\r\n\r\nx");
    EXPECT_EQ(halfBody.read().status, 408);
}

TEST(SandboxHTTP, CountsTheHeadersTimeAsAWhole) {
    SandboxOptions options;
    options.headerTimeout = TimeInterval(0.3);
    const SandboxCaller caller(options);
    CallerConnection drop(caller.server->port());
    std::atomic<bool> ended = false;
    std::thread dripping([&] {
        while (!ended) {
            drop.send("x");
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
    });
    EXPECT_EQ(drop.read().status, 408);
    ended = true;
    dripping.join();
}

TEST(SandboxHTTP, RefusesConnectionsBeyondTheLimit) {
    SandboxOptions options;
    options.maximumConnectionCount = 3;
    const SandboxCaller caller(options);
    std::list<CallerConnection> connections;
    for (int i = 0; i < 3; ++i) {
        connections.emplace_back(caller.server->port()).send(simple);
        EXPECT_EQ(connections.back().read().status, 404);
    }
    CallerConnection fourth(caller.server->port());
    EXPECT_EQ(fourth.read().status, 503);
    connections.front().send("GET / HTTP/1.1\r\nHost: api.zoom.us\r\nConnection: close\r\n\r\n");
    EXPECT_EQ(connections.front().read().status, 401);
    EXPECT_TRUE(connections.front().isEnded());
    ASSERT_TRUE(eventually([&] { return caller.server->openConnectionCount() != 3; }));
    EXPECT_EQ(caller.send(simple).status, 404);
}

TEST(SandboxHTTP, KeepsTheConfiguredNumberOfRequests) {
    SandboxOptions options;
    options.keptRequests = 5;
    const SandboxCaller caller(options);
    CallerConnection connection(caller.server->port());
    for (int i = 0; i < 8; ++i) {
        connection.send(simple);
        connection.read();
    }
    const auto requests = caller.server->requests();
    ASSERT_EQ(requests.size(), 5U);
    EXPECT_EQ(requests.front().number, 4U);
}

TEST(SandboxHTTP, StopsWithinAnyExchange) {
    const SandboxCaller caller;
    CallerConnection idle(caller.server->port());
    CallerConnection begun(caller.server->port());
    begun.send("POST / HTTP/1.1\r\nHost: api.zoom.us\r\nContent-Length: 9\r\n\r\nx");
    CallerConnection events(caller.server->port());
    events.send("GET /control/events HTTP/1.1\r\nHost: " + caller.ownHost() + "\r\n\r\n");
    EXPECT_EQ(events.read(false).status, 200);
    caller.server->addFault({.delay = TimeInterval(3600)});
    CallerConnection delayed(caller.server->port());
    delayed.send(simple);
    ASSERT_TRUE(eventually([&] { return caller.server->faultCount() == 0; }));
    caller.server->stop();
    EXPECT_TRUE(idle.isEnded());
    EXPECT_TRUE(delayed.isEnded());
    EXPECT_EQ(caller.server->openConnectionCount(), 0U);
    caller.server->stop();
}

TEST(SandboxHTTP, RespondsToManyAtOnce) {
    const SandboxCaller caller;
    std::vector<std::thread> threads;
    std::atomic<int> good = 0;
    for (int i = 0; i < 16; ++i) {
        threads.emplace_back([&] {
            CallerConnection connection(caller.server->port());
            for (int k = 0; k < 50; ++k) {
                connection.send(simple);
                good += connection.read().status == 404 ? 1 : 0;
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(good, 800);
    EXPECT_EQ(caller.server->connectionCount(), 16U);
}

} // namespace zelto
