#include <ZeltoIntegrations/Accounts/LiveSecrets.h>

#include <Support/LogCapture.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

bool isMasked(const std::string& secret) {
    const LogCapture log;
    Logger::shared().error("it was " + secret, "test()");
    return !log.contains(secret);
}

void pass(const std::string& secret) {
    auto credentials = ServiceAccountCredentials::forIdentifier("Asana+alice");
    credentials.accessToken = secret;
    maskInLog(credentials);
}

} // namespace

TEST(LiveSecrets, TokensSecretsAndPasswordsOfARecordAreMasked) {
    auto credentials = ServiceAccountCredentials::forIdentifier("Asana+alice");
    credentials.accessToken = "live-access-token";
    credentials.refreshToken = "live-refresh-token";
    credentials.tokenSecret = "live-token-secret";
    credentials.password = "live-password";
    credentials.loginName = "live-login-name";
    credentials.additionalInfo.emplace() = {{"sessionToken", "live-session-token"}, {"team", "live-team"}};
    maskInLog(credentials);
    for (const auto* secret : {"live-access-token", "live-refresh-token", "live-token-secret",
                               "live-password", "live-session-token"}) {
        EXPECT_TRUE(isMasked(secret)) << secret;
    }
    for (const auto& text :
         {credentials.serviceCredentialsKey, *credentials.loginName, std::string("live-team")}) {
        EXPECT_FALSE(isMasked(text)) << text;
    }
}

TEST(LiveSecrets, OfVeryManyThoseThatWerePassedLastStayMasked) {
    auto passOthers = [next = 0](int count) mutable {
        for (const int end = next + count; next < end; ++next) {
            pass("other-token-" + std::to_string(next));
        }
    };
    pass("still-in-use-1");
    pass("no-longer-in-use-1");
    passOthers(1000);
    pass("still-in-use-1");
    passOthers(1000);
    EXPECT_TRUE(isMasked("still-in-use-1"));
    EXPECT_TRUE(isMasked("other-token-1999"));
    EXPECT_FALSE(isMasked("no-longer-in-use-1"));
}

} // namespace zelto
