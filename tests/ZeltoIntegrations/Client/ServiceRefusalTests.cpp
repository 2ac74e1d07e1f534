#include "ServiceClientFixture.h"

#include <ZeltoIntegrations/Accounts/LiveSecrets.h>
#include <ZeltoIntegrations/Client/ServiceRefusal.h>

#include <Support/FailingResponses.h>

#include <gtest/gtest.h>

#include <functional>

namespace zelto {

namespace {

using E = ServiceClientError;

// A client whose refusals are kept.
class ObservedClient {
  public:
    explicit ObservedClient(
        const std::shared_ptr<ServiceAuthoriser>& authoriser = std::make_shared<FakeAuthoriser>())
        : client_(authoriser, {}) {
        client_.setRefusalObserver([this](const ServiceRefusal& refusal) { refusals_.push_back(refusal); });
    }

    ServiceClient& client() { return client_; }

    // Once no request is under way.
    const std::vector<ServiceRefusal>& refusals() const { return refusals_; }

    // What was observed by the time the completion came.
    std::vector<ServiceRefusal> refusalsOf(URLRequest request) {
        Completed<std::vector<ServiceRefusal>> observed;
        client_.perform<std::string>(
            std::move(request), nullptr,
            [this, completed = observed.callback<Callback<std::vector<ServiceRefusal>>>()](
                const auto&) mutable { completed(refusals_); });
        return observed.value();
    }

  private:
    std::vector<ServiceRefusal> refusals_;
    ServiceClient client_;
};

// Calls a function while it signs.
class SigningObserver final : public FakeAuthoriser {
  public:
    bool authorize(URLRequest& request) override {
        onSigning();
        return FakeAuthoriser::authorize(request);
    }

