#include <Platform/HTTP/URLSession.h>

#include "Support/Event.h"
#include "Support/FreshProcess.h"
#include "Support/KillingProxy.h"
#include "Support/RefusedThreads.h"
#include "Support/ScriptedServer.h"
#include "Support/SessionTasks.h"
#include "Support/TestHTTPServer.h"

#include <gtest/gtest.h>

#include <atomic>

// Servers that violate the protocol, break off or never end.

namespace zelto {
namespace {

using namespace std::string_literals;

TaskEnd endAfter(const std::string& response, const std::string& method = "GET") {
    ScriptedServer server(response);
    URLSession session(URLSessionConfiguration::ephemeral());
    return TaskEnd::of(session, URLRequest(server.url("/path?key=secret"), method));
}

std::string describe(const TaskEnd& end) {
    return end.error ? std::string(nameOf(end.error->code)) + ": " + end.error->message
                     : "whole: " + end.text();
}

TEST(URLSessionFault, ABrokenResponseEndsWithOneErrorWithoutTheQuery) {
    const std::string ok = "HTTP/1.1 200 OK\r\n";
    const std::vector<std::pair<std::string, URLErrorCode>> responses = {
        {"", URLErrorCode::connectionLost},
        {"HTTP/1.1 200", URLErrorCode::connectionLost},
        {ok, URLErrorCode::connectionLost},
        {ok + "A: b\r\n", URLErrorCode::connectionLost},
        {ok + "Content-Length: 10\r\n\r\nhello", URLErrorCode::connectionLost},
        {ok + "Transfer-Encoding: chunked\r\n\r\n", URLErrorCode::connectionLost},
        {ok + "Transfer-Encoding: chunked\r\n\r\n5\r\nhel", URLErrorCode::connectionLost},
        {ok + "Transfer-Encoding: chunked\r\n\r\n5\r\nhello\r\n", URLErrorCode::connectionLost},
        {ok + "Transfer-Encoding: chunked\r\n\r\n5\r\nhello\r\n0\r\n", URLErrorCode::connectionLost},
        {ok + "Transfer-Encoding: chunked\r\n\r\nxyz\r\nhello\r\n0\r\n\r\n", URLErrorCode::badResponse},
        {ok + "Transfer-Encoding: chunked\r\n\r\n-5\r\nhello\r\n0\r\n\r\n", URLErrorCode::badResponse},
        {ok + "Transfer-Encoding: chunked\r\n\r\n5\r\nhelloX\r\n0\r\n\r\n", URLErrorCode::badResponse},
        {ok + "Transfer-Encoding: chunked\r\n\r\n11111111111111111\r\nhello", URLErrorCode::badResponse},
        {ok + "Content-Encoding: gzip\r\nContent-Length: 5\r\n\r\nhello", URLErrorCode::badResponse},
        {ok + "Content-Encoding: br\r\nContent-Length: 5\r\n\r\n\xff\xff\xff\xff\xff",
         URLErrorCode::badResponse},
        {ok + "Content-Encoding: secret\r\nContent-Length: 5\r\n\r\nhello", URLErrorCode::badResponse},
        {ok + "Content-Length: -5\r\n\r\nhello", URLErrorCode::badResponse},
        {ok + "Content-Length: secret\r\n\r\nhello", URLErrorCode::badResponse},
        {ok + "no colon secret\r\nContent-Length: 5\r\n\r\nhello", URLErrorCode::badResponse},
        {ok + "A: b\0c\r\nContent-Length: 5\r\n\r\nhello"s, URLErrorCode::badResponse},
        {"secret\r\n\r\n", URLErrorCode::badResponse},
        {"HTTP/1.1 secret\r\n\r\n", URLErrorCode::badResponse},
        {"HTTP/9.9 200 OK\r\nContent-Length: 5\r\n\r\nhello", URLErrorCode::badResponse},
        {"SSH-2.0-secret\r\n", URLErrorCode::badResponse},
        {"\x16\x03\x01\x02\x00\x01"s, URLErrorCode::badResponse},
    };
    for (const auto& [response, code] : responses) {
        const auto end = endAfter(response);
        EXPECT_EQ(end.code(), code) << response << "\n" << describe(end);
        EXPECT_FALSE(describe(end).contains("secret")) << describe(end);
        EXPECT_TRUE(!end.error || end.error->message.contains("127.0.0.1")) << describe(end);
    }
}

TEST(URLSessionFault, AnOddResponseIsReadAsFarAsItIsOne) {
    const std::string ok = "HTTP/1.1 200 OK\r\n";
    const std::string rest = "Content-Length: 5\r\n\r\nhello";
    const std::string continues = "HTTP/1.1 100 Continue\r\n\r\n";
    std::string hundred;
    for (int count = 0; count < 100; ++count) {
        hundred += continues;
    }
    for (const auto& response : std::vector<std::string>{
             ok + rest, ok + rest + "and more", ok + "\r\nhello", "HTTP/1.0 200 OK\r\n\r\nhello",
             hundred + ok + rest, "HTTP/1.1 103 Early Hints\r\nLink: </a>\r\n\r\n" + ok + rest,
             "HTTP/1.1 200\r\n" + rest, "HTTP/1.1 200 \xC3\xA4\r\n" + rest,
             ok + "Content-Encoding: identity\r\n" + rest, ok + "A: \xE4\r\n" + rest,
             ok + "Transfer-Encoding: chunked\r\n\r\n2\r\nhe\r\n3;x=y\r\nllo\r\n0\r\nTrailer: t\r\n\r\n"}) {
        const auto end = endAfter(response);
        EXPECT_EQ(describe(end), "whole: hello") << response;
        EXPECT_EQ(end.status(), 200);
    }
    EXPECT_EQ(endAfter("HTTP/1.1 599 Odd\r\n" + rest).status(), 599);
    EXPECT_EQ(describe(endAfter("HTTP/1.1 204 No\r\n\r\nhello")), "whole: ");
    EXPECT_EQ(describe(endAfter("HTTP/1.1 304 Not\r\n" + rest)), "whole: ");
    EXPECT_EQ(describe(endAfter(ok + "Content-Length: 1000000000000\r\n\r\n", "HEAD")), "whole: ");
}

TEST(URLSessionFault, HeaderFieldsComeJoinedFoldedAndReadable) {
    const auto end = endAfter("HTTP/1.1 103 Hint\r\nHint: yes\r\n\r\nHTTP/1.1 200 OK\r\nSet-Cookie: a=1\r\n"
                              "X-Folded: one\r\n  two\r\nset-cookie:b=2\r\nX-Latin: \xE4\r\nX-Empty:\r\n"
                              "Transfer-Encoding: chunked\r\n\r\n0\r\nTrailer: t\r\n\r\n");
    ASSERT_EQ(end.error, std::nullopt);
    const std::vector<HTTPHeaderField> expected = {{"set-cookie", "a=1, b=2"},
                                                   {"X-Folded", "one two"},
                                                   {"X-Latin", "\xC3\xA4"},
                                                   {"X-Empty", ""},
                                                   {"Transfer-Encoding", "chunked"}};
    EXPECT_EQ(end.http().headers().fields(), expected);
}

TEST(URLSessionFault, CookiesAreNotKept) {
    TestHTTPServer server([](const ReceivedRequest& request) {
        EXPECT_EQ(request.headers.value("Cookie"), std::nullopt);
        return PlayedResponse{.fields = {{"Set-Cookie", "a=b; Path=/"}}};
    });
    URLSession session(URLSessionConfiguration::ephemeral());
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(TaskEnd::of(session, URLRequest(server.url())).status(), 200);
    }
}

TEST(URLSessionFault, AResponseWithoutEndIsCutAtTheLimit) {
    auto configuration = URLSessionConfiguration::ephemeral();
    configuration.maximumResponseSize = 1'000'000;
    configuration.maximumHeaderSize = 10'000;
    URLSession session(configuration);
    const std::string ok = "HTTP/1.1 200 OK\r\n";
    const std::vector<std::pair<std::string, std::string>> endless = {
        {ok, "A: b\r\n"},
        {ok, "a"},
        {ok + "A: ", "b"},
        {"", "HTTP/1.1 100 Continue\r\n\r\n"},
        {ok + "\r\n", "some body"},
        {ok + "Transfer-Encoding: chunked\r\n\r\n", "5\r\nhello\r\n"},
        {ok + "Content-Length: 999999999999\r\n\r\n", "hello"},
        {ok + "Transfer-Encoding: chunked\r\n\r\n5\r\nhello\r\n0\r\n", "A: b\r\n"},
    };
    for (const auto& [start, repeated] : endless) {
        std::string piece;
        while (piece.size() < 10'000) {
            piece += repeated;
        }
        Event isCut;
        ScriptedServer server([&](Conversation& conversation) {
            conversation.readHead();
            conversation.send(start);
            while (conversation.send(piece)) {
            }
            isCut.set();
        });
        const auto end = TaskEnd::of(session, URLRequest(server.url()));
        EXPECT_EQ(end.code(), URLErrorCode::responseTooLarge) << start << repeated << describe(end);
        EXPECT_EQ(end.data, std::nullopt);
        isCut.wait();
    }
}

TEST(URLSessionFault, AResponseOfExactlyTheLimitIsWhole) {
    auto configuration = URLSessionConfiguration::ephemeral();
    configuration.maximumResponseSize = 100'000;
    URLSession session(configuration);
    TestHTTPServer server({{.body = std::string(100'000, 'x')}, {.body = std::string(100'001, 'x')}});
    EXPECT_EQ(TaskEnd::of(session, URLRequest(server.url())).text().size(), 100'000u);
    EXPECT_EQ(TaskEnd::of(session, URLRequest(server.url())).code(), URLErrorCode::responseTooLarge);
}

TEST(URLSessionFault, AResponseThatComesBeforeTheWholeUploadIsTheFinalOne) {
    for (const auto* status : {"413 Too Large", "401 Unauthorized", "500 Error"}) {
        ScriptedServer server([&](Conversation& conversation) {
            conversation.readHead();
            conversation.send("HTTP/1.1 " + std::string(status) + "\r\nContent-Length: 5\r\n\r\nhello");
            conversation.waitForEnd();
        });
        URLSession session(URLSessionConfiguration::ephemeral());
        URLRequest request(server.url(), "POST");
        request.body = HTTPBody(std::string(50'000'000, 'x'));
        const auto end = TaskEnd::of(session, request);
        EXPECT_EQ(describe(end), "whole: hello");
        EXPECT_EQ(std::to_string(end.status()), std::string(status).substr(0, 3));
    }
}

TEST(URLSessionFault, AnUploadThatTheServerResetsIsALostConnection) {
    ScriptedServer server([&](Conversation& conversation) {
        conversation.readHead();
        conversation.read(100'000);
        conversation.resetAtEnd();
    });
    URLSession session(URLSessionConfiguration::ephemeral());
    URLRequest request(server.url(), "POST");
    request.body = HTTPBody(std::string(50'000'000, 'x'));
    EXPECT_EQ(TaskEnd::of(session, request).code(), URLErrorCode::connectionLost);
    EXPECT_EQ(server.connectionCount(), 1);
}

TEST(URLSessionFault, AnExchangeThatIsResetAtAnyByteEndsWithOneError) {
    TestHTTPServer server([](const ReceivedRequest& request) {
        return PlayedResponse{.body = std::string(40, 'x'), .fields = {{"X-Method", request.method}}};
    });
    for (const auto* method : {"GET", "POST", "PUT"}) {
        std::atomic<std::uint64_t> toServer = UINT64_MAX;
        std::atomic<std::uint64_t> toClient = UINT64_MAX;
        KillingProxy proxy(server.port(), [&](int) { return KillingProxy::Limits{toServer, toClient}; });
        URLRequest request(proxy.url(), method);
        request.body =
            std::string_view(method) == "GET" ? std::nullopt : std::optional(HTTPBody("some text"));
        for (auto* const limit : {&toServer, &toClient}) {
            *limit = 0;
            URLSession session(URLSessionConfiguration::ephemeral());
            auto end = TaskEnd::of(session, request);
            for (; end.error; end = TaskEnd::of(session, request)) {
                ASSERT_EQ(end.code(), URLErrorCode::connectionLost) << method << *limit << end.error->message;
                ASSERT_LT(*limit, 1000u);
                ++*limit;
            }
            EXPECT_EQ(end.text(), std::string(40, 'x'));
            EXPECT_GT(*limit, 90u);
            *limit = UINT64_MAX;
        }
    }
}

TEST(URLSessionFault, AMissingServerIsReportedAsSuch) {
    std::uint16_t port = 0;
    {
        const LoopbackListener listener;
        port = listener.port();
    }
    URLSession session(URLSessionConfiguration::ephemeral());
    const auto url = URL::parse("http://127.0.0.1:" + std::to_string(port) + "/?key=secret");
    const auto end = TaskEnd::of(session, URLRequest(*url));
    EXPECT_EQ(describe(end), "cannotConnect: No connection to the server could be made (127.0.0.1: Couldn't "
                             "connect to server).");
}

TEST(URLSessionFault, ANameWithoutAnAddressIsReportedAsSuch) {
    URLSession session(URLSessionConfiguration::ephemeral());
    const auto end = TaskEnd::of(session, URLRequest(*URL::parse("https://name.invalid/?key=secret")));
    EXPECT_EQ(end.code(), URLErrorCode::cannotFindHost) << describe(end);
    EXPECT_FALSE(describe(end).contains("secret"));
}

TEST(URLSessionFault, WithoutAThreadARequestEndsUnsent) {
    expectInFreshProcess([] {
        const bool isRefused = refuseThreads();
        URLSession session(URLSessionConfiguration::ephemeral());
        const auto end = TaskEnd::of(session, URLRequest(*URL::parse("http://127.0.0.1:1/")));
        return isRefused && end.code() == URLErrorCode::cannotConnect;
    });
}

} // namespace
} // namespace zelto
