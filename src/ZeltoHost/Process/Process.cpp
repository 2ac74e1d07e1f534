#include <ZeltoHost/Process/Process.h>

#include <ZeltoHost/Process/ChildProcessInternal.h>
#include <ZeltoHost/Process/StopSignalInternal.h>

#include <algorithm>
#include <array>
#include <cstring>

#include <poll.h>
#include <unistd.h>

namespace zelto {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

// How long a killed program may take to end: one that hangs in the kernel is abandoned.
constexpr milliseconds killGrace{5000};

// The polling interval if the system does not signal the end.
constexpr milliseconds endPolling{20};

// Keeps the end of an output.
class OutputTail {
  public:
    OutputTail(FileDescriptor& source, std::size_t kept) : source_(source), kept_(kept) {}

    int descriptor() const { return source_.number(); }

    // Reads what is available, but only a few pieces: a program may write faster than we read.
    void read() {
        std::array<char, 16 * 1024> piece;
        for (int round = 0; source_ && round < 16; ++round) {
            const auto count = ::read(source_.number(), piece.data(), piece.size());
            if (count < 0) {
                return;
            }
            if (count == 0) {
                source_ = FileDescriptor();
                return;
            }
            text_.append(piece.data(), static_cast<std::size_t>(count));
            if (text_.size() > 2 * kept_) {
                shorten();
            }
        }
    }

    std::string take() {
        shorten();
        return std::move(text_);
    }

  private:
    void shorten() { text_.erase(0, text_.size() - std::min(text_.size(), kept_)); }

    FileDescriptor& source_;
    std::size_t kept_;
    std::string text_;
};

class Watch {
  public:
    Watch(ChildProcess& child, const ProcessRequest& request, const std::stop_token& stop)
        : child_(child), stop_(stop), stopSignal_(stop), output_(child.output(), request.keptOutput),
          errorOutput_(child.errorOutput(), request.keptOutput) {
        if (request.limits.wallTime) {
            deadline_ = Clock::now() + *request.limits.wallTime;
        }
    }

    ProcessResult run() {
        auto end = untilItEnds();
        output_.read();
        errorOutput_.read();
        return {end, output_.take(), errorOutput_.take()};
    }

  private:
    ProcessEnd untilItEnds() {
        for (;;) {
            if (auto end = child_.collect()) {
                return *end;
            }
            if (stop_.stop_requested()) {
                return killed(ProcessStopped{});
            }
            if (deadline_ && Clock::now() >= *deadline_) {
                return killed(ProcessTimedOut{});
            }
            wait(deadline_, stopSignal_.descriptor());
            output_.read();
            errorOutput_.read();
        }
    }

    ProcessEnd killed(ProcessEnd end) {
        child_.kill();
        const auto deadline = Clock::now() + killGrace;
        while (!child_.collect() && Clock::now() < deadline) {
            wait(deadline, -1);
            output_.read();
            errorOutput_.read();
        }
        return end;
    }

    void wait(const std::optional<Clock::time_point>& deadline, int stopDescriptor) {
        std::optional<milliseconds> limit;
        if (deadline) {
            limit = std::max(milliseconds(0), std::chrono::ceil<milliseconds>(*deadline - Clock::now()));
        }
        if (!child_.endSignal()) {
            limit = std::min(limit.value_or(endPolling), endPolling);
        }
        constexpr milliseconds maximum{std::chrono::hours(24)};
        const int timeout = limit ? static_cast<int>(std::min(*limit, maximum).count()) : -1;
        std::array<pollfd, 4> watched{{{child_.endSignal().number(), POLLIN, 0},
                                       {output_.descriptor(), POLLIN, 0},
                                       {errorOutput_.descriptor(), POLLIN, 0},
                                       {stopDescriptor, POLLIN, 0}}};
        ::poll(watched.data(), watched.size(), timeout); // whatever the result, everything is checked again
    }

    ChildProcess& child_;
    std::stop_token stop_;
    StopSignal stopSignal_;
    OutputTail output_;
    OutputTail errorOutput_;
    std::optional<Clock::time_point> deadline_;
};

struct EndText {
    std::string operator()(const ProcessExited& end) const {
        return "ended with status " + std::to_string(end.status);
    }

    std::string operator()(const ProcessSignaled& end) const {
        const char* name = ::sigabbrev_np(end.signal);
        return "was ended by the signal " +
               (name != nullptr ? "SIG" + std::string(name) : std::to_string(end.signal));
    }

    std::string operator()(ProcessTimedOut) const { return "did not end in time and was stopped"; }

    std::string operator()(ProcessStopped) const { return "was stopped"; }

    std::string operator()(const ProcessFailedToStart& end) const {
        return "could not be run: " + end.reason.message();
    }
};

} // namespace

std::string describe(const ProcessEnd& end) {
    return std::visit(EndText(), end);
}

ProcessResult runProcess(const ProcessRequest& request, const std::stop_token& stop) {
    auto child = ChildProcess::start(request);
    if (!child) {
        return {ProcessFailedToStart{child.error()}, {}, {}};
    }
    return Watch(*child, request, stop).run();
}

} // namespace zelto
