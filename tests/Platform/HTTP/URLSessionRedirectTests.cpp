#include <Platform/HTTP/URLSession.h>

#include "Support/SessionTasks.h"
#include "Support/TestHTTPServer.h"

#include <gtest/gtest.h>

#include <atomic>

namespace zelto {
namespace {

URLRequest requestWithSecrets(const URL& url, const std::string& method) {
    URLRequest request(url, method);
    request.headers.set("Authorization", "Bearer secret");
    request.headers.set("Cookie", "secret=1");
    if (method != "GET" && method != "HEAD") {
        request.body = HTTPBody("secret body");
    }
    return request;
}

bool isFollowed(const std::string& method, int status) {
    return status == 307 || status == 308 || (method == "GET" && status <= 303);
}

const std::vector<std::string> methods = {"GET", "HEAD", "POST", "PUT", "PATCH", "DELETE"};
const std::vector<int> statuses = {300, 301, 302, 303, 304, 305, 307, 308};

PlayedResponse redirect(int status, const std::string& location) {
    return {.status = status, .body = status == 304 ? "" : "moved", .fields = {{"Location", location}}};
}

TEST(URLSessionRedirect, ToTheSameOriginIsFollowedByMethodAndStatus) {
    for (const auto& method : methods) {
        for (const int status : statuses) {
            TestHTTPServer server([&](const ReceivedRequest& request) {
                return request.target == "/there?a=b" ? PlayedResponse{} : redirect(status, "/there?a=b#c");
            });
            URLSession session(URLSessionConfiguration::ephemeral());
            const auto end = TaskEnd::of(session, requestWithSecrets(server.url("/here?q=secret"), method));
            const auto what = method + " " + std::to_string(status);
            ASSERT_EQ(end.error, std::nullopt) << what;
            const bool goesOn = isFollowed(method, status) && status != 300 && status != 304;
            EXPECT_EQ(end.status(), goesOn ? 200 : status) << what;
            const auto requests = server.texts();
            ASSERT_EQ(requests.size(), goesOn ? 2u : 1u) << what;
            EXPECT_EQ(end.response->url(), server.url(goesOn ? "/there?a=b#c" : "/here?q=secret")) << what;
            if (goesOn) {
                // The same request, but for the target.
                auto first = requests[0];
                first.replace(first.find("/here?q=secret"), 14, "/there?a=b");
                EXPECT_EQ(requests[1], first) << what;
            }
            EXPECT_EQ(server.connectionCount(), 1) << what;
        }
    }
}

TEST(URLSessionRedirect, ToAnotherOriginIsTheFinalResponseAndNothingGoesThere) {
    TestHTTPServer other([](const ReceivedRequest&) { return PlayedResponse{.body = "stolen"}; });
    for (const auto& method : methods) {
        for (const int status : statuses) {
            std::string location;
            TestHTTPServer server([&](const ReceivedRequest&) { return redirect(status, location); });
            const auto here = std::to_string(server.port());
            const auto there = std::to_string(other.port());
            const std::vector<std::string> locations = {
                "http://127.0.0.1:" + there + "/",         // another port
                "//127.0.0.1:" + there + "/",              //
                "http://localhost:" + here + "/",          // another host
                "http://127.0.0.2:" + here + "/",          //
                "http://localhost:" + there + "/",         //
                "https://127.0.0.1:" + here + "/",         // another scheme
                "https://example.com/",                    //
                "http://example.com/",                     //
                "http://127.0.0.1/",                       //
                "http://u:p@127.0.0.1:" + here + "/",      // credentials
                "http://127.0.0.1:" + here + "@evil/",     //
                "http://127.0.0.1:" + there + "\\@x",      // no URL
                "http://127.0.0.1:" + here + "\\" + there, //
                "file:///etc/passwd",                      // another kind
                "javascript:alert(1)",                     //
                "http://",                                 //
                "http://[::1",                             //
                "/\xC3\xA4 b",                             //
            };
            URLSession session(URLSessionConfiguration::ephemeral());
            for (const auto& each : locations) {
                location = each;
                const auto url = server.url("/?q=secret");
                const auto end = TaskEnd::of(session, requestWithSecrets(url, method));
                const auto what = method + " " + std::to_string(status) + " " + each;
                EXPECT_EQ(end.error, std::nullopt) << what;
                EXPECT_EQ(end.status(), status) << what;
                EXPECT_EQ(end.response->url(), url) << what;
                EXPECT_EQ(end.text(), method == "HEAD" || status == 304 ? "" : "moved") << what;
            }
            EXPECT_EQ(server.requests().size(), locations.size());
        }
    }
    EXPECT_EQ(other.connectionCount(), 0);
}

TEST(URLSessionRedirect, FiveAreFollowedAndTheSixthIsTheFinalResponse) {
    std::atomic<int> count = 0;
    TestHTTPServer server([&](const ReceivedRequest& request) {
        const int number = ++count;
        EXPECT_EQ(request.target, number == 1 ? "/start" : "/hop" + std::to_string(number - 1));
        return redirect(302, "hop" + std::to_string(number));
    });
    URLSession session(URLSessionConfiguration::ephemeral());
    const auto end = TaskEnd::of(session, URLRequest(server.url("/start")));
    EXPECT_EQ(end.status(), 302);
    EXPECT_EQ(end.text(), "moved");
    EXPECT_EQ(end.response->url(), server.url("/hop5"));
    EXPECT_EQ(count, 6);
}

TEST(URLSessionRedirect, WithoutALocationIsTheFinalResponse) {
    TestHTTPServer server({{.status = 302, .body = "whereto"}});
    URLSession session(URLSessionConfiguration::ephemeral());
    const auto end = TaskEnd::of(session, URLRequest(server.url()));
    EXPECT_EQ(end.status(), 302);
    EXPECT_EQ(end.text(), "whereto");
}

TEST(URLSessionRedirect, ALargeBodyIsSentAgainWhole) {
    const std::string text(1'000'000, 'x');
    TestHTTPServer server({redirect(307, "/b"), redirect(308, "/c"), {.body = "taken"}});
    URLSession session(URLSessionConfiguration::ephemeral());
    URLRequest request(server.url("/a"), "POST");
    request.body = HTTPBody(text);
    EXPECT_EQ(TaskEnd::of(session, std::move(request)).text(), "taken");
    const auto requests = server.requests();
    ASSERT_EQ(requests.size(), 3u);
    EXPECT_TRUE(requests[2].target == "/c" && requests[2].body == text);
}

TEST(URLSessionRedirect, ARoutedRequestKeepsToTheOriginThatItNames) {
    const std::string origin = "https://api.example.com";
    std::vector<std::string> locations = {origin + "/b", "https://api.example.com:443/c", "/d",
                                          "https://API.example.com/e", "https://evil.example.com/"};
    std::atomic<std::size_t> next = 0;
    TestHTTPServer server([&](const ReceivedRequest& request) {
        EXPECT_EQ(request.headers.value("Host"), "api.example.com") << request.target;
        return redirect(302, locations.at(next++));
    });
    auto configuration = URLSessionConfiguration::ephemeral();
    configuration.route = server.url();
    URLSession session(configuration);
    const auto end = TaskEnd::of(session, URLRequest(*URL::parse(origin + "/a")));
    EXPECT_EQ(end.status(), 302);
    EXPECT_EQ(end.response->url().absoluteString(), "https://API.example.com/e");
    EXPECT_EQ(server.requests().size(), 5u);
}

TEST(URLSessionRedirect, WithAnEndlessBodyIsFollowedAllTheSame) {
    TestHTTPServer server([](const ReceivedRequest& request) {
        return request.target == "/there" ? PlayedResponse{.body = "arrived"}
                                          : PlayedResponse{.status = 302,
                                                           .body = std::string(1'000'000, 'x'),
                                                           .fields = {{"Location", "/there"}}};
    });
    URLSession session(URLSessionConfiguration::ephemeral());
    EXPECT_EQ(TaskEnd::of(session, URLRequest(server.url("/here"))).text(), "arrived");
}

} // namespace
} // namespace zelto
