#pragma once

#include <Support/Eventually.h>
#include <ZeltoIntegrations/Client/ServiceAuthoriser.h>

#include <gtest/gtest.h>

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace zelto {

// Signs with a bearer token and records its calls. Any thread.
class FakeAuthoriser : public ServiceAuthoriser {
  public:
    explicit FakeAuthoriser(std::optional<std::string> token = "good-token") : token_(std::move(token)) {}

    // With an expired token; the first successful refresh brings a fresh one.
    static std::shared_ptr<FakeAuthoriser> stale() {
        auto authoriser = std::make_shared<FakeAuthoriser>("old-token");
        authoriser->setStale(true);
        return authoriser;
    }

    bool authorize(URLRequest& request) override {
        const std::lock_guard guard(lock_);
        ++authorizations_;
        if (!token_) {
            return false;
        }
        request.headers.set("Authorization", "Bearer " + *token_);
        return true;
    }

    bool shouldRefreshToken() override {
        const std::lock_guard guard(lock_);
        ++checks_;
        checked_.notify_all();
        return isStale_;
    }

    std::optional<URLRequest> createRefreshTokenRequest() override {
        const std::lock_guard guard(lock_);
        return refreshRequest_;
    }

    ServiceResult<void> updateToken(const ServiceResult<OAuthToken>& result) override {
        const std::lock_guard guard(lock_);
        updates_.push_back(result);
        if (!result) {
            return failure(result.error());
        }
        token_ = result->accessToken;
        isStale_ = staysStale_;
        ++generation_;
        return {};
    }

    std::uint64_t tokenGeneration() const override {
        const std::lock_guard guard(lock_);
        return generation_;
    }

    void setStale(bool stale) {
        const std::lock_guard guard(lock_);
        isStale_ = stale;
    }

    // A refresh then brings a token that is stale too.
    void setStaysStale() {
        const std::lock_guard guard(lock_);
        staysStale_ = true;
    }

    void setRefreshRequest(std::optional<URLRequest> request) {
        const std::lock_guard guard(lock_);
        refreshRequest_ = std::move(request);
    }

    int authorizations() const {
        const std::lock_guard guard(lock_);
        return authorizations_;
    }

    std::vector<ServiceResult<OAuthToken>> updates() const {
        const std::lock_guard guard(lock_);
        return updates_;
    }

    // Waits until that many requests have asked whether the token is stale.
    void waitForChecks(int count) {
        std::unique_lock lock(lock_);
        if (!checked_.wait_for(lock, maximumWait, [&] { return checks_ >= count; })) {
            ADD_FAILURE() << checks_ << " of " << count << " requests have asked";
        }
    }

  private:
    static URLRequest standardRefreshRequest() {
        URLRequest request(*URL::parse("https://login.example/token"), "POST");
        request.headers.set("Content-Type", "application/x-www-form-urlencoded");
        request.body = HTTPBody("grant_type=refresh_token");
        return request;
    }

    mutable std::mutex lock_;
    std::condition_variable checked_;
    std::optional<std::string> token_;
    std::optional<URLRequest> refreshRequest_ = standardRefreshRequest();
    bool isStale_ = false;
    bool staysStale_ = false;
    std::uint64_t generation_ = 0;
    int authorizations_ = 0;
    int checks_ = 0;
    std::vector<ServiceResult<OAuthToken>> updates_;
};

} // namespace zelto
