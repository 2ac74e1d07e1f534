#include "RawClient.h"

#include <ZeltoHost/SignIn/SignInListener.h>

#include <Platform/Base64.h>
#include <Platform/Crypto/Digest.h>

#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <thread>

#include <netinet/in.h>
#include <sys/socket.h>

namespace zelto {

namespace {

constexpr auto path = "/sign-in/trello";

const std::string style =
    ":root{color-scheme:light dark;font:16px/1.5 system-ui,sans-serif}body{margin:0;min-height:100vh;display:grid;"
    "place-items:center;background:Canvas;color:CanvasText}main{box-sizing:border-box;width:min(30rem,92vw);"
    "padding:1.5rem 2rem 2rem;border-radius:12px;border:1px solid color-mix(in srgb,CanvasText 20%,Canvas);"
    "overflow-wrap:anywhere}h1{font-size:1.3rem;margin:.6rem 0 1rem}p{margin:0}.program{font-weight:700}";

std::string hashOf(const std::string& content) {
    return "'sha256-" + base64Encoded(viewOf(sha256(content))) + "'";
}

// A whole response, head and body; `policy` is what its content security policy allows beside the style.
std::string responseWith(const std::string& status, const std::string& content,
                         const std::string& policy = "") {
    const auto body = "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\">"
                      "<meta name=\"viewport\" content=\"width=device-width\"><title>zelto</title><style>" +
                      style + "</style></head>\n<body><main><p class=\"program\">zelto</p>" + content +
                      "</main></body></html>\n";
    return "HTTP/1.1 " + status +
           "\r\nContent-Type: text/html; charset=utf-8\r\nContent-Length: " + std::to_string(body.size()) +
           "\r\nContent-Security-Policy: default-src 'none'; style-src " + hashOf(style) + "; " + policy +
           "base-uri 'none'; form-action 'none'; frame-ancestors 'none'\r\n"
           "X-Content-Type-Options: nosniff\r\nReferrer-Policy: no-referrer\r\nCache-Control: no-store\r\n"
           "Connection: close\r\n\r\n" +
           body;
}

const std::string takenText = "<h1>The response has arrived</h1>"
                              "<p>This page can be closed; the terminal shows how it goes on.</p>";
const std::string refusedText = "<h1>This is not the expected response</h1>"
                                "<p>zelto goes on waiting; the terminal has the right address.</p>";
const std::string takenPage = responseWith("200 OK", takenText);
const std::string refusedPage = responseWith("400 Bad Request", refusedText);

bool hasIPv6() {
    const FileDescriptor socket(::socket(AF_INET6, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_in6 address{};
    address.sin6_family = AF_INET6;
    address.sin6_addr = in6addr_loopback;
    return socket &&
           ::bind(socket.number(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

// A listener that runs on a thread of its own; it accepts the code "good".
class Serving {
  public:
    explicit Serving(bool takesFragment = false, SignInListenerLimits limits = {})
        : listener_(SignInListener::listen(path, takesFragment, limits).value()), outcome_(start()) {}

    ~Serving() { stop(); }

    std::uint16_t port() const { return listener_.redirect().port().value(); }

    std::string host() const { return "127.0.0.1:" + std::to_string(port()); }

    std::string request(const std::string& target) const {
        return "GET " + target + " HTTP/1.1\r\nHost: " + host() + "\r\n\r\n";
    }

    std::string ask(const std::string& target) const { return RawClient::exchange(port(), request(target)); }

    std::string good() const { return ask(std::string(path) + "?code=good"); }

    bool isWaiting() const {
        return outcome_.wait_for(std::chrono::seconds(0)) == std::future_status::timeout;
    }

    void stop() { stop_.request_stop(); }

    // Whether the expected response has arrived; the test fails if the listener does not end.
    bool outcome() {
        constexpr std::chrono::minutes maximum{1};
        if (outcome_.wait_for(maximum) != std::future_status::ready) {
            ADD_FAILURE() << "the listener goes on";
            stop();
        }
        return outcome_.get();
    }

    const SignInTraffic& traffic() const { return listener_.traffic(); }

    const URL& redirect() const { return listener_.redirect(); }

  private:
    std::future<bool> start() {
        return std::async(std::launch::async, [this] {
            return listener_.serve(
                [](const FormItems& items) {
                    return items == FormItems{{"code", "good"}} || onlyValue(items, "access_token") == "good";
                },
                stop_.get_token());
        });
    }

    SignInListener listener_;
    std::stop_source stop_;
    std::future<bool> outcome_;
};

} // namespace

TEST(SignInListener, TakesTheResponseAndEnds) {
    Serving serving;
    EXPECT_EQ(serving.redirect().absoluteString(), "http://" + serving.host() + path);
    EXPECT_EQ(serving.good(), takenPage);
    EXPECT_TRUE(serving.outcome());
    EXPECT_EQ(serving.traffic(), SignInTraffic());
    EXPECT_FALSE(RawClient(serving.port()).isConnected());
}

TEST(SignInListener, TakesTheGoodResponseAfterAThousandBadOnes) {
    Serving serving;
    const std::string bad[] = {
        serving.request("/"),
        serving.request(std::string(path) + "?code=bad"),
        serving.request(std::string(path) + "?code=good&code=good"),
        serving.request(std::string(path) + "?error=%3Cscript%3Ealert(1)%3C%2Fscript%3E"),
        serving.request("/sign-in/asana?code=good"),
        "POST " + std::string(path) + "?code=good HTTP/1.1\r\nHost: " + serving.host() + "\r\n\r\n",
        "GET " + std::string(path) + "?code=good HTTP/1.1\r\nHost: evil.example\r\n\r\n",
        "GET " + std::string(path) + "?code=good HTTP/1.1\r\n\r\n",
        "nonsense\r\n\r\n",
        std::string(10'000, 'a'),
    };
    for (int round = 0; round < 100; ++round) {
        for (const auto& request : bad) {
            ASSERT_EQ(RawClient::exchange(serving.port(), request), refusedPage) << request;
        }
    }
    EXPECT_TRUE(serving.isWaiting());
    EXPECT_EQ(serving.good(), takenPage);
    EXPECT_TRUE(serving.outcome());
    EXPECT_EQ(serving.traffic(), (SignInTraffic{.refused = 700, .otherResponses = 300}));
}

TEST(SignInListener, ListensOnBothLoopbackAddressesAndOnNoOther) {
    Serving serving;
    const RawClient other(serving.port(), true);
    ASSERT_EQ(other.isConnected(), hasIPv6());
    if (!other.isConnected()) {
        return;
    }
    ASSERT_TRUE(other.send("GET " + std::string(path) + "?code=good HTTP/1.1\r\nHost: [::1]:" +
                           std::to_string(serving.port()) + "\r\n\r\n"));
    EXPECT_EQ(other.receiveAll(), takenPage);
    EXPECT_TRUE(serving.outcome());
}

TEST(SignInListener, LetsNobodyElseHaveItsPort) {
    Serving serving;
    for (const auto* host : {"127.0.0.1", "localhost"}) {
        const auto address = "http://" + std::string(host) + ":" + std::to_string(serving.port()) + "/x";
        const auto second = SignInListener::listenAt(URL::parse(address).value(), false);
        ASSERT_FALSE(second);
        EXPECT_EQ(second.error(),
                  (SignInError{SignInErrorCode::cannotListen,
                               "Port " + std::to_string(serving.port()) +
                                   " of this machine is in use by another program; end that one first."}));
    }
    serving.stop();
    EXPECT_FALSE(serving.outcome());
}

TEST(SignInListener, OfTwoSignInsAtOnceEachHasAPortOfItsOwn) {
    Serving first;
    Serving second;
    EXPECT_NE(first.port(), second.port());
    EXPECT_EQ(RawClient::exchange(second.port(), first.request(std::string(path) + "?code=good")),
              refusedPage);
    EXPECT_EQ(second.good(), takenPage);
    EXPECT_TRUE(first.isWaiting());
    EXPECT_EQ(first.good(), takenPage);
}

TEST(SignInListener, GivesUpAtAStop) {
    Serving serving;
    const RawClient idle(serving.port());
    serving.stop();
    EXPECT_FALSE(serving.outcome());
    EXPECT_EQ(idle.receiveAll(), "");
}

TEST(SignInListener, IsNotHeldUpByConnectionsThatSayNothing) {
    Serving serving;
    std::vector<RawClient> idle;
    for (int i = 0; i < 100; ++i) {
        idle.emplace_back(serving.port());
        ASSERT_TRUE(idle.back().isConnected());
        idle.back().send("GET ");
    }
    EXPECT_EQ(serving.good(), takenPage);
    EXPECT_TRUE(serving.outcome());
    // The oldest connections were ended.
    EXPECT_GE(serving.traffic().refused, 100U - SignInListenerLimits().connections);
}

TEST(SignInListener, EndsAConnectionThatTakesTooLong) {
    Serving serving(false, {.request = std::chrono::seconds(3)});
    const RawClient slow(serving.port());
    slow.send("GET ");
    EXPECT_EQ(slow.receiveAll(), "");
    EXPECT_TRUE(serving.isWaiting());
    EXPECT_EQ(serving.good(), takenPage);
    EXPECT_TRUE(serving.outcome());
    EXPECT_EQ(serving.traffic().refused, 1U);
}

TEST(SignInListener, TakesARequestThatComesByteByByte) {
    Serving serving;
    const RawClient client(serving.port());
    for (const char c : serving.request(std::string(path) + "?code=good")) {
        ASSERT_TRUE(client.send({&c, 1}));
    }
    EXPECT_EQ(client.receiveAll(), takenPage);
    EXPECT_TRUE(serving.outcome());
}

TEST(SignInListener, TakesTheResponseWhileItIsFlooded) {
    Serving serving;
    std::jthread flood([&](const std::stop_token& stop) {
        while (!stop.stop_requested()) {
            const RawClient client(serving.port());
            client.isConnected() && client.send(serving.request("/flood"));
        }
    });
    // A client that the flood has displaced tries again, as a user would.
    std::string response;
    for (int attempt = 0; attempt < 100 && response != takenPage; ++attempt) {
        response = serving.good();
    }
    EXPECT_EQ(response, takenPage);
    EXPECT_TRUE(serving.outcome());
}

TEST(SignInListener, OfTheImplicitFlowShowsThePageThatPostsTheFragment) {
    Serving serving(true);
    const auto page = serving.ask(path);
    const std::string script = "const response=location.hash.slice(1)||location.search.slice(1);"
                               "history.replaceState(null,'',location.pathname);"
                               "const show=id=>document.getElementById(id).hidden=false;"
                               "fetch(location.pathname,{method:'POST',body:new URLSearchParams(response)})"
                               ".then(r=>show(r.ok?'taken':'refused'),()=>show('refused'));";
    EXPECT_EQ(page,
              responseWith("200 OK",
                           "<div id=\"taken\" hidden>" + takenText + "</div><div id=\"refused\" hidden>" +
                               refusedText +
                               "</div><noscript><h1>The response cannot be read</h1><p>Without scripts this "
                               "page cannot hand it on. Paste this page's whole address into the "
                               "terminal.</p></noscript><script>" +
                               script + "</script>",
                           "script-src " + hashOf(script) + "; connect-src 'self'; "));
    EXPECT_EQ(serving.ask(std::string(path) + "?access_token=good"), page);
    EXPECT_TRUE(serving.isWaiting());
    const auto post = [&](const std::string& body) {
        return RawClient::exchange(serving.port(),
                                   "POST " + std::string(path) + " HTTP/1.1\r\nHost: " + serving.host() +
                                       "\r\nContent-Type: application/x-www-form-urlencoded;charset=UTF-8\r\n"
                                       "Content-Length: " +
                                       std::to_string(body.size()) + "\r\n\r\n" + body);
    };
    EXPECT_EQ(post("access_token=bad"), refusedPage);
    EXPECT_EQ(post("access_token=good&state=s"), takenPage);
    EXPECT_TRUE(serving.outcome());
    EXPECT_EQ(serving.traffic(), (SignInTraffic{.refused = 0, .otherResponses = 1}));
}

TEST(SignInListener, AtAFixedAddressTakesItsHostAndPath) {
    // A port that was free a moment ago, unless another program has taken it.
    std::uint16_t port = 0;
    std::string address;
    auto listener = SignInListener::listen("/x", false);
    for (int attempt = 0; attempt < 20 && !address.ends_with("/oauth/done"); ++attempt) {
        port = SignInListener::listen("/x", false)->redirect().port().value();
        const auto wanted = "http://localhost:" + std::to_string(port) + "/oauth/done";
        if (auto taken = SignInListener::listenAt(URL::parse(wanted).value(), false)) {
            listener = std::move(taken);
            address = wanted;
        }
    }
    EXPECT_EQ(listener->redirect().absoluteString(), address);
    auto taken = std::async(std::launch::async,
                            [&] { return listener->serve([](const FormItems&) { return true; }, {}); });
    EXPECT_EQ(RawClient::exchange(port, "GET /oauth/done?code=good HTTP/1.1\r\nHost: localhost:" +
                                            std::to_string(port) + "\r\n\r\n"),
              takenPage);
    EXPECT_TRUE(taken.get());
}

TEST(SignInListener, CanListenAtAddressesOfThisMachineAlone) {
    const auto can = [](const char* url) { return SignInListener::canListenAt(URL::parse(url).value()); };
    EXPECT_TRUE(can("http://127.0.0.1:8217/x"));
    EXPECT_TRUE(can("http://[::1]:8217/"));
    EXPECT_TRUE(can("http://localhost:8217"));
    EXPECT_TRUE(can("http://localhost"));
    EXPECT_FALSE(can("https://localhost:8217/x"));
    EXPECT_FALSE(can("http://example.org:8217/x"));
    EXPECT_FALSE(can("http://0.0.0.0:8217/x"));
    EXPECT_FALSE(can("http://me@localhost:8217/x"));
    EXPECT_FALSE(can("http://localhost:8217/x?y"));
    EXPECT_FALSE(can("http://localhost:8217/x#y"));
    EXPECT_FALSE(can("zelto://localhost:8217/x"));
}

} // namespace zelto
