#include "AuthoriserTable.h"

#include <Support/LogCapture.h>
#include <Support/MemoryKeyChain.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

using E = ServiceClientError;
using Table = std::vector<AuthoriserRow>;

const Date now = Date::fromReferenceSeconds(100'000);

ServiceAccountCredentials credentials(std::optional<Date> expiration = std::nullopt) {
    auto filled = ServiceAccountCredentials::forIdentifier("Service+alice");
    filled.accessToken = "token-1";
    filled.refreshToken = "refresh-1";
    filled.expirationDate = expiration;
    filled.loginName = "alice@example.com";
    filled.password = "p&ss=";
    return filled;
}

// The request as text, to be compared whole.
std::string text(const std::optional<URLRequest>& request) {
    if (!request) {
        return "(none)";
    }
    auto all = request->method + " " + request->url.absoluteString() + "\n";
    for (const auto& field : request->headers.fields()) {
        all += field.name + ": " + field.value + "\n";
    }
    const auto body = request->body ? request->body->bytes() : Data();
    return all + "\n" + std::string(viewOf(*body)) + "\n" +
           (request->timeout == TimeInterval(60) ? "" : "(another time-out)");
}

URLRequest item() {
    URLRequest request(*URL::parse("https://api.example/items?a=1"), "POST");
    request.headers.set("Content-Type", "text/plain");
    request.body = HTTPBody("url=x");
    return request;
}

std::string signedItem(ServiceAuthoriser& authoriser) {
    auto request = item();
    return authoriser.authorize(request) ? text(request) : "(refused)";
}

const ServiceResult<OAuthToken> newToken = OAuthToken{"token-2", "refresh-2", 3600};
const ServiceResult<OAuthToken> newTokenAlone = OAuthToken{"token-2", std::nullopt, 0};

// The credentials of an authoriser, which the key chain must hold too.
ServiceAccountCredentials stored(const AccountAuthoriser& authoriser) {
    auto loaded = ServiceAccountCredentials::forIdentifier("Service+alice");
    ServiceCredentialsManager::load(loaded);
    EXPECT_EQ(loaded, authoriser.accountCredentials());
    return authoriser.accountCredentials();
}

} // namespace

TEST(AccountAuthoriser, ThereAreFifteen) {
    EXPECT_EQ(authoriserTable().size(), 15u);
}

TEST(AccountAuthoriser, SignsAsItsServiceWants) {
    const MemoryKeyChain keyChain;
    for (const auto& row : authoriserTable()) {
        EXPECT_EQ(signedItem(*row.make(credentials())), row.signedItem) << row.name;
    }
}

TEST(AccountAuthoriser, SigningAgainChangesNothingButWhatIsAppended) {
    const MemoryKeyChain keyChain;
    for (const auto& row : authoriserTable()) {
        if (row.name == "Trello" || row.name == "Instapaper") {
            continue;
        }
        const auto authoriser = row.make(credentials());
        auto request = item();
        authoriser->authorize(request);
        const auto once = text(request);
        authoriser->authorize(request);
        EXPECT_EQ(text(request), once) << row.name;
    }
}

TEST(AccountAuthoriser, LeavesTheRequestAloneWithoutACredential) {
    const MemoryKeyChain keyChain;
    for (const auto& row : authoriserTable()) {
        const auto authoriser = row.make(ServiceAccountCredentials::forIdentifier("Service+alice"));
        auto request = item();
        EXPECT_FALSE(authoriser->authorize(request)) << row.name;
        EXPECT_EQ(text(request), text(item())) << row.name;
    }
}

TEST(AccountAuthoriser, KnowsWhenItsTokenIsStale) {
    const MemoryKeyChain keyChain;
    const ClockOverride clock(now);
    for (const auto& row : authoriserTable()) {
        const auto isStale = [&](double left) {
            return row.make(credentials(now + TimeInterval(left)))->shouldRefreshToken();
        };
        const bool hasMargin = row.margin && *row.margin > 0;
        EXPECT_FALSE(isStale(301)) << row.name;
        EXPECT_EQ(isStale(300), hasMargin) << row.name;
        EXPECT_EQ(isStale(299.5), hasMargin) << row.name;
        EXPECT_EQ(isStale(1), hasMargin) << row.name;
        EXPECT_EQ(isStale(0), row.margin.has_value()) << row.name;
        EXPECT_EQ(isStale(-1), row.margin.has_value()) << row.name;
        EXPECT_EQ(row.make(credentials(std::nullopt))->shouldRefreshToken(), row.margin.has_value())
            << row.name;
    }
}

