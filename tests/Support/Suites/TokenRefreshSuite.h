#pragma once

#include <Support/Eventually.h>
#include <Support/ExportScenario.h>
#include <Support/Gate.h>
#include <Support/LogCapture.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zelto {

// How an export refreshes a token that has expired, for an ExportScenario whose server has `tokenPath`, and
// that also has
//
//     static constexpr IntegrationExportError refreshError; // of an export whose token cannot be refreshed
//     static std::vector<std::string> refreshWarnings();    // what is logged then
template <ExportScenario Scenario> class TokenRefresh : public testing::Test {
  protected:
    using Texts = std::vector<std::string>;

    TokenRefresh() { one.expireToken(); }

    static std::string refreshLine() { return "POST " + std::string(Scenario::Server::tokenPath); }

    void expectFreshTokenStored() const {
        EXPECT_EQ(one.storedTokens().accessToken, "fresh");
        std::string refreshToken = "refresh-1";
        if constexpr (requires { Scenario::Server::freshRefreshToken; }) {
            refreshToken = Scenario::Server::freshRefreshToken;
        }
        EXPECT_EQ(one.storedTokens().refreshToken, refreshToken);
    }

    Prepared<Scenario> one;
    typename Scenario::Server service; // behind what its requests write to
};

TYPED_TEST_SUITE_P(TokenRefresh);

TYPED_TEST_P(TokenRefresh, HappensOnceAndEveryRequestOfAnExportHasTheNewToken) {
    ASSERT_TRUE(this->one.run());
    EXPECT_EQ(this->service.made(), TypeParam::made());
    const auto lines = this->service.lines();
    ASSERT_EQ(std::ssize(lines), std::ranges::count(TypeParam::events(), "request") + 1);
    EXPECT_EQ(lines.front(), this->refreshLine());
    EXPECT_EQ(std::ranges::count(lines, this->refreshLine()), 1);
    const auto requests = this->service.server.requests();
    for (std::size_t i = 1; i < requests.size(); ++i) {
        EXPECT_EQ(requests[i].headers.value("Authorization"), "Bearer fresh") << i;
    }
    this->expectFreshTokenStored();
}

TYPED_TEST_P(TokenRefresh, HappensOnceInTwoLoadings) {
    ASSERT_TRUE(this->one.fetch());
    ASSERT_TRUE(this->one.fetch());
    const auto lines = this->service.lines();
    EXPECT_EQ(lines.front(), this->refreshLine());
    EXPECT_EQ(std::ranges::count(lines, this->refreshLine()), 1);
    this->expectFreshTokenStored();
}

TYPED_TEST_P(TokenRefresh, ThatIsRefusedMakesNothing) {
    this->service.respondTo(std::string(TypeParam::Server::tokenPath),
                            PlayedResponse::json(R"({"error":"invalid_grant"})", 400));
    const LogCapture log;
    EXPECT_EQ(this->one.run(), failure(TypeParam::refreshError));
    EXPECT_EQ(this->service.lines(), std::vector{this->refreshLine()});
    EXPECT_EQ(log.messages(LogLevel::warn), TypeParam::refreshWarnings());
}

TYPED_TEST_P(TokenRefresh, ThatWasSentIsSparedByACancellationAndItsTokenKept) {
    const auto gate = std::make_shared<Gate>();
    this->service.onRequest = [gate](const auto&) {
        gate->pass();
        return std::nullopt;
    };
    Completed<ExporterResult<void>> outcome;
    const auto progress = this->one.start(outcome.template callback<typename TypeParam::Export::Done>());
    gate->waitUntilReached();
    progress->cancel();
    EXPECT_EQ(outcome.value(), failure(IntegrationExportError::canceled));
    gate->open();
    EXPECT_TRUE(eventually([&] { return this->one.storedTokens().accessToken == "fresh"; }));
    EXPECT_EQ(this->service.lines(), std::vector{this->refreshLine()});
}

REGISTER_TYPED_TEST_SUITE_P(TokenRefresh, HappensOnceAndEveryRequestOfAnExportHasTheNewToken,
                            HappensOnceInTwoLoadings, ThatIsRefusedMakesNothing,
                            ThatWasSentIsSparedByACancellationAndItsTokenKept);

} // namespace zelto
