#pragma once

// For sources only.

#include <ZeltoHost/SignIn/SignInRequest.h>

#include <Platform/FileDescriptor.h>

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace zelto {

// One connection to the listener: reads a request, writes a response, waits for the end.
class SignInConnection {
  public:
    using Clock = std::chrono::steady_clock;

    SignInConnection(FileDescriptor socket, Clock::time_point deadline)
        : socket_(std::move(socket)), deadline_(deadline) {}

    int descriptor() const { return socket_.number(); }

    short awaitedEvents() const;

    Clock::time_point deadline() const { return deadline_; }

    bool awaitsRequest() const { return step_ == Step::reading; }

    bool isOver() const { return step_ == Step::over; }

    // Continues as far as possible without blocking. A complete or invalid request is given once; the caller
    // responds to it.
    std::optional<SignInRequest> proceed(const SignInRequestRules& rules);

    // The text must live as long as the program.
    void respond(std::string_view text, Clock::time_point deadline);

  private:
    enum class Step { reading, writing, leaving, over };

    std::optional<SignInRequest> read(const SignInRequestRules& rules);
    void write();
    void leave();

    FileDescriptor socket_;
    Clock::time_point deadline_;
    Step step_ = Step::reading;
    std::string received_;
    std::string_view unsent_;
};

} // namespace zelto
