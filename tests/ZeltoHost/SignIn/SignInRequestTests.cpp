#include <ZeltoHost/SignIn/SignInRequest.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

using enum SignInRequestKind;

const SignInRequestRules rules{"/sign-in/asana", {"127.0.0.1:8217", "[::1]:8217"}, false};
const SignInRequestRules fragmentRules{"/sign-in/asana", {"127.0.0.1:8217"}, true};

std::string get(const std::string& target, const std::string& fields = "Host: 127.0.0.1:8217\r\n") {
    return "GET " + target + " HTTP/1.1\r\n" + fields + "\r\n";
}

std::string post(const std::string& body, const std::string& fields) {
    return "POST /sign-in/asana HTTP/1.1\r\nHost: 127.0.0.1:8217\r\n" + fields + "\r\n" + body;
}

const std::string formType = "Content-Type: application/x-www-form-urlencoded;charset=UTF-8\r\n";

} // namespace

TEST(SignInRequest, IsAResponseAtTheExpectedPath) {
    const SignInRequest response{SignInRequestKind::response, {{"code", "a b"}, {"state", "s"}}};
    EXPECT_EQ(readSignInRequest(get("/sign-in/asana?code=a+b&state=s"), rules), response);
    EXPECT_EQ(
        readSignInRequest(get("/sign-in/asana?code=a%20b&state=s", "hOST:[::1]:8217  \r\nA: b\r\n"), rules),
        response);
    EXPECT_EQ(readSignInRequest(
                  "GET /sign-in/asana?code=a+b&state=s HTTP/1.0\r\nHost: 127.0.0.1:8217\r\n\r\nmore", rules),
              response);
}

TEST(SignInRequest, IsIncompleteUntilItsHeadHasEnded) {
    const auto whole = get("/sign-in/asana?code=a&state=s");
    for (std::size_t size = 0; size < whole.size(); ++size) {
        EXPECT_EQ(readSignInRequest(whole.substr(0, size), rules).kind, incomplete) << size;
    }
    EXPECT_EQ(readSignInRequest(whole, rules).kind, response);
}

TEST(SignInRequest, IsRefusedForAnythingElse) {
    const std::string target = "/sign-in/asana?code=a&state=s";
    const std::string bad[] = {
        get("/"),
        get("/favicon.ico"),
        get("/sign-in/asana"),
        get("/sign-in/asana/?code=a"),
        get("/sign-in/Asana?code=a"),
        get("/sign-in/trello?code=a&state=s"),
        get("//sign-in/asana?code=a"),
        get("/x/../sign-in/asana?code=a"),
        get("/sign-in%2Fasana?code=a"),
        get("http://127.0.0.1:8217/sign-in/asana?code=a"),
        get("*"),
        get(target, ""),
        get(target, "Host:\r\n"),
        get(target, "Host: localhost:8217\r\n"),
        get(target, "Host: 127.0.0.1\r\n"),
        get(target, "Host: 127.0.0.1:8218\r\n"),
        get(target, "Host: evil.example:8217\r\n"),
        get(target, "Host: 127.0.0.1:8217.evil.example\r\n"),
        get(target, "Host: 127.0.0.1:8217\r\nHost: 127.0.0.1:8217\r\n"),
        get(target, "Host : 127.0.0.1:8217\r\n"),
        get(target, " Host: 127.0.0.1:8217\r\n"),
        get(target, "Host: 127.0.0.1:8217\r\nno colon\r\n"),
        get(target, "Host: 127.0.0.1:8217\r\nA: b\rc\r\n"),
        get(target, "Host: 127.0.0.1:8217\r\nA: b\nc: d\r\n"),
        get(target, std::string("Host: 127.0.0.1:8217\r\nA: \0\r\n", 28)),
        get("/sign-in/asana?code=%zz"),
        get("/sign-in/asana?code=%ff"),
        get("/sign-in/asana?code=a b"),
        get("/sign-in/asana?code=\xc3\xa4"),
        "HEAD " + target + " HTTP/1.1\r\nHost: 127.0.0.1:8217\r\n\r\n",
        "get " + target + " HTTP/1.1\r\nHost: 127.0.0.1:8217\r\n\r\n",
        "OPTIONS " + target + " HTTP/1.1\r\nHost: 127.0.0.1:8217\r\n\r\n",
        "PUT " + target + " HTTP/1.1\r\nHost: 127.0.0.1:8217\r\n\r\n",
        "GET " + target + " HTTP/2.0\r\nHost: 127.0.0.1:8217\r\n\r\n",
        "GET " + target + "\r\nHost: 127.0.0.1:8217\r\n\r\n",
        "GET  HTTP/1.1\r\nHost: 127.0.0.1:8217\r\n\r\n",
        "\r\n\r\n",
        "\x16\x03\x01\x02\r\n\r\n",
        post("code=a&state=s", formType + "Content-Length: 14\r\n"),
    };
    for (const auto& request : bad) {
        EXPECT_EQ(readSignInRequest(request, rules), SignInRequest()) << request;
    }
}

