#include "Support/TestHTTPServer.h"

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <string>
#include <string_view>

namespace zelto {
namespace {

// Sends the text to a server and gives all that comes back until the server ends the connection.
std::string talk(const TestHTTPServer& server, std::string_view text) {
    const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(server.port());
    EXPECT_EQ(::connect(socket, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(::send(socket, text.data(), text.size(), MSG_NOSIGNAL), static_cast<ssize_t>(text.size()));
    std::string answer;
    char bytes[1024];
    for (ssize_t count = 0; (count = ::recv(socket, bytes, sizeof bytes, 0)) > 0;) {
        answer.append(bytes, static_cast<std::size_t>(count));
    }
    ::close(socket);
    return answer;
}

TEST(TestHTTPServer, RecordsWholeRequestsOfOneConnectionAndPlaysItsAnswers) {
    TestHTTPServer server({PlayedAnswer::json("{}", 201), {.status = 204, .closes = true}});
    EXPECT_EQ(talk(server, "POST /a?b=c HTTP/1.1\r\nHost: x\r\nX-One: 1\r\nContent-Length: 3\r\n\r\n"
                           "d\r\nDELETE /e HTTP/1.1\r\n\r\n"),
              "HTTP/1.1 201 Played\r\nContent-Type: application/json; charset=utf-8\r\nContent-Length: "
              "2\r\n\r\n{}HTTP/1.1 204 Played\r\n\r\n");
    EXPECT_EQ(server.texts(), (std::vector<std::string>{"POST /a?b=c\nX-One: 1\nContent-Length: 3\n\nd\r\n",
                                                        "DELETE /e\n\n"}));
    EXPECT_EQ(server.connectionCount(), 1);
}

TEST(TestHTTPServer, SendsBytesAsTheyStandAndEndsTheConnection) {
    TestHTTPServer server({PlayedAnswer::bytes("no HTTP")});
    EXPECT_EQ(talk(server, "GET / HTTP/1.1\r\n\r\n"), "no HTTP");
}

TEST(TestHTTPServer, AResetEndsTheConnectionWithoutAnAnswer) {
    TestHTTPServer server({PlayedAnswer::reset()});
    EXPECT_EQ(talk(server, "GET / HTTP/1.1\r\n\r\n"), "");
}

} // namespace
} // namespace zelto
