#include "Support/LoopbackSocket.h"
#include "Support/TestHTTPServer.h"

#include <gtest/gtest.h>

#include <sys/socket.h>

#include <string>
#include <string_view>

namespace zelto {
namespace {

// Sends the text to a server and gives everything it sends until it closes the connection.
std::string talk(const TestHTTPServer& server, std::string_view text) {
    const auto socket = LoopbackSocket::connect(server.port());
    EXPECT_TRUE(sendAll(socket.get(), text));
    std::string response;
    char bytes[1024];
    for (ssize_t count = 0; (count = ::recv(socket.get(), bytes, sizeof bytes, 0)) > 0;) {
        response.append(bytes, static_cast<std::size_t>(count));
    }
    return response;
}

TEST(TestHTTPServer, RecordsWholeRequestsOfOneConnectionAndPlaysItsResponses) {
    TestHTTPServer server({PlayedResponse::json("{}", 201), {.status = 204, .closes = true}});
    EXPECT_EQ(talk(server, "POST /a?b=c HTTP/1.1\r\nHost: x\r\nX-One: 1\r\nContent-Length: 3\r\n\r\n"
                           "d\r\nDELETE /e HTTP/1.1\r\n\r\n"),
              "HTTP/1.1 201 Played\r\nContent-Type: application/json; charset=utf-8\r\nContent-Length: "
              "2\r\n\r\n{}HTTP/1.1 204 Played\r\n\r\n");
    EXPECT_EQ(server.texts(), (std::vector<std::string>{"POST /a?b=c\nX-One: 1\nContent-Length: 3\n\nd\r\n",
                                                        "DELETE /e\n\n"}));
    EXPECT_EQ(server.connectionCount(), 1);
}

TEST(TestHTTPServer, SendsBytesAsTheyStandAndEndsTheConnection) {
    TestHTTPServer server({PlayedResponse::bytes("no HTTP")});
    EXPECT_EQ(talk(server, "GET / HTTP/1.1\r\n\r\n"), "no HTTP");
}

TEST(TestHTTPServer, AResetEndsTheConnectionWithoutAResponse) {
    TestHTTPServer server({PlayedResponse::reset()});
    EXPECT_EQ(talk(server, "GET / HTTP/1.1\r\n\r\n"), "");
}

} // namespace
} // namespace zelto
