#include "RawClient.h"

#include <ZeltoHost/SignIn/SignIn.h>

#include <ZeltoHost/SignIn/FormItems.h>

#include <Support/LogCapture.h>
#include <Support/ServiceRoute.h>
#include <Support/TestHTTPServer.h>

#include <Platform/PercentEncoding.h>

#include <gtest/gtest.h>

#include <future>

namespace zelto {

namespace {

constexpr auto tokenResponse =
    R"({"access_token":"canary-access","refresh_token":"canary-refresh","expires_in":3600})";

std::unique_ptr<SignIn> begun(ServiceType type, SignInOptions options = {}) {
    auto signIn = SignIn::begin(signInServiceFor(type).value(), options);
    EXPECT_TRUE(signIn) << signIn.error().message;
    return std::move(signIn).value();
}

// An item of the page's query.
std::string itemOf(const SignIn& signIn, std::string_view name) {
    return onlyValue(parseFormItems(signIn.address().query().value()).value(), name).value_or("");
}

// A browser that returns with a response in the query; gives the status line.
std::string comeBack(const SignIn& signIn, const std::string& query) {
    const auto& redirect = signIn.redirect();
    const auto port = redirect.port().value();
    const auto response =
        RawClient::exchange(port, "GET " + redirect.percentEncodedPath() + "?" + query +
                                      " HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(port) + "\r\n\r\n");
    return response.substr(0, response.find('\r'));
}

std::string goodResponse(const SignIn& signIn) {
    return "code=canary-code&state=" + itemOf(signIn, "state");
}

using TokenResult = Result<SignInToken, SignInError>;

// The result of the sign-in while a browser does its part.
TokenResult outcome(SignIn& signIn, const std::function<void()>& browse, const std::stop_token& stop = {}) {
    auto ended = std::async(std::launch::async, [&] { return signIn.finish(stop); });
    browse();
    return ended.get();
}

std::string complaint(const TokenResult& result) {
    return result ? "" : std::string(nameOf(result.error().code)) + ": " + result.error().message;
}

} // namespace

TEST(SignIn, DoesNotBeginWithAPlainHTTPAddressOfAnotherMachine) {
    for (const auto* address :
         {"http://example.org/callback", "http://127.0.0.1.example.org/", "http://10.0.0.1/"}) {
        const auto signIn = SignIn::begin(signInServiceFor(ServiceType::ZoomMeeting).value(),
                                          {.redirect = URL::parse(address)});
        ASSERT_FALSE(signIn) << address;
        EXPECT_EQ(signIn.error(), (SignInError{SignInErrorCode::cannotListen,
                                               "A redirect address of plain http has to be on this machine: "
                                               "127.0.0.1, [::1] or localhost."}));
    }
}

TEST(SignIn, GetsTheTokenOfEveryServiceWithACode) {
    for (const auto& each : casesOf<ServiceType>()) {
        const auto service = signInServiceFor(each.value);
        if (!service || service->flow != SignInFlow::authorizationCode) {
            continue;
        }
        const std::string body = service->tokenObject.empty()
                                     ? tokenResponse
                                     : R"({"ok":true,"authed_user":)" + std::string(tokenResponse) + "}";
        const TestHTTPServer server({PlayedResponse::json(body)});
        const ServiceRoute route(server);
        const auto signIn = begun(each.value);
        const auto token =
            outcome(*signIn, [&] { EXPECT_EQ(comeBack(*signIn, goodResponse(*signIn)), "HTTP/1.1 200 OK"); });
        ASSERT_TRUE(token) << token.error().message;
        EXPECT_EQ(*token,
                  (SignInToken{
                      .accessToken = "canary-access", .refreshToken = "canary-refresh", .expiresIn = 3600}));
        const auto request = server.requests().at(0);
        EXPECT_EQ(request.headers.value("Host"), service->tokenURL.host());
        EXPECT_EQ(request.target, service->tokenURL.percentEncodedPath());
        const auto items = parseFormItems(request.body).value();
        EXPECT_EQ(onlyValue(items, "code"), "canary-code");
        EXPECT_EQ(onlyValue(items, "redirect_uri"), signIn->redirect().absoluteString());
        EXPECT_EQ(onlyValue(items, "code_verifier").has_value(), service->takesPKCE);
    }
}

TEST(SignIn, GetsTheTokenOfOAuth1) {
    for (const auto type : {ServiceType::Trello, ServiceType::Evernote}) {
        const auto service = signInServiceFor(type).value();
        const TestHTTPServer server(
            {PlayedResponse{
                 .body = "oauth_token=request&oauth_token_secret=canary-secret&oauth_callback_confirmed="
                         "true"},
             PlayedResponse{.body = "oauth_token=canary-access&oauth_token_secret=canary-token-secret"}});
        const ServiceRoute route(server);
        const auto signIn = begun(type);
        const auto page = service.authorizationURL.absoluteString();
        EXPECT_EQ(signIn->address().absoluteString(),
                  page + (page.find('?') == std::string::npos ? "?" : "&") + "oauth_token=request");
        const auto token = outcome(*signIn, [&] {
            EXPECT_EQ(comeBack(*signIn, "oauth_token=other&oauth_verifier=v"), "HTTP/1.1 400 Bad Request");
            EXPECT_EQ(comeBack(*signIn, "oauth_token=request&oauth_verifier=canary-verifier"),
                      "HTTP/1.1 200 OK");
        });
        ASSERT_TRUE(token) << token.error().message;
        EXPECT_EQ(*token,
                  (SignInToken{.accessToken = "canary-access", .tokenSecret = "canary-token-secret"}));
        const auto requests = server.requests();
        const auto first = requests.at(0).headers.value("Authorization").value_or("");
        const auto second = requests.at(1).headers.value("Authorization").value_or("");
        EXPECT_EQ(requests.at(0).method + " " + requests.at(0).target,
                  "POST " + service.requestTokenURL->percentEncodedPath());
        EXPECT_EQ(requests.at(1).method + " " + requests.at(1).target,
                  "POST " + service.tokenURL.percentEncodedPath());
        const auto callback = percentEncodeBytes("http://", AllowedCharacters::alphanumerics) +
                              "127.0.0.1%3A" + std::to_string(signIn->redirect().port().value());
        EXPECT_NE(first.find("oauth_callback=\"" + callback + "%2Fsign-in%2F"), std::string::npos) << first;
        EXPECT_EQ(first.find("oauth_token="), std::string::npos);
        EXPECT_NE(second.find("oauth_token=\"request\""), std::string::npos);
        EXPECT_NE(second.find("oauth_verifier=\"canary-verifier\""), std::string::npos);
    }
}

TEST(SignIn, GetsTheTokenOfTheImplicitFlow) {
    const auto signIn = begun(ServiceType::MeisterTask);
    const auto token = outcome(*signIn, [&] {
        EXPECT_EQ(comeBack(*signIn, ""), "HTTP/1.1 200 OK");
        const auto body = "access_token=canary-access&token_type=bearer&state=" + itemOf(*signIn, "state");
        const auto port = signIn->redirect().port().value();
        const auto response = RawClient::exchange(
            port, "POST /sign-in/meistertask HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(port) +
                      "\r\nContent-Type: application/x-www-form-urlencoded\r\nContent-Length: " +
                      std::to_string(body.size()) + "\r\n\r\n" + body);
        EXPECT_TRUE(response.starts_with("HTTP/1.1 200 OK"));
    });
    ASSERT_TRUE(token) << token.error().message;
    EXPECT_EQ(*token, SignInToken{.accessToken = "canary-access"});
}

TEST(SignIn, ReportsADenialAndAsksForNoToken) {
    const TestHTTPServer server(std::vector<PlayedResponse>{});
    const ServiceRoute route(server);
    const auto signIn = begun(ServiceType::Asana);
    EXPECT_EQ(complaint(outcome(*signIn,
                                [&] {
                                    EXPECT_EQ(comeBack(*signIn, "error=access_denied&state=" +
                                                                    itemOf(*signIn, "state")),
                                              "HTTP/1.1 200 OK");
                                })),
              "denied: The access was denied on the page of Asana.");
}

TEST(SignIn, ReportsWhatTheTokenEndpointSays) {
    struct Row {
        PlayedResponse response;
        std::string complaint;
    };

    const Row rows[] = {
        {PlayedResponse::json(R"({"error":"invalid_grant"})", 400),
         "refused: Asana does not take the code of its own page; it is spent or too old. Sign in again "
         "(invalid_grant)."},
        {PlayedResponse::json("", 500),
         "refused: Asana has trouble of its own; try again later (server_error)."},
        {PlayedResponse::json("{}"), "badResponse: Asana responded without a token."},
        {PlayedResponse::json(R"({"access_token":"a\r\nb"})"),
         "badResponse: Asana responded without a token."},
        {PlayedResponse{.status = 302, .fields = {{"Location", "https://elsewhere.example/"}}},
         "refused: Asana refused the sign-in."},
    };
    for (const auto& row : rows) {
        const TestHTTPServer server({row.response});
        const ServiceRoute route(server);
        const auto signIn = begun(ServiceType::Asana);
        EXPECT_EQ(complaint(outcome(*signIn, [&] { comeBack(*signIn, goodResponse(*signIn)); })),
                  row.complaint);
    }
    const TestHTTPServer server({PlayedResponse::reset()});
    const ServiceRoute route(server);
    const auto signIn = begun(ServiceType::Asana);
    const auto lost = outcome(*signIn, [&] { comeBack(*signIn, goodResponse(*signIn)); });
    ASSERT_FALSE(lost);
    EXPECT_EQ(lost.error().code, SignInErrorCode::connectionError);
    EXPECT_TRUE(lost.error().message.starts_with("Asana could not be reached: ")) << lost.error().message;
}

TEST(SignIn, DoesNotBeginWithoutARequestToken) {
    struct Row {
        PlayedResponse response;
        SignInErrorCode code;
    };

    const Row rows[] = {
        {PlayedResponse{.status = 401, .body = "invalid key"}, SignInErrorCode::refused},
        {PlayedResponse{.status = 503}, SignInErrorCode::refused},
        {PlayedResponse{.body = "hello"}, SignInErrorCode::badResponse},
        {PlayedResponse{.body = "oauth_token=a&oauth_token_secret=b"}, SignInErrorCode::badResponse},
        {PlayedResponse{.body = "oauth_token=a&oauth_token_secret=b&"
                                "oauth_callback_confirmed=false"},
         SignInErrorCode::badResponse},
        {PlayedResponse::reset(), SignInErrorCode::connectionError}};
    for (const auto& row : rows) {
        const TestHTTPServer server({row.response});
        const ServiceRoute route(server);
        const auto signIn = SignIn::begin(signInServiceFor(ServiceType::Trello).value(), {});
        ASSERT_FALSE(signIn);
        EXPECT_EQ(signIn.error().code, row.code) << signIn.error().message;
    }
}

TEST(SignIn, EndsWhenItsTimeHasRunOut) {
    const auto signIn = begun(ServiceType::Asana, {.limit = std::chrono::milliseconds(1)});
    EXPECT_EQ(complaint(signIn->finish()), "timedOut: The browser did not come back in time.");
}

TEST(SignIn, ReportsWhatCameInsteadOfTheResponse) {
    const auto signIn = begun(ServiceType::Asana, {.limit = std::chrono::seconds(5)});
    EXPECT_EQ(complaint(outcome(*signIn,
                                [&] {
                                    comeBack(*signIn, "code=x&state=wrong");
                                    comeBack(*signIn, "code=x&state=wrong");
                                    comeBack(*signIn, "code=%zz");
                                })),
              "timedOut: The browser did not come back in time. 3 other requests came instead, "
              "among them 2 responses of another sign-in.");
}

TEST(SignIn, EndsAtAStop) {
    const auto signIn = begun(ServiceType::Asana);
    std::stop_source stop;
    EXPECT_EQ(complaint(outcome(
                  *signIn, [&] { stop.request_stop(); }, stop.get_token())),
              "canceled: The sign-in was canceled.");
    EXPECT_FALSE(RawClient(signIn->redirect().port().value()).isConnected());
}

TEST(SignIn, EndsAtAStopWhileTheTokenIsFetched) {
    std::stop_source stop;
    const TestHTTPServer server([&](const ReceivedRequest&) {
        stop.request_stop();
        return PlayedResponse::reset();
    });
    const ServiceRoute route(server);
    const auto signIn = begun(ServiceType::Asana);
    const auto ended = outcome(
        *signIn, [&] { comeBack(*signIn, goodResponse(*signIn)); }, stop.get_token());
    EXPECT_FALSE(ended);
}

TEST(SignIn, TakesAPastedAddress) {
    const TestHTTPServer server({PlayedResponse::json(tokenResponse)});
    const ServiceRoute route(server);
    const auto signIn = begun(ServiceType::Asana);
    const auto redirect = signIn->redirect().absoluteString();
    const auto token = outcome(*signIn, [&] {
        EXPECT_EQ(signIn->paste(""), PasteOutcome::noAddress);
        EXPECT_EQ(signIn->paste("code=canary-code"), PasteOutcome::noAddress);
        EXPECT_EQ(signIn->paste("\x1b[31m\xff"), PasteOutcome::noAddress);
        EXPECT_EQ(signIn->paste(std::string(1 << 20, 'a')), PasteOutcome::noAddress);
        EXPECT_EQ(signIn->paste("https://evil.example/?" + goodResponse(*signIn)),
                  PasteOutcome::otherAddress);
        EXPECT_EQ(signIn->paste(redirect + "/more?" + goodResponse(*signIn)), PasteOutcome::otherAddress);
        EXPECT_EQ(signIn->paste(redirect + "?code=canary-code&state=wrong"), PasteOutcome::otherResponse);
        EXPECT_EQ(signIn->paste("  " + redirect + "?" + goodResponse(*signIn) + "\r\n"), PasteOutcome::taken);
        EXPECT_EQ(signIn->paste(redirect + "?" + goodResponse(*signIn)), PasteOutcome::otherResponse);
    });
    ASSERT_TRUE(token) << token.error().message;
    EXPECT_EQ(token->accessToken, "canary-access");
}

TEST(SignIn, KnowsAPastedAddressThatWasCut) {
    for (const auto type : {ServiceType::Asana, ServiceType::MeisterTask}) {
        const auto signIn = begun(type);
        const bool isImplicit = type == ServiceType::MeisterTask;
        const auto redirect = signIn->redirect().absoluteString();
        const auto begin = redirect + (isImplicit ? "#" : "?");
        const std::string value = isImplicit ? "access_token=a%2Fb" : "code=a%2Fb";
        const auto mark = "state=" + itemOf(*signIn, "state");
        // Of a value at the end, nobody knows how long it should be.
        const auto wholeMarkFirst = mark + "&" + value.substr(0, value.find('=') + 2);
        for (const auto& whole : {value + "&" + mark, wholeMarkFirst}) {
            for (std::size_t length = 0; length < whole.size(); ++length) {
                EXPECT_EQ(signIn->paste(begin + whole.substr(0, length)), PasteOutcome::cut)
                    << whole.substr(0, length);
            }
        }
        EXPECT_EQ(signIn->paste(redirect), PasteOutcome::cut);
        EXPECT_EQ(signIn->paste(redirect.substr(0, redirect.size() - 1)), PasteOutcome::cut);
        EXPECT_EQ(signIn->paste(begin + value + "&" + mark), PasteOutcome::taken);
    }
}

TEST(SignIn, DoubtsAPastedAddressThatTheServiceRefuses) {
    const TestHTTPServer server({PlayedResponse::json(R"({"error":"invalid_grant"})", 400)});
    const ServiceRoute route(server);
    const auto signIn = begun(ServiceType::Asana);
    EXPECT_EQ(signIn->paste(signIn->redirect().absoluteString() + "?" + goodResponse(*signIn)),
              PasteOutcome::taken);
    EXPECT_EQ(complaint(signIn->finish()),
              "refused: Asana does not take the code of its own page; it is spent or too old. Sign in again "
              "(invalid_grant). Paste the whole address, should it have been cut.");
}

TEST(SignIn, TellsADenialOfOAuth1FromAPastedAddressThatWasCut) {
    const PlayedResponse requestToken{
        .body = "oauth_token=request&oauth_token_secret=canary-secret&oauth_callback_confirmed=true"};
    const TestHTTPServer server({requestToken, requestToken});
    const ServiceRoute route(server);
    const auto browsed = begun(ServiceType::Evernote);
    EXPECT_EQ(
        complaint(outcome(*browsed,
                          [&] { EXPECT_EQ(comeBack(*browsed, "oauth_token=request"), "HTTP/1.1 200 OK"); })),
        "denied: The access was denied on the page of Evernote.");
    const auto pasted = begun(ServiceType::Evernote);
    const auto redirect = pasted->redirect().absoluteString();
    for (const auto* query : {"", "?", "?oauth_tok", "?oauth_token=req", "?oauth_token=request&",
                              "?oauth_token=request&oauth_ver", "?oauth_token=request&oauth_verifier="}) {
        EXPECT_EQ(pasted->paste(redirect + query), PasteOutcome::cut) << query;
    }
    EXPECT_EQ(pasted->paste(redirect + "?oauth_token=request"), PasteOutcome::taken);
    EXPECT_EQ(complaint(pasted->finish()),
              "denied: The access was denied on the page of Evernote. If you have "
              "agreed there, the pasted address was cut: paste the whole of it.");
}

TEST(SignIn, ReportsWhatAServiceOfOAuth1Refuses) {
    const PlayedResponse requestToken{
        .body = "oauth_token=request&oauth_token_secret=canary-secret&oauth_callback_confirmed=true"};

    struct Row {
        std::vector<PlayedResponse> responses;
        std::string complaint;
    };

    const std::string spent =
        "refused: Evernote does not take the response of its own page; it is spent or too old. Sign in again ";
    const std::string unknown =
        "refused: Evernote does not accept this program's client identifier or its "
        "secret; name your own registration, and see that this machine's clock is right ";
    const Row rows[] = {
        {{PlayedResponse{.status = 401, .body = "invalid key"}}, unknown + "(status 401)."},
        {{PlayedResponse{.status = 401, .body = "oauth_problem=signature_invalid"}},
         unknown + "(signature_invalid)."},
        {{PlayedResponse{.status = 401, .body = "oauth_problem=timestamp_refused"}},
         "refused: Evernote finds that the request is not of this moment; set this machine's clock, and try "
         "again (timestamp_refused)."},
        {{PlayedResponse{.status = 400, .body = "oauth_problem=%1b]0;x"}},
         "refused: Evernote refused the sign-in."},
        {{PlayedResponse{.status = 400}}, "refused: Evernote finds the request faulty (status 400)."},
        {{PlayedResponse{.status = 503}},
         "refused: Evernote has trouble of its own; try again later (status 503)."},
        {{requestToken, PlayedResponse{.status = 401, .body = "token not found"}}, spent + "(status 401)."},
        {{requestToken, PlayedResponse{.status = 401, .body = "oauth_problem=token_expired"}},
         spent + "(token_expired)."},
        {{requestToken, PlayedResponse{.status = 500}},
         "refused: Evernote has trouble of its own; try again later (status 500)."},
        {{requestToken, PlayedResponse{.body = "hello"}}, "badResponse: Evernote responded without a token."},
    };
    for (const auto& row : rows) {
        const TestHTTPServer server(row.responses);
        const ServiceRoute route(server);
        const auto signIn = SignIn::begin(signInServiceFor(ServiceType::Evernote).value(), {});
        if (!signIn) {
            EXPECT_EQ(complaint(failure(signIn.error())), row.complaint);
            continue;
        }
        EXPECT_EQ(
            complaint(outcome(**signIn, [&] { comeBack(**signIn, "oauth_token=request&oauth_verifier=v"); })),
            row.complaint);
    }
}

TEST(SignIn, TakesAPastedAddressWithAFragment) {
    const auto signIn = begun(ServiceType::MeisterTask);
    EXPECT_EQ(signIn->paste(signIn->redirect().absoluteString() +
                            "#access_token=canary-access&state=" + itemOf(*signIn, "state")),
              PasteOutcome::taken);
    EXPECT_EQ(signIn->finish(), SignInToken{.accessToken = "canary-access"});
}

TEST(SignIn, AtAnAddressElsewhereTakesWhatIsPastedAlone) {
    const TestHTTPServer server({PlayedResponse::json(tokenResponse)});
    const ServiceRoute route(server);
    for (const auto* address : {"https://example.org/oauth-redirect/asana", "com.example.app://auth/asana"}) {
        const auto signIn = begun(ServiceType::Asana, {.redirect = URL::parse(address)});
        EXPECT_FALSE(signIn->listens());
        EXPECT_EQ(itemOf(*signIn, "redirect_uri"), address);
        EXPECT_EQ(signIn->paste(std::string(address) + "?code=x&state=" + itemOf(*signIn, "state")),
                  PasteOutcome::taken);
        if (server.requests().empty()) {
            EXPECT_TRUE(signIn->finish());
        }
    }
}

TEST(SignIn, TakesNoResponseOfAnotherServicesSignIn) {
    const TestHTTPServer server({PlayedResponse::json(tokenResponse)});
    const ServiceRoute route(server);
    const auto asana = begun(ServiceType::Asana);
    const auto zoom = begun(ServiceType::ZoomMeeting);
    const auto token = outcome(*zoom, [&] {
        // A server that sends the other one's response, and one that responds in the other one's name.
        EXPECT_EQ(comeBack(*zoom, goodResponse(*asana)), "HTTP/1.1 400 Bad Request");
        EXPECT_EQ(comeBack(*zoom, goodResponse(*zoom) + "&iss=https://app.asana.com"),
                  "HTTP/1.1 400 Bad Request");
        EXPECT_EQ(comeBack(*zoom, goodResponse(*zoom) + "&iss=https://zoom.us"), "HTTP/1.1 200 OK");
    });
    EXPECT_TRUE(token);
}

TEST(SignIn, LogsNothingOfItsSecrets) {
    const LogCapture log;
    const TestHTTPServer server({PlayedResponse::json(tokenResponse)});
    const ServiceRoute route(server);
    const auto signIn = begun(ServiceType::Asana);
    const auto token = outcome(*signIn, [&] { comeBack(*signIn, goodResponse(*signIn)); });
    ASSERT_TRUE(token);
    const auto verifier =
        onlyValue(parseFormItems(server.requests().at(0).body).value(), "code_verifier").value();
    for (const auto& message : log.messages()) {
        EXPECT_EQ(message.find("canary"), std::string::npos) << message;
        EXPECT_EQ(message.find(verifier), std::string::npos) << message;
        EXPECT_EQ(message.find(itemOf(*signIn, "state")), std::string::npos) << message;
    }
}

} // namespace zelto
