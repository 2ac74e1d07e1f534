#pragma once

// For sources only.

#include <ZeltoHost/SignIn/SignInResponse.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <stop_token>

namespace zelto {

// Where the listener and the user's pasting lay what they get; the first answer that is ours counts.
class SignInInbox {
  public:
    using Answer = Result<SignInResponse, SignInError>;

    explicit SignInInbox(SignInExpectation expectation) : expectation_(std::move(expectation)) {}

    // True if this was the answer. Any thread.
    bool offer(const FormItems& items);

    // Nothing when the time has run out or a stop was asked for.
    std::optional<Answer> wait(std::chrono::milliseconds limit, const std::stop_token& stop);

  private:
    const SignInExpectation expectation_;
    std::mutex lock_;
    std::condition_variable_any changed_;
    std::optional<Answer> answer_;
};

} // namespace zelto
