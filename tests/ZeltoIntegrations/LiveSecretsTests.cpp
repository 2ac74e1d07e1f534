#include <ZeltoIntegrations/LiveSecrets.h>

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

TEST(LiveSecrets, EveryTextOfARecordButItsKeyIsMasked) {
    auto credentials = ServiceAccountCredentials::forIdentifier("Asana+alice");
    credentials.accessToken = "live-access-token";
    credentials.refreshToken = "live-refresh-token";
    credentials.tokenSecret = "live-token-secret";
    credentials.password = "live-password";
    credentials.loginName = "live-login-name";
    credentials.additionalInfo.emplace()["team"] = "live-additional-value";
    maskInLog(credentials);
    for (const auto* secret : {"live-access-token", "live-refresh-token", "live-token-secret",
                               "live-password", "live-login-name", "live-additional-value"}) {
        EXPECT_TRUE(isMasked(secret)) << secret;
    }
    EXPECT_FALSE(isMasked(credentials.serviceCredentialsKey));
}

TEST(LiveSecrets, OfVeryManyThoseThatWerePassedLastStayMasked) {
    pass("still-in-use-1");
    pass("no-longer-in-use-1");
    for (int i = 0; i < 2000; ++i) {
        pass("refreshed-token-" + std::to_string(i));
        pass("still-in-use-1");
    }
    EXPECT_TRUE(isMasked("still-in-use-1"));
    EXPECT_TRUE(isMasked("refreshed-token-1999"));
    EXPECT_FALSE(isMasked("no-longer-in-use-1"));
}

} // namespace zelto
