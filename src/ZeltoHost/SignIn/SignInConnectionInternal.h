#pragma once

// For sources only.

#include <ZeltoHost/SignIn/SignInRequest.h>

#include <Platform/FileDescriptor.h>

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace zelto {

// One connection to the listener: a request is read, an answer written, the end waited for.
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

    // Goes on as far as it gets without waiting. A request that is whole, or none, is given once; the caller
    // answers it.
    std::optional<SignInRequest> proceed(const SignInRequestRules& rules);

    // The text lives as long as the program.
    void answer(std::string_view text, Clock::time_point deadline);

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
