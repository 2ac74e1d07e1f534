#include <Platform/HTTP/URLSession.h>

#include "Support/KillingProxy.h"
#include "Support/SessionTasks.h"
#include "Support/TestHTTP2Server.h"

#include <gtest/gtest.h>

#include <vector>

namespace zelto {
namespace {

// A proxy counts the connections to the server, and ends the first one where a test says so.
class URLSessionHTTP2 : public testing::Test {
  protected:
    explicit URLSessionHTTP2(std::uint64_t mostToClient = UINT64_MAX)
        : proxy(server.port(), [mostToClient](int connection) {
              return connection == 0 ? KillingProxy::Limits{.toClient = mostToClient}
                                     : KillingProxy::Limits{};
          }) {}

    URLSessionConfiguration configuration() const {
        auto configuration = URLSessionConfiguration::ephemeral();
        configuration.certificateAuthorities = authorityFile;
        return configuration;
    }

    URL url(const std::string& path) const {
        return *URL::parse("https://localhost:" + std::to_string(*proxy.url().port()) + path);
    }

    const TemporaryFolder files;
    const TestCertificate authority = makeTestCertificate({.names = "", .isAuthority = true}, nullptr);
    const std::filesystem::path authorityFile = files.write("authority.pem", authority.pem());
    const std::string large = std::string(std::size_t{30} << 20, 'x');
    const std::filesystem::path smallFile = files.write("small", "a small file");
    const std::filesystem::path largeFile = files.write("large", large);
    const TestHTTP2Server server{files, makeTestCertificate({}, &authority)};
    const KillingProxy proxy;
};

TEST_F(URLSessionHTTP2, RequestsAtOnceShareOneConnection) {
    URLSession session(configuration());
    std::vector<Completed<TaskEnd>> ends(500);
    for (auto& end : ends) {
        session.dataTask(URLRequest(url("/small")), TaskEnd::into(end))->resume();
    }
    for (auto& end : ends) {
        EXPECT_EQ(end.value().text(), "a small file");
    }
    EXPECT_EQ(proxy.connectionCount(), 1);
}

TEST_F(URLSessionHTTP2, HeadersAreFoundInAnyCase) {
    URLSession session(configuration());
    const auto end = TaskEnd::of(session, URLRequest(url("/missing")));
    ASSERT_FALSE(end.error) << end.error->message;
    EXPECT_EQ(end.status(), 404);
    EXPECT_EQ(end.http().header("Content-Type"), "text/html; charset=UTF-8");
}

TEST_F(URLSessionHTTP2, ABodyBeyondEveryWindowGoesUpAndComesBack) {
    URLSession session(configuration());
    URLRequest request(url("/echo"), "POST");
    std::string body;
    while (body.size() < std::size_t{5} << 20) {
        body += std::to_string(body.size()) + " ";
    }
    request.body = HTTPBody(body);
    EXPECT_TRUE(TaskEnd::of(session, request).text() == body);
    EXPECT_EQ(proxy.connectionCount(), 1);
}

TEST_F(URLSessionHTTP2, CancellingOneRequestLeavesTheOthersAndTheConnection) {
    // Too large to arrive completely before it is cancelled.
    std::filesystem::resize_file(files.write("huge", ""), std::uintmax_t{200} << 20);
    URLSession session(configuration());
    Completed<TaskEnd> cancelled;
    Completed<TaskEnd> other;
    const auto task = session.dataTask(URLRequest(url("/huge")), TaskEnd::into(cancelled));
    task->resume();
    session.dataTask(URLRequest(url("/large")), TaskEnd::into(other))->resume();
    EXPECT_EQ(TaskEnd::of(session, URLRequest(url("/small"))).text(), "a small file");
    task->cancel();
    EXPECT_EQ(cancelled.value().code(), URLErrorCode::cancelled);
    EXPECT_TRUE(other.value().text() == large);
    EXPECT_EQ(TaskEnd::of(session, URLRequest(url("/small"))).text(), "a small file");
    EXPECT_EQ(proxy.connectionCount(), 1);
}

class URLSessionHTTP2Killed : public URLSessionHTTP2 {
  protected:
    URLSessionHTTP2Killed() : URLSessionHTTP2(std::uint64_t{5} << 20) {}
};

TEST_F(URLSessionHTTP2Killed, EveryRequestOfAConnectionThatDiesEndsOnce) {
    URLSession session(configuration());
    URLRequest request(url("/echo"), "POST");
    request.body = HTTPBody(std::string(std::size_t{1} << 20, 'x'));
    std::vector<Completed<TaskEnd>> ends(20);
    for (auto& end : ends) {
        session.dataTask(request, TaskEnd::into(end))->resume();
    }
    int lost = 0;
    for (auto& end : ends) {
        const auto value = end.value();
        EXPECT_TRUE(value.error ? value.code() == URLErrorCode::connectionLost
                                : value.data->size() == std::size_t{1} << 20);
        lost += value.error.has_value();
    }
    EXPECT_GE(lost, 1);
    EXPECT_EQ(proxy.killedCount(), 1);
    EXPECT_EQ(TaskEnd::of(session, URLRequest(url("/small"))).text(), "a small file");
}

} // namespace
} // namespace zelto