TEST(SignInRequest, OfMoreThanEightKibibytesOfHeadIsRefusedBeforeItsEnd) {
    const auto start = get("/sign-in/asana?code=a&state=s", "Host: 127.0.0.1:8217\r\nA: ");
    const auto head = start.substr(0, start.size() - 2);
    const auto filled = head + std::string(maximumSignInHead - head.size(), 'a');
    EXPECT_EQ(readSignInRequest(filled, rules).kind, incomplete);
    EXPECT_EQ(readSignInRequest(filled + "\r\n\r\n", rules).kind, response);
    EXPECT_EQ(readSignInRequest(filled + "a", rules).kind, refused);
    EXPECT_EQ(readSignInRequest(filled + "a\r\n\r\n", rules).kind, refused);
}

TEST(SignInRequest, OfTheImplicitFlowGetsAPageAndPostsTheResponse) {
    EXPECT_EQ(readSignInRequest(get("/sign-in/asana"), fragmentRules).kind, fragmentPage);
    EXPECT_EQ(readSignInRequest(get("/sign-in/asana?error=access_denied"), fragmentRules).kind, fragmentPage);
    const auto whole = post("access_token=a&state=s", formType + "Content-Length: 22\r\n");
    for (std::size_t missing = 1; missing < 60; ++missing) {
        EXPECT_EQ(readSignInRequest(whole.substr(0, whole.size() - missing), fragmentRules).kind, incomplete);
    }
    EXPECT_EQ(readSignInRequest(whole, fragmentRules),
              (SignInRequest{response, {{"access_token", "a"}, {"state", "s"}}}));
}

TEST(SignInRequest, OfTheImplicitFlowIsRefusedWithABodyThatIsNoForm) {
    const auto length = std::string("Content-Length: 22\r\n");
    const std::string body = "access_token=a&state=s";
    const std::string bad[] = {
        post(body, length),
        post(body, "Content-Type: text/plain\r\n" + length),
        post(body, formType),
        post(body, formType + "Content-Length: 21\r\n"),
        post(body, formType + "Content-Length: -1\r\n"),
        post(body, formType + "Content-Length: 22x\r\n"),
        post(body, formType + "Content-Length:\r\n"),
        post(body, formType + "Content-Length: 8193\r\n"),
        post(body, formType + "Content-Length: 99999999999999999999\r\n"),
        post(body, formType + length + length),
        post(body, formType + length + "Transfer-Encoding: chunked\r\n"),
        post("access_token=%zz&state", formType + length),
        "POST /sign-in/asana?a=b HTTP/1.1\r\nHost: 127.0.0.1:8217\r\n" + formType + length + "\r\n" + body,
        "POST /sign-in/asana HTTP/1.1\r\nHost: evil.example\r\n" + formType + length + "\r\n" + body,
    };
    for (const auto& request : bad) {
        EXPECT_EQ(readSignInRequest(request, fragmentRules), SignInRequest()) << request;
    }
}

TEST(FormItems, AreNamedOnceOrNotTaken) {
    EXPECT_EQ(onlyValue(*parseFormItems("a=1&b=2&a=3"), "a"), std::nullopt);
    EXPECT_EQ(onlyValue(*parseFormItems("a=1&b=2"), "b"), "2");
    EXPECT_EQ(onlyValue(*parseFormItems("a=1&b"), "b"), "");
    EXPECT_EQ(onlyValue(*parseFormItems("a=1&b"), "c"), std::nullopt);
    EXPECT_TRUE(repeatsName(*parseFormItems("a=1&b=2&a=3")));
    EXPECT_FALSE(repeatsName(*parseFormItems("a=1&b=2")));
}

} // namespace zelto