TEST(AccountAuthoriser, WithoutARefreshTokenADropboxTokenAloneNeverGetsStale) {
    const MemoryKeyChain keyChain;
    const ClockOverride clock(now);
    for (const auto& row : authoriserTable()) {
        for (const auto& refreshToken : {std::optional<std::string>(), std::optional<std::string>("")}) {
            auto expired = credentials(std::nullopt);
            expired.refreshToken = refreshToken;
            const bool expected = row.margin.has_value() && row.name != "Dropbox";
            EXPECT_EQ(row.make(expired)->shouldRefreshToken(), expected) << row.name;
        }
    }
}

TEST(AccountAuthoriser, AsksForANewTokenAsItsServiceWants) {
    const MemoryKeyChain keyChain;
    for (const auto& row : authoriserTable()) {
        EXPECT_EQ(text(row.make(credentials())->createRefreshTokenRequest()), row.refresh) << row.name;
    }
}

TEST(AccountAuthoriser, HasNothingToAskForWithoutARefreshToken) {
    const MemoryKeyChain keyChain;
    for (const auto& row : authoriserTable()) {
        auto without = credentials();
        without.refreshToken.reset();
        EXPECT_FALSE(row.make(without)->createRefreshTokenRequest()) << row.name;
    }
}

TEST(AccountAuthoriser, AsksWithAnEmptyRefreshTokenToo) {
    const MemoryKeyChain keyChain;
    for (const auto& row : authoriserTable()) {
        auto empty = credentials();
        empty.refreshToken = "";
        EXPECT_EQ(row.make(empty)->createRefreshTokenRequest().has_value(), row.refresh != "(none)")
            << row.name;
    }
}

TEST(AccountAuthoriser, EscapesTheRefreshTokenInItsForm) {
    const MemoryKeyChain keyChain;
    auto odd = credentials();
    odd.refreshToken = "a+b/c=&d";
    const auto request = authoriserNamed("Zoom", odd)->createRefreshTokenRequest();
    EXPECT_EQ(request->body->bytes(),
              dataOf("grant%5Ftype=refresh%5Ftoken&refresh%5Ftoken=a%2Bb%2Fc%3D%26d"));
}

TEST(AccountAuthoriser, TakesANewTokenIn) {
    const ClockOverride clock(now);
    for (const auto& row : authoriserTable()) {
        const MemoryKeyChain keyChain;
        const auto before = credentials(now);
        const auto authoriser = row.make(before);
        authoriser->updateToken(newToken);
        if (row.refresh == "(none)") {
            EXPECT_EQ(authoriser->accountCredentials(), before) << row.name;
            EXPECT_FALSE(keyChain.text(before.serviceCredentialsKey)) << row.name;
            continue;
        }
        auto expected = before;
        expected.accessToken = "token-2";
        if (row.refreshToken != RefreshTokenRule::kept) {
            expected.refreshToken = "refresh-2";
        }
        if (row.name != "Notion") {
            expected.expirationDate = now + TimeInterval(3600);
        }
        EXPECT_EQ(stored(*authoriser), expected) << row.name;
    }
}

TEST(AccountAuthoriser, TakesATokenWithoutMoreIn) {
    const ClockOverride clock(now);
    for (const auto& row : authoriserTable()) {
        if (row.refresh == "(none)") {
            continue;
        }
        const MemoryKeyChain keyChain;
        const auto authoriser = row.make(credentials(now + TimeInterval(5000)));
        authoriser->updateToken(newTokenAlone);
        const auto after = stored(*authoriser);
        EXPECT_EQ(after.accessToken, "token-2") << row.name;
        const bool isCleared = row.refreshToken == RefreshTokenRule::overwritten;
        EXPECT_EQ(after.refreshToken, isCleared ? std::nullopt : std::optional<std::string>("refresh-1"));
        EXPECT_EQ(after.expirationDate, row.name == "Notion" ? now + TimeInterval(5000) : now) << row.name;
        EXPECT_EQ(authoriser->createRefreshTokenRequest().has_value(), !isCleared) << row.name;
        // Without a refresh token Dropbox has nothing to refresh with; its response kept it here.
        EXPECT_EQ(authoriser->shouldRefreshToken(), row.margin.has_value()) << row.name;
    }
}

