#pragma once

#include <zelto/ServiceCommands.h>

#include <Platform/Date.h>

#include <algorithm>
#include <string>

namespace zelto {

// What becomes of a token that has expired, for CommandFacts whose server has `tokenPath`, and that also have
//
//     static constexpr auto notMade;      // "Asana did not make the task \"Title\""
//     static constexpr auto notMadeError; // the case of that failure
template <CommandFacts Facts> class RefreshCommands : public ServiceCommands<Facts> {
  protected:
    void SetUp() override {
        ServiceCommands<Facts>::SetUp();
        auto tokens = storedTokens(this->zelto, this->account);
        tokens.refreshToken = "refresh-1";
        tokens.expirationDate = Date::fromReferenceSeconds(0);
        storeTokens(this->zelto, tokens);
    }

    std::ptrdiff_t refreshCount() const {
        return std::ranges::count(this->sent(), Facts::Server::tokenPath, &ReceivedRequest::target);
    }
};

TYPED_TEST_SUITE_P(RefreshCommands);

TYPED_TEST_P(RefreshCommands, RefreshAStaleTokenOnceAndStoreIt) {
    const auto first = this->exportTitle();
    EXPECT_EQ(first.output, this->madeIn(this->usualTarget())) << first.errorOutput;
    EXPECT_EQ(this->sent().front().target, TypeParam::Server::tokenPath);
    EXPECT_EQ(storedTokens(this->zelto, this->account).accessToken, "fresh");
    EXPECT_EQ(this->exportTitle().status, 0);
    EXPECT_EQ(this->run({"targets", this->account, "--refresh"}).status, 0);
    EXPECT_EQ(this->refreshCount(), 1);
    for (const auto& request : this->sent()) {
        if (request.target != TypeParam::Server::tokenPath) {
            EXPECT_EQ(request.headers.value("Authorization"), "Bearer fresh") << request.target;
        }
    }
}

TYPED_TEST_P(RefreshCommands, RefreshATokenThatTheServiceRefuses) {
    auto tokens = storedTokens(this->zelto, this->account);
    tokens.expirationDate = Date::distantFuture();
    storeTokens(this->zelto, tokens);
    this->service.onRequest = [](const ReceivedRequest& request) -> std::optional<PlayedResponse> {
        const bool isOld = request.headers.value("Authorization") == "Bearer token";
        return isOld ? std::optional(PlayedResponse::json("no", 401)) : std::nullopt;
    };
    const auto exported = this->exportTitle();
    EXPECT_EQ(exported.output, this->madeIn(this->usualTarget())) << exported.errorOutput;
    EXPECT_EQ(storedTokens(this->zelto, this->account).accessToken, "fresh");
    EXPECT_EQ(this->refreshCount(), 1);
}

TYPED_TEST_P(RefreshCommands, NameTheWayToReconnectWhereTheRefreshIsRefused) {
    this->service.respondTo(std::string(TypeParam::Server::tokenPath),
                            PlayedResponse::json(R"({"error":"invalid_grant"})", 400));
    const auto outcome = this->exportTitle({"--json"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.text("error"), this->errorOf("oauthError", TypeParam::notMadeError));
    EXPECT_TRUE(outcome.text("message").starts_with(std::string(TypeParam::notMade) +
                                                    ": it does not accept the account's sign-in any more"))
        << outcome.output;
    EXPECT_EQ(outcome.text("next"), this->reconnect);
    EXPECT_EQ(this->sent().size(), 1U);
    EXPECT_EQ(storedTokens(this->zelto, this->account).accessToken, std::nullopt);
}

REGISTER_TYPED_TEST_SUITE_P(RefreshCommands, RefreshAStaleTokenOnceAndStoreIt,
                            RefreshATokenThatTheServiceRefuses,
                            NameTheWayToReconnectWhereTheRefreshIsRefused);

} // namespace zelto
