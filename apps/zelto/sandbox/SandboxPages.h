#pragma once

#include <ZeltoHost/SignIn/SignInError.h>

#include <Platform/URL.h>

#include <mutex>
#include <optional>
#include <stop_token>
#include <string>
#include <thread>

namespace zelto::cli {

// Where a browser, which cannot choose its Host, finds a service's page at the sandbox.
URL sandboxPage(const std::string& sandbox, const URL& page);

// Takes the browser's part with the sandbox's pages: opens the page, agrees, and goes to where it is sent.
// Works on a thread of its own while it lives.
class FollowedPages {
  public:
    // If it fails, `ending` is asked to stop, and trouble() says why.
    FollowedPages(URL page, URL redirect, std::stop_source& ending);

    std::optional<SignInError> trouble() const;

  private:
    mutable std::mutex lock_;
    std::optional<SignInError> trouble_;
    std::jthread following_;
};

} // namespace zelto::cli