TEST(AccountAuthoriser, ThrowsTheTokensAwayWhenTheServiceRefuses) {
    for (const auto& row : authoriserTable()) {
        for (const auto& each : casesOf<E>()) {
            const MemoryKeyChain keyChain;
            const auto before = credentials(now);
            const auto authoriser = row.make(before);
            authoriser->updateToken(failure(each.value));
            if (row.refresh == "(none)") {
                EXPECT_EQ(authoriser->accountCredentials(), before) << row.name << " " << each.name;
                EXPECT_FALSE(keyChain.text(before.serviceCredentialsKey)) << row.name << " " << each.name;
                continue;
            }
            auto expected = before;
            if (isServiceError(each.value)) {
                expected.accessToken.reset();
                expected.refreshToken.reset();
                expected.expirationDate.reset();
            }
            EXPECT_EQ(stored(*authoriser), expected) << row.name << " " << each.name;
        }
    }
}

TEST(AccountAuthoriser, StartsFromWhatTheKeyChainHolds) {
    for (const auto& row : authoriserTable()) {
        const MemoryKeyChain keyChain;
        ServiceCredentialsManager::store(credentials(now));
        const auto authoriser = row.make(ServiceAccountCredentials::forIdentifier("Service+alice"));
        EXPECT_EQ(authoriser->accountCredentials(), credentials(now)) << row.name;
    }
}

TEST(AccountAuthoriser, ItsCredentialsCanBeReplaced) {
    const MemoryKeyChain keyChain;
    const auto authoriser = authoriserNamed("Todoist", credentials());
    auto other = credentials();
    other.accessToken = "another-token";
    authoriser->setAccountCredentials(other);
    EXPECT_EQ(authoriser->accountCredentials(), other);
    auto request = item();
    EXPECT_TRUE(authoriser->authorize(request));
    EXPECT_EQ(request.headers.value("Authorization"), "Bearer another-token");
}

TEST(AccountAuthoriser, LeavesTheLineEndOfAPastedTokenOut) {
    const MemoryKeyChain keyChain;
    for (const auto& row : authoriserTable()) {
        if (row.name == "Instapaper") {
            continue;
        }
        for (const auto* end : {"\n", "\r\n", "\r", "\n\n"}) {
            auto pasted = credentials();
            pasted.accessToken = std::string("token-1") + end;
            pasted.refreshToken = std::string("refresh-1") + end;
            const auto authoriser = row.make(pasted);
            EXPECT_EQ(signedItem(*authoriser), row.signedItem) << row.name;
            EXPECT_EQ(text(authoriser->createRefreshTokenRequest()), row.refresh) << row.name;
        }
    }
}

TEST(AccountAuthoriser, RefusesATokenThatNoHeaderCanHold) {
    const MemoryKeyChain keyChain;
    std::vector<std::string> bad = {"tok\xc3\xa9n", "\xff", std::string(64 * 1024, 'a'), "a\r\nX: y",
                                    "\ntoken"};
    for (int c = 0; c <= 255; ++c) {
        if (c <= ' ' || c >= 127) {
            bad.push_back(std::string("to") + static_cast<char>(c) + "ken");
        }
    }
    for (const auto& row : authoriserTable()) {
        if (row.name == "Instapaper") {
            continue;
        }
        for (const auto& token : bad) {
            auto hostile = credentials();
            hostile.accessToken = token;
            hostile.refreshToken = token;
            const auto authoriser = row.make(hostile);
            EXPECT_EQ(signedItem(*authoriser), "(refused)") << row.name;
            // A form may hold a blank.
            const bool hasRequest = authoriser->createRefreshTokenRequest().has_value();
            EXPECT_EQ(hasRequest, token == "to ken" && row.refresh != "(none)") << row.name << token;
        }
    }
    auto longToken = credentials();
    longToken.accessToken = std::string(16 * 1024, 'a');
    EXPECT_NE(signedItem(*authoriserNamed("Zoom", longToken)), "(refused)");
}

TEST(AccountAuthoriser, GivesTheTokenAsItSendsIt) {
    const MemoryKeyChain keyChain;
    auto given = credentials(now);
    EXPECT_EQ(authoriserNamed("Hubspot", given)->accessToken(), "token-1");
    given.accessToken = "token-1\r\n";
    EXPECT_EQ(authoriserNamed("Hubspot", given)->accessToken(), "token-1");
    for (const auto& unusable : {std::optional<std::string>(), std::optional<std::string>("to ken")}) {
        given.accessToken = unusable;
        EXPECT_EQ(authoriserNamed("Hubspot", given)->accessToken(), std::nullopt);
    }
    const auto refreshed = authoriserNamed("Hubspot", credentials(now));
    EXPECT_TRUE(refreshed->updateToken(newToken));
    EXPECT_EQ(refreshed->accessToken(), "token-2");
}