    std::function<void()> onSigning = [] {};
};

} // namespace

TEST(ServiceWords, AreTakenFromWhereServicesPutThem) {
    const std::pair<const char*, const char*> rows[] = {
        {R"({"errors":[{"message":"project: Not a recognized ID","help":"x"}]})",
         "project: Not a recognized ID"},
        {R"({"errors":[{"message":"one"},{"x":1},{"message":"two"}]})", "one; two"},
        {R"({"errors":["one","two"]})", "one; two"},
        {R"({"errors":[],"message":"outside"})", "outside"},
        {R"({"error":{"code":401,"message":"Invalid Credentials"}})", "Invalid Credentials"},
        {R"({"error":"invalid_grant","error_description":"The grant has expired."})",
         "The grant has expired."},
        {R"({"error":"invalid_grant"})", "invalid_grant"},
        {R"({"message":"Not found","error":"x"})", "Not found"},
        {R"({"ok":false,"error":"channel_not_found"})", "channel_not_found"},
        {R"({"errorCode":"NotFound","description":"No such meeting"})", "No such meeting"},
        {R"({"int_err_code":"InvalidToken","msg":"Invalid token passed"})", "Invalid token passed"},
        {R"({"errorCode":"NotFound","incident":"1"})", "NotFound"},
        {R"([{"message":"first"},"second"])", "first; second"},
        {R"("a text")", "a text"},
        {R"({"error":1})", ""},
        {R"({"error":{"message":{"x":"y"}}})", ""},
        {"invalid id\n", "invalid id"},
        {"<html><body>Bad gateway</body></html>", ""},
        {" <!doctype html>", ""},
        {"{\"message\":", ""},
        {"", ""},
        {"\xff\xfe", ""},
    };
    for (const auto& [body, words] : rows) {
        EXPECT_EQ(wordsOfErrorBody(body), words) << body;
    }
    EXPECT_EQ(wordsOfErrorBody(std::string(10'000, 'a')), "") << "a page, not a message";
}

TEST(ServiceRefusal, IsInASuccessThatIsNotOk) {
    const std::pair<std::string, std::string> rows[] = {
        {R"({"ok":false,"error":"channel_not_found"})", "channel_not_found"},
        {R"({"error":" not_in\nchannel ","ok":false,"channel":"C1"})", "not_in channel"},
        {R"({"ok":false,"error":")" + std::string(400, 'e') + R"("})", std::string(300, 'e')},
        {R"({"ok":false})", ""},
        {R"({"ok":false,"error":7})", ""},
    };
    for (const auto& [body, words] : rows) {
        EXPECT_EQ(refusalInSuccess(body), (ServiceRefusal{words, false})) << body;
    }
    for (const auto* body :
         {R"({"ok":true,"error":"x"})", R"({"error":"x"})", R"({"ok":0,"error":"x"})",
          R"({"ok":null,"error":"x"})", R"({"ok":"false","error":"x"})", R"([{"ok":false,"error":"x"}])",
          R"("text")", "text", "", "{\"ok\":false,\"error\":\"x\xff\"}"}) {
        EXPECT_EQ(refusalInSuccess(body), std::nullopt) << body;
    }
}

TEST(ServiceWords, AreOneLineWithoutControlCharactersAndAreCut) {
    EXPECT_EQ(cleanedWords(" a\r\n\tb \x1b[31mc\x7f\u0085d\u202e e  "), "a b [31mc d e");
    EXPECT_EQ(cleanedWords(std::string("nul\0byte", 8)), "nul byte");
    EXPECT_EQ(cleanedWords("gr\xc3\xbc\xc3\x9f \xff"), "gr\xc3\xbc\xc3\x9f \xef\xbf\xbd");
    for (const std::size_t length : {299U, 300U, 301U}) {
        EXPECT_EQ(cleanedWords(std::string(length, 'q')),
                  std::string(std::min<std::size_t>(length, 300), 'q'));
    }
    std::string accents;
    for (int each = 0; each < 301; ++each) {
        accents += "e\xcc\x81";
    }
    EXPECT_EQ(cleanedWords(accents), accents.substr(0, 900));
}

TEST(ServiceWords, HoldNoSecret) {
    auto secret = ServiceAccountCredentials::forIdentifier("x");
    secret.accessToken = "canary-token-words";
    maskInLog(secret);
    EXPECT_EQ(wordsOfErrorBody(R"({"message":"canary-token-words is bad"})"), "*** is bad");
}

TEST(ServiceRefusal, HoldsTheWordsOfTheResponseBeforeTheCompletion) {
    const TestHTTPServer server(Responses{PlayedResponse::json(R"({"message":"no such board"})", 404)});
    const ServiceRoute route(server);
    EXPECT_EQ(ObservedClient().refusalsOf(itemRequest()),
              (std::vector<ServiceRefusal>{{"no such board", false}}));
}

TEST(ServiceRefusal, IsNoneOfASuccessNorOfATryThatWasRepeated) {
    const TestHTTPServer server(Responses{{.status = 401, .body = "expired"}, freshToken(), {.body = "ok"}});
    const ServiceRoute route(server);
    ObservedClient client(std::make_shared<FakeAuthoriser>("old-token"));
    EXPECT_TRUE(client.refusalsOf(itemRequest()).empty());
}

TEST(ServiceRefusal, IsToldOnceOfASuccessThatCannotBeReadAndIsNotOk) {
    using Refusals = std::vector<ServiceRefusal>;
    const std::pair<const char*, Refusals> rows[] = {
        {R"({"ok":false,"error":"is_archived"})", {{"is_archived", false}}},
        {R"({"ok":false})", {{"", false}}},
        {R"({"error":"of another kind"})", {}},
        {"<html>", {}},
    };
    for (const auto& [body, refusals] : rows) {
        const TestHTTPServer server(Responses{PlayedResponse::json(body)});
        const ServiceRoute route(server);
        ObservedClient observed;
        Completed<ServiceResult<int>> completed;
        observed.client().perform<int>(itemRequest(), nullptr, completed.callback<ServiceCompletion<int>>());
        EXPECT_EQ(completed.value().error(), E::dataParseError);
        EXPECT_EQ(observed.refusals(), refusals) << body;
    }
}

TEST(ServiceRefusal, OfARefreshIsThatOfEachRequestThatWaitedForIt) {
    const TestHTTPServer server(
        Responses{PlayedResponse::json(R"({"error":"invalid_grant","error_description":"revoked"})", 400)});
    const ServiceRoute route(server);
    ObservedClient client(FakeAuthoriser::stale());
    EXPECT_EQ(client.refusalsOf(itemRequest()), (std::vector<ServiceRefusal>{{"revoked", true}}));
}

TEST(ServiceRefusal, OfAServiceWithoutARefreshKeepsTheFirstWords) {
    const TestHTTPServer server(Responses{{.status = 401, .body = "invalid token"}});
    const ServiceRoute route(server);
    const auto authoriser = std::make_shared<FakeAuthoriser>();
    authoriser->setRefreshRequest(std::nullopt);
    EXPECT_EQ(ObservedClient(authoriser).refusalsOf(itemRequest()),
              (std::vector<ServiceRefusal>{{"invalid token", false}}));
}

TEST(ServiceRefusal, SaysHowLargeARequestWasThatIsTooLarge) {
    const auto of = [](int status, const std::string& body) {
        const TestHTTPServer server(Responses{{.status = status, .body = "no"}});
        const ServiceRoute route(server);
        auto request = itemRequest("POST");
        request.body = HTTPBody(body);
        return ObservedClient().refusalsOf(std::move(request)).at(0).excessiveSize;
    };
    EXPECT_EQ(of(413, "12345"), 5U);
    EXPECT_EQ(of(414, ""), itemRequest().url.absoluteString().size());
    EXPECT_EQ(of(412, "12345"), std::nullopt);
    EXPECT_EQ(of(415, "12345"), std::nullopt);
}

TEST(ServiceRefusal, SaysWhetherItIsAConflict) {
    const auto of = [](Responses responses) {
        const TestHTTPServer server(std::move(responses));
        const ServiceRoute route(server);
        return ObservedClient().refusalsOf(itemRequest("POST")).at(0).isConflict;
    };
    EXPECT_TRUE(of({{.status = 409, .body = "exists"}}));
    EXPECT_FALSE(of({{.status = 400, .body = "exists"}}));
    EXPECT_FALSE(of({{.status = 410, .body = "exists"}}));
    EXPECT_TRUE(of({{.status = 401, .body = "expired"},
                    PlayedResponse::json(R"({"access_token":"new-token","expires_in":3600})"),
                    {.status = 409, .body = "exists"}}));
}

TEST(ServiceRefusal, KnowsWhetherAnythingWasSent) {
    const auto of = [](const PlayedResponse& response) {
        const TestHTTPServer server([&](const ReceivedRequest&) { return response; });
        const ServiceRoute route(server);
        return ObservedClient().refusalsOf(itemRequest("POST"));
    };
    EXPECT_EQ(of(PlayedResponse::reset()), (std::vector<ServiceRefusal>{{"", false}}));
    EXPECT_EQ(of(PlayedResponse::bytes("garbage")), (std::vector<ServiceRefusal>{{"", false}}));
    // Nobody listens there any more.
    std::optional<TestHTTPServer> gone(std::in_place, Responses{});
    const auto address = gone->url();
    gone.reset();
    const ServiceRoute route(address);
    EXPECT_EQ(ObservedClient().refusalsOf(itemRequest("POST")), (std::vector<ServiceRefusal>{{"", true}}));
    EXPECT_EQ(ObservedClient(std::make_shared<FakeAuthoriser>(std::nullopt)).refusalsOf(itemRequest()),
              (std::vector<ServiceRefusal>{{"", true}}));
}

TEST(ServiceRefusal, OfARequestThatIsCancelledBeforeItIsSentSaysThatNothingWasSent) {
    const TestHTTPServer server(Responses{});
    const ServiceRoute route(server);
    const std::vector<ServiceRefusal> nothingSent = {{"", true}};
    ObservedClient closed;
    closed.client().close();
    EXPECT_EQ(closed.refusalsOf(itemRequest()), nothingSent);
    const auto authoriser = std::make_shared<SigningObserver>();
    ObservedClient cancelled(authoriser);
    authoriser->onSigning = [&] { cancelled.client().cancelAllOperations(); };
    EXPECT_EQ(cancelled.refusalsOf(itemRequest()), nothingSent);
    EXPECT_TRUE(server.requests().empty());
}

TEST(ServiceRefusal, OfEachTransportErrorSaysWhetherAnythingWasSent) {
    for (const auto& each : casesOf<URLErrorCode>()) {
        const auto refusal = serviceRefusal(0, std::nullopt, nullptr, URLError{each.value, "It failed."});
        const bool isUnsent =
            each.value == URLErrorCode::invalidRequest || each.value == URLErrorCode::cannotFindHost ||
            each.value == URLErrorCode::cannotConnect || each.value == URLErrorCode::secureConnection;
        EXPECT_EQ(refusal, (ServiceRefusal{"", isUnsent})) << each.name;
    }
}

TEST(RequestMaker, IsCalledForEachTryWithTheTokenThatWillBeSent) {
    const TestHTTPServer server(Responses{{.status = 401}, freshToken(), {.body = "ok"}});
    const ServiceRoute route(server);
    const auto authoriser = std::make_shared<FakeAuthoriser>("old-token");
    ServiceClient client(authoriser, {});
    Completed<ServiceResult<std::string>> end;
    client.perform<std::string>(
        [authoriser] {
            return std::optional(
                itemRequest("GET", "/items/" + std::to_string(authoriser->updates().size())));
        },
        nullptr, end.callback<ServiceCompletion<std::string>>());
    EXPECT_EQ(end.value(), "ok");
    const auto texts = server.texts();
    EXPECT_EQ(texts[0], signedRequest("old-token", "/items/0"));
    EXPECT_EQ(texts[2], signedRequest("new-token", "/items/1"));
}

TEST(RequestMaker, IsNotCalledBeforeARefreshOfAStaleTokenHasEnded) {
    const TestHTTPServer server(Responses{freshToken(), {.body = "ok"}});
    const ServiceRoute route(server);
    const auto authoriser = FakeAuthoriser::stale();
    ServiceClient client(authoriser, {});
    Completed<ServiceResult<std::string>> end;
    client.perform<std::string>(
        [authoriser] {
            EXPECT_EQ(authoriser->updates().size(), 1U);
            return std::optional(itemRequest());
        },
        nullptr, end.callback<ServiceCompletion<std::string>>());
    EXPECT_EQ(end.value(), "ok");
}

TEST(RequestMaker, WithoutARequestIsAnInternalError) {
    const TestHTTPServer server(Responses{});
    const ServiceRoute route(server);
    ServiceClient client(std::make_shared<FakeAuthoriser>(), {});
    Completed<ServiceResult<std::string>> end;
    client.perform<std::string>([] { return std::optional<URLRequest>(); }, nullptr,
                                end.callback<ServiceCompletion<std::string>>());
    EXPECT_EQ(end.value(), failure(E::internalError));
}

} // namespace zelto
