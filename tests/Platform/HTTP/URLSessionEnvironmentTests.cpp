#include <Platform/HTTP/URLSession.h>
#include <Platform/NeverDestroyed.h>

#include "Support/Eventually.h"
#include "Support/Sanitizers.h"
#include "Support/ScriptedServer.h"
#include "Support/SessionTasks.h"
#include "Support/TestHTTPServer.h"
#include "Support/TestTLSServer.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <fstream>
#include <mutex>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace zelto {
namespace {

class Variable {
  public:
    Variable(const char* name, const std::string& value) : name_(name) { ::setenv(name, value.c_str(), 1); }

    ~Variable() { ::unsetenv(name_); }

    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

  private:
    const char* const name_;
};

// A proxy that records requests and refuses them.
class RefusingProxy {
  public:
    std::string address() const { return "http://127.0.0.1:" + std::to_string(server_.port()); }

    std::vector<std::string> heads() const {
        const std::lock_guard guard(lock_);
        return heads_;
    }

  private:
    mutable std::mutex lock_;
    std::vector<std::string> heads_;
    ScriptedServer server_{[this](Conversation& conversation) {
        const auto head = conversation.readHead();
        {
            const std::lock_guard guard(lock_);
            heads_.push_back(head);
        }
        conversation.send("HTTP/1.1 403 Forbidden\r\nX-Proxy: yes\r\nContent-Length: 2\r\n\r\nno");
    }};
};

URLRequest requestWithSecrets() {
    URLRequest request(*URL::parse("https://service.example/path?key=secret"), "POST");
    request.headers.set("Authorization", "Bearer secret");
    request.body = HTTPBody("secret");
    return request;
}

const std::string connectHead = "CONNECT service.example:443 HTTP/1.1\r\nHost: service.example:443\r\n";

// Expects an error, and that the proxy saw only the host.
void expectRefusedBy(const RefusingProxy& proxy, const URLSessionConfiguration& configuration) {
    const auto before = proxy.heads().size();
    URLSession session(configuration);
    const auto end = TaskEnd::of(session, requestWithSecrets());
    EXPECT_EQ(end.code(), URLErrorCode::cannotConnect);
    EXPECT_EQ(end.response, nullptr);
    const auto heads = proxy.heads();
    ASSERT_EQ(heads.size(), before + 1);
    EXPECT_TRUE(heads.back().starts_with(connectHead)) << heads.back();
    EXPECT_FALSE(heads.back().contains("secret"));
}

TEST(URLSessionEnvironment, AProxyOfTheEnvironmentIsUsed) {
    for (const auto* name : {"https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY"}) {
        const RefusingProxy proxy;
        const Variable variable(name, proxy.address());
        expectRefusedBy(proxy, URLSessionConfiguration::ephemeral());
    }
}

TEST(URLSessionEnvironment, TheConfigurationsProxyGoesBeforeThatOfTheEnvironment) {
    const RefusingProxy own;
    const RefusingProxy other;
    const Variable proxy("https_proxy", other.address());
    const Variable exceptions("no_proxy", "service.example");
    auto configuration = URLSessionConfiguration::ephemeral();
    configuration.proxy = own.address();
    expectRefusedBy(own, configuration);
    EXPECT_EQ(other.heads().size(), 0u);
}

TEST(URLSessionEnvironment, WhatIsOnThisMachineGoesThroughNoProxy) {
    const RefusingProxy proxy;
    const Variable https("https_proxy", proxy.address());
    const Variable http("http_proxy", proxy.address());
    const Variable all("ALL_PROXY", proxy.address());
    TestHTTPServer server([](const ReceivedRequest&) { return PlayedResponse{.body = "here"}; });
    auto configuration = URLSessionConfiguration::ephemeral();
    for (const bool configured : {false, true}) {
        configuration.proxy = configured ? std::optional(proxy.address()) : std::nullopt;
        URLSession session(configuration);
        EXPECT_EQ(TaskEnd::of(session, URLRequest(server.url())).text(), "here");
        configuration.route = server.url();
        URLSession routed(configuration);
        EXPECT_EQ(TaskEnd::of(routed, requestWithSecrets()).text(), "here");
        configuration.route = std::nullopt;
    }
    const auto authority = makeTestCertificate({.names = "", .isAuthority = true}, nullptr);
    const TemporaryFolder folder;
    const TestTLSServer secure({.certificate = makeTestCertificate({}, &authority)});
    configuration.certificateAuthorities = folder.write("authority.pem", authority.pem());
    URLSession session(configuration);
    EXPECT_EQ(TaskEnd::of(session, URLRequest(secure.url())).text(), "secure");
    EXPECT_EQ(proxy.heads().size(), 0u);
}

TEST(URLSessionEnvironment, CredentialsOfANetrcFileAreNotRead) {
    const TemporaryFolder home;
    home.write(".netrc", "machine 127.0.0.1 login user password secret\n");
    const Variable variable("HOME", home.path());
    TestHTTPServer server({{.body = "ok"}});
    URLSession session(URLSessionConfiguration::ephemeral());
    EXPECT_EQ(TaskEnd::of(session, URLRequest(server.url())).text(), "ok");
    EXPECT_EQ(server.requests().at(0).headers.value("Authorization"), std::nullopt);
}

// These run in a program of their own, since libcurl reads the variable when it is set up.
class URLSessionProcessDeathTest : public testing::Test {
  protected:
    void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

TEST_F(URLSessionProcessDeathTest, TheKeyLogOfTheEnvironmentIsIgnored) {
    const TemporaryFolder folder;
    const auto log = folder / "keys.log";
    const auto sendsAndLeaves = [&] {
        const Variable variable("SSLKEYLOGFILE", log);
        const auto authority = makeTestCertificate({.names = "", .isAuthority = true}, nullptr);
        const TestTLSServer server({.certificate = makeTestCertificate({}, &authority)});
        auto configuration = URLSessionConfiguration::ephemeral();
        configuration.certificateAuthorities = folder.write("authority.pem", authority.pem());
        URLSession session(configuration);
        const bool isWell = TaskEnd::of(session, URLRequest(server.url())).text() == "secure" &&
                            std::getenv("SSLKEYLOGFILE") == log.native() && !std::filesystem::exists(log);
        std::_Exit(isWell ? 0 : 1);
    };
    EXPECT_EXIT(sendsAndLeaves(), testing::ExitedWithCode(0), "");
}

TEST_F(URLSessionProcessDeathTest, AProcessEndsAtOnceWithTransfersUnderWay) {
    const auto leaves = [] {
        static ScriptedServer server([](Conversation& conversation) {
            conversation.readHead();
            conversation.send("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nhello");
            conversation.waitForEnd();
        });
        static URLSession session(URLSessionConfiguration::ephemeral());
        static Completed<TaskEnd> none;
        for (int number = 0; number < 200; ++number) {
            URLRequest request(server.url(), "POST");
            request.body = HTTPBody(std::string(10'000, 'x'));
            session.dataTask(request, [](auto, auto, auto) {})->resume();
        }
        std::exit(eventually([] { return server.connectionCount() >= 10; }) ? 0 : 1);
    };
    EXPECT_EXIT(leaves(), testing::ExitedWithCode(0), "");
}

TEST_F(URLSessionProcessDeathTest, AProcessEndsAtOnceWhileTransfersBeginAndEnd) {
    const auto leaves = [] {
        static auto& session = *new URLSession(URLSessionConfiguration::ephemeral());
        static const auto& nobody = neverDestroyed(*URL::parse("http://127.0.0.1:1/"));
        static std::atomic<int> ended = 0;
        static void (*const begin)() = [] {
            const auto task = session.dataTask(URLRequest(nobody), [](auto, auto, auto) {
                ++ended;
                begin();
            });
            task->resume();
        };
        for (int number = 0; number < 500; ++number) {
            begin();
        }
        std::exit(eventually([] { return ended >= 1000; }) ? 0 : 1);
    };
    EXPECT_EXIT(leaves(), testing::ExitedWithCode(0), "");
}

TEST_F(URLSessionProcessDeathTest, WhoeverWaitsForARequestWhileTheProcessEndsIsNotHeldUp) {
    const auto leaves = [] {
        static const auto& server = *new ScriptedServer("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nok");
        static auto& session = *new URLSession(URLSessionConfiguration::ephemeral());
        std::atexit([] {
            const auto late = TaskEnd::of(session, URLRequest(server.url()));
            std::_Exit(late.code() == URLErrorCode::cancelled ? 0 : 1);
        });
        std::exit(TaskEnd::of(session, URLRequest(server.url())).text() == "ok" ? 2 : 3);
    };
    EXPECT_EXIT(leaves(), testing::ExitedWithCode(0), "");
}

// The sanitizers reserve more address space than a useful limit allows.
#if !defined(ZELTO_ADDRESS_SANITIZER) && !defined(ZELTO_THREAD_SANITIZER)
TEST_F(URLSessionProcessDeathTest, AResponseThatMemoryDoesNotHoldIsAnError) {
    const auto runsOut = [] {
        ScriptedServer server([](Conversation& conversation) {
            if (conversation.readHead().starts_with("GET /small")) {
                conversation.send("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nok");
                return;
            }
            conversation.send("HTTP/1.1 200 OK\r\n\r\n");
            const std::string piece(100'000, 'x');
            while (conversation.send(piece)) {
            }
        });
        URLSession session(URLSessionConfiguration::ephemeral());
        const auto small = URLRequest(server.url("/small"));
        const bool wasWell = TaskEnd::of(session, small).text() == "ok";
        std::ifstream statm("/proc/self/statm");
        rlim_t pages = 0;
        statm >> pages;
        const rlim_t left = 100'000'000;
        const rlimit limit{pages * static_cast<rlim_t>(::sysconf(_SC_PAGESIZE)) + left, RLIM_INFINITY};
        ::setrlimit(RLIMIT_AS, &limit);
        const auto large = TaskEnd::of(session, URLRequest(server.url("/large")));
        const bool isWell = TaskEnd::of(session, small).text() == "ok";
        std::_Exit(wasWell && isWell && large.code() == URLErrorCode::responseTooLarge ? 0 : 1);
    };
    EXPECT_EXIT(runsOut(), testing::ExitedWithCode(0), "");
}
#endif

// Not with the address sanitizer: one of its locks that another thread holds at the fork stays locked in the
// child.
#ifndef ZELTO_ADDRESS_SANITIZER
TEST_F(URLSessionProcessDeathTest, AForkedProcessEndsAtOnce) {
    const auto forks = [] {
        TestHTTPServer server([](const ReceivedRequest&) { return PlayedResponse{.body = "ok"}; });
        URLSession session(URLSessionConfiguration::ephemeral());
        if (TaskEnd::of(session, URLRequest(server.url())).text() != "ok") {
            std::_Exit(1);
        }
        const auto child = ::fork();
        if (child == 0) {
            ::alarm(60);
            std::exit(0);
        }
        int status = 0;
        ::waitpid(child, &status, 0);
        // The parent continues.
        const bool isWell =
            WIFEXITED(status) && TaskEnd::of(session, URLRequest(server.url())).text() == "ok";
        std::_Exit(isWell ? 0 : 1);
    };
    EXPECT_EXIT(forks(), testing::ExitedWithCode(0), "");
}
#endif

} // namespace
} // namespace zelto