TEST(AccountAuthoriser, ItsSecretsAreMaskedInTheLogFromTheBeginning) {
    const MemoryKeyChain keyChain;
    auto secret = credentials();
    secret.accessToken = "canary-access";
    secret.refreshToken = "canary-refresh";
    const auto authoriser = authoriserNamed("Zoom", secret);
    authoriser->updateToken(OAuthToken{"canary-new-access", "canary-new-refresh", 1});
    const LogCapture log;
    Logger::shared().error("canary-access canary-refresh canary-new-access canary-new-refresh", "test()");
    EXPECT_FALSE(log.contains("canary"));
}

TEST(AccountAuthoriser, ATokenThatComesAfterTheRemovalOfItsAccountIsMaskedInTheLogToo) {
    const MemoryKeyChain keyChain;
    ServiceCredentialsManager::store(credentials(now));
    const auto authoriser = authoriserNamed("Hubspot", credentials(now));
    ServiceCredentialsManager::remove(credentials());
    EXPECT_TRUE(authoriser->updateToken(OAuthToken{"canary-after-removal", std::nullopt, 3600}));
    EXPECT_EQ(authoriser->accessToken(), "canary-after-removal");
    const LogCapture log;
    Logger::shared().error("https://api.example/tokens/canary-after-removal", "test()");
    EXPECT_FALSE(log.contains("canary"));
}

TEST(TrelloAuthoriser, KeepsTheItemsOfTheQueryAndAddsItsOwnLast) {
    const MemoryKeyChain keyChain;
    const auto authoriser = authoriserNamed("Trello", credentials());
    const auto signedURL = [&](const std::string& url) {
        URLRequest request(*URL::parse(url));
        EXPECT_TRUE(authoriser->authorize(request));
        EXPECT_TRUE(request.headers.fields().empty());
        return request.url.absoluteString();
    };
    const std::string own = "key=placeholder-id-of-Trello&token=token-1";
    EXPECT_EQ(signedURL("https://api.trello.com/1/members/me"), "https://api.trello.com/1/members/me?" + own);
    EXPECT_EQ(signedURL("https://api.trello.com/1/cards?name=a%20%26%20b&desc="),
              "https://api.trello.com/1/cards?name=a%20%26%20b&desc=&" + own);
    EXPECT_EQ(signedURL("https://api.trello.com/1/cards?key=x&token=y"),
              "https://api.trello.com/1/cards?key=x&token=y&" + own);
}

TEST(InstapaperAuthoriser, NeedsATextBodyAndBothCredentials) {
    const MemoryKeyChain keyChain;
    const auto refuses = [](const ServiceAccountCredentials& given, URLRequest request) {
        const auto before = text(request);
        const bool refused = !authoriserNamed("Instapaper", given)->authorize(request);
        EXPECT_EQ(text(request) == before, refused);
        return refused;
    };
    EXPECT_FALSE(refuses(credentials(), item()));
    auto withoutName = credentials();
    withoutName.loginName.reset();
    EXPECT_TRUE(refuses(withoutName, item()));
    auto withoutPassword = credentials();
    withoutPassword.password.reset();
    EXPECT_TRUE(refuses(withoutPassword, item()));
    auto request = item();
    request.body.reset();
    EXPECT_TRUE(refuses(credentials(), request));
    request.body = HTTPBody("\xff");
    EXPECT_TRUE(refuses(credentials(), request));
}

TEST(InstapaperAuthoriser, CorrectsTheLengthThatTheRequestHas) {
    const MemoryKeyChain keyChain;
    auto request =
        *ExportServiceHelper::urlEncodedRequest("https://www.instapaper.com/api/add", {{"url", "x"}});
    EXPECT_TRUE(authoriserNamed("Instapaper", credentials())->authorize(request));
    EXPECT_EQ(request.body->bytes(), dataOf("url=x&password=p%26ss%3D&username=alice%40example%2Ecom"));
    EXPECT_EQ(request.headers.value("Content-Length"), std::to_string(request.body->size()));
}

} // namespace zelto
