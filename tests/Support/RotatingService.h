#pragma once

#include <Support/TestHTTPServer.h>

#include <ZeltoIntegrations/Accounts/ServiceAccountCredentials.h>

#include <mutex>
#include <string>
#include <utility>

namespace zelto {

// A service whose refresh tokens are good for one use each: a spent one ends the grant, and with it the
// account. Its tokens are "access-1" and "refresh-1", then "access-2" and so on, with the grant's name before
// the number. To be played by a TestHTTPServer, for any service whose token endpoint ends in "/token". Any
// thread.
class RotatingService {
  public:
    // The name consists of letters.
    explicit RotatingService(std::string grant = {}) : grant_(std::move(grant)) {}

    PlayedResponse respond(const ReceivedRequest& request);

    // Its present tokens. The access token has expired, or has an hour left.
    ServiceAccountCredentials expiredCredentials(const std::string& accountIdentifier) const;
    ServiceAccountCredentials freshCredentials(const std::string& accountIdentifier) const;

    // From now on the present access token is refused with 401.
    void refuseAccessToken();

    bool hasEndedTheGrant() const;
    int refreshCount() const; // those that succeeded
    int requestCount() const; // those that succeeded, without the refreshes

  private:
    PlayedResponse refreshed(const std::string& body);
    ServiceAccountCredentials credentials(const std::string& accountIdentifier, double secondsLeft) const;

    const std::string grant_;
    mutable std::mutex lock_;
    int generation_ = 1;
    int refused_ = 0; // up to this generation
    bool hasEnded_ = false;
    int refreshes_ = 0;
    int requests_ = 0;
};

} // namespace zelto
