#pragma once

// For sources only.

#include <ZeltoHost/SignIn/SignInResponse.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <stop_token>

namespace zelto {

enum class ResponseOrigin { browser, pasted };

// Receives items from the listener and from the user's pasting; the first response that matches counts.
class SignInInbox {
  public:
    using Response = Result<SignInResponse, SignInError>;

    explicit SignInInbox(SignInExpectation expectation) : expectation_(std::move(expectation)) {}

    // True if this was the expected response. Any thread.
    bool offer(const FormItems& items, ResponseOrigin origin);

    // Whether the items are the beginning of the expected response. Any thread.
    bool isCut(const FormItems& items) const { return expectation_.isCut(items); }

    // Whether the response that counts was pasted.
    bool isPasted() const;

    // `nullopt` when the time limit is reached or a stop is requested.
    std::optional<Response> wait(std::chrono::milliseconds limit, const std::stop_token& stop);

  private:
    const SignInExpectation expectation_;
    mutable std::mutex lock_;
    std::condition_variable_any changed_;
    std::optional<Response> response_;
    ResponseOrigin origin_ = ResponseOrigin::browser;
};

} // namespace zelto
