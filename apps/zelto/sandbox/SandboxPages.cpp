#include "sandbox/SandboxPages.h"

#include <ZeltoHost/SignIn/SignInReply.h>

namespace zelto::cli {

namespace {

constexpr auto sandboxName = "The sandbox";

SignInError badResponse(const std::string& what) {
    return {SignInErrorCode::badResponse, std::string(sandboxName) + what};
}

// The address that the page sends a browser to, once the user has agreed.
Result<URL, SignInError> agreedAddress(const URL& page, const std::stop_token& stop) {
    URLRequest request(page);
    request.headers.set("Zelto-Sandbox-Consent", "allow");
    const auto reply = sendForSignIn(std::move(request), sandboxName, stop);
    if (!reply) {
        return failure(reply.error());
    }
    auto target = page.resolving(reply->location);
    if (reply->location.empty() || !target) {
        return failure(badResponse("'s page does not send the browser back; it has status " +
                                   std::to_string(reply->status) + "."));
    }
    return *std::move(target);
}

// What a browser does at the end: it asks for the address, or runs the listener's page that posts the
// fragment.
URLRequest requestAsBrowser(const URL& target, const URL& redirect) {
    const auto fragment = target.fragment();
    if (!fragment) {
        return URLRequest(target);
    }
    URLRequest request(redirect, "POST");
    request.headers.set("Content-Type", "application/x-www-form-urlencoded;charset=UTF-8");
    request.body = HTTPBody(*fragment);
    return request;
}

std::optional<SignInError> follow(const URL& page, const URL& redirect, const std::stop_token& stop) {
    const auto target = agreedAddress(page, stop);
    if (!target) {
        return target.error();
    }
    if (target->host() != redirect.host() || target->port() != redirect.port()) {
        return badResponse("'s page sends the browser elsewhere.");
    }
    const auto reply = sendForSignIn(requestAsBrowser(*target, redirect), "The listener", stop);
    if (!reply) {
        return reply.error();
    }
    constexpr int taken = 200;
    return reply->status == taken ? std::nullopt
                                  : std::optional(badResponse("'s response is not the one expected."));
}

} // namespace

URL sandboxPage(const std::string& sandbox, const URL& page) {
    auto base = sandbox;
    while (base.ends_with('/')) {
        base.pop_back();
    }
    const auto text = page.absoluteString();
    const auto placed = URL::parse(base + "/host/" + text.substr(text.find("://") + 3));
    return placed.value_or(page);
}

FollowedPages::FollowedPages(URL page, URL redirect, std::stop_source& ending)
    : following_([this, page = std::move(page), redirect = std::move(redirect),
                  &ending](const std::stop_token& stop) {
          auto trouble = follow(page, redirect, stop);
          if (trouble && !stop.stop_requested()) {
              {
                  const std::lock_guard guard(lock_);
                  trouble_ = std::move(trouble);
              }
              ending.request_stop();
          }
      }) {}

std::optional<SignInError> FollowedPages::trouble() const {
    const std::lock_guard guard(lock_);
    return trouble_;
}

} // namespace zelto::cli
