#pragma once

#include <ZeltoHost/SignIn/SignIn.h>

#include <atomic>
#include <functional>
#include <optional>
#include <stop_token>
#include <string>
#include <thread>

namespace zelto::cli {

// Reads lines of standard input while it lives, and gives each to the sign-in; what is wrong with one is
// written to standard error. What is typed at a terminal is not shown: the address holds a code or a token.
// Where the response cannot come another way, the end of the input ends the waiting.
class PastedAddresses {
  public:
    // Nothing is read if `isWanted` says so; it may take its time, until a stop is asked for.
    PastedAddresses(SignIn& signIn, std::stop_source& ending,
                    std::function<bool(const std::stop_token&)> isWanted);

    // What to say where the input has ended without the address.
    std::optional<std::string> trouble() const;

  private:
    // Whether a line was taken before the input ended or a stop was asked for.
    bool takes(SignIn& signIn, const std::stop_token& stop);

    std::string complaint_; // about the last line, for whoever knows that the input has ended
    std::atomic<bool> hasEnded_ = false;
    std::jthread reading_;
};

} // namespace zelto::cli
