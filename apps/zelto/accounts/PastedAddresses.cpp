#include "accounts/PastedAddresses.h"

#include "base/Terminal.h"

#include <Platform/FileDescriptor.h>

#include <array>
#include <cerrno>
#include <functional>
#include <optional>
#include <string>

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace zelto::cli {

namespace {

// Lines of standard input, given up when a stop is asked for.
class InterruptibleLines {
  public:
    explicit InterruptibleLines(const std::stop_token& stop)
        : event_(::eventfd(0, EFD_CLOEXEC)), callback_(stop, [this] {
              [[maybe_unused]] const auto done = ::eventfd_write(event_.number(), 1);
          }) {}

    // `nullopt` at the end of the input, or at a stop.
    std::optional<std::string> next() {
        constexpr std::size_t maximumLine = 64 * 1024;
        for (;;) {
            if (const auto end = text_.find('\n'); end != std::string::npos) {
                auto line = text_.substr(0, end);
                text_.erase(0, end + 1);
                return line;
            }
            if (text_.size() > maximumLine) {
                text_.clear();
            }
            if (!read()) {
                return text_.empty() ? std::nullopt : std::optional(std::exchange(text_, {}));
            }
        }
    }

  private:
    bool read() {
        std::array<pollfd, 2> awaited{{{STDIN_FILENO, POLLIN, 0}, {event_.number(), POLLIN, 0}}};
        while (::poll(awaited.data(), awaited.size(), -1) < 0 && errno == EINTR) {
        }
        if (awaited[1].revents != 0) {
            text_.clear();
            return false;
        }
        std::array<char, 4096> piece;
        const auto count = ::read(STDIN_FILENO, piece.data(), piece.size());
        if (count > 0) {
            text_.append(piece.data(), static_cast<std::size_t>(count));
        }
        return count > 0 || (count < 0 && (errno == EINTR || errno == EAGAIN));
    }

    FileDescriptor event_;
    std::string text_;
    std::stop_callback<std::function<void()>> callback_;
};

std::string complaint(PasteOutcome outcome, const SignIn& signIn) {
    switch (outcome) {
    case PasteOutcome::taken:
        return {};
    case PasteOutcome::noAddress:
    case PasteOutcome::otherAddress:
        return "that is not the address; it begins with " + signIn.redirect().absoluteString() +
               ". Paste the whole of it.";
    case PasteOutcome::cut:
        return "that address is not whole: its end is missing. Paste all of it.";
    case PasteOutcome::otherResponse:
        return "that address is the end of another sign-in. Paste that of this one.";
    }
    return {};
}

} // namespace

PastedAddresses::PastedAddresses(SignIn& signIn, std::stop_source& ending,
                                 std::function<bool(const std::stop_token&)> isWanted)
    : reading_([this, &signIn, &ending, isWanted = std::move(isWanted)](const std::stop_token& stop) {
          if (!isWanted(stop)) {
              return;
          }
          InterruptibleLines lines(stop);
          while (const auto line = lines.next()) {
              if (line->find_first_not_of(" \t\r") == std::string::npos) {
                  continue;
              }
              const auto outcome = signIn.paste(*line);
              if (outcome == PasteOutcome::taken) {
                  return;
              }
              complaint_ = complaint(outcome, signIn);
              writeError("zelto: " + complaint_ + "\n");
          }
          if (!stop.stop_requested()) {
              hasEnded_ = true;
              if (!signIn.listens()) {
                  ending.request_stop();
              }
          }
      }) {}

std::optional<std::string> PastedAddresses::trouble() const {
    if (!hasEnded_) {
        return std::nullopt;
    }
    return complaint_.empty() ? "Standard input ended before the address was pasted."
                              : "Standard input ended before the right address was pasted: " + complaint_;
}

} // namespace zelto::cli
