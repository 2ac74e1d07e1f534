#include "Support/RotatingService.h"

namespace zelto {

PlayedResponse RotatingService::respond(const ReceivedRequest& request) {
    const std::lock_guard guard(lock_);
    if (request.target.ends_with("/token")) {
        return refreshed(request.body);
    }
    const bool isGood =
        !hasEnded_ && generation_ > refused_ &&
        request.headers.value("Authorization") == "Bearer access-" + grant_ + std::to_string(generation_);
    requests_ += isGood;
    return PlayedResponse::json("{}", isGood ? 200 : 401);
}

PlayedResponse RotatingService::refreshed(const std::string& body) {
    // In a form "-" is percent-encoded.
    const auto sent = "refresh%5Ftoken=refresh%2D" + grant_ + std::to_string(generation_);
    const bool isPresent = (body + "&").contains(sent + "&");
    if (hasEnded_ || !isPresent) {
        hasEnded_ = true;
        return PlayedResponse::json(R"({"error":"invalid_grant"})", 400);
    }
    ++refreshes_;
    const auto number = grant_ + std::to_string(++generation_);
    return PlayedResponse::json(R"({"access_token":"access-)" + number + R"(","refresh_token":"refresh-)" +
                                number + R"(","expires_in":3600})");
}

ServiceAccountCredentials RotatingService::credentials(const std::string& accountIdentifier,
                                                       double secondsLeft) const {
    const std::lock_guard guard(lock_);
    auto credentials = ServiceAccountCredentials::forIdentifier(accountIdentifier);
    credentials.accessToken = "access-" + grant_ + std::to_string(generation_);
    credentials.refreshToken = "refresh-" + grant_ + std::to_string(generation_);
    credentials.expirationDate = Date::now() + TimeInterval(secondsLeft);
    return credentials;
}

ServiceAccountCredentials RotatingService::expiredCredentials(const std::string& accountIdentifier) const {
    return credentials(accountIdentifier, -60);
}

ServiceAccountCredentials RotatingService::freshCredentials(const std::string& accountIdentifier) const {
    return credentials(accountIdentifier, 3600);
}

void RotatingService::refuseAccessToken() {
    const std::lock_guard guard(lock_);
    refused_ = generation_;
}

bool RotatingService::hasEndedTheGrant() const {
    const std::lock_guard guard(lock_);
    return hasEnded_;
}

int RotatingService::refreshCount() const {
    const std::lock_guard guard(lock_);
    return refreshes_;
}

int RotatingService::requestCount() const {
    const std::lock_guard guard(lock_);
    return requests_;
}

} // namespace zelto
