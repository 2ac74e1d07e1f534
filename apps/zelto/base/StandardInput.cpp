#include "base/StandardInput.h"

#include <array>
#include <cerrno>
#include <utility>

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace zelto::cli {

namespace {

// Keys, as a terminal sends them.
constexpr char endOfInput = 0x04; // Ctrl-D
constexpr char backspace = 0x08;  // Ctrl-H
constexpr char eraseLine = 0x15;  // Ctrl-U
constexpr char deleteKey = 0x7f;

bool continuesCharacter(char c) {
    return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

} // namespace

StandardInput::StandardInput(const std::stop_token& stop, InBackground inBackground)
    : hiding_(inBackground), event_(::eventfd(0, EFD_CLOEXEC)),
      callback_(stop, [this] { [[maybe_unused]] const auto done = ::eventfd_write(event_.number(), 1); }) {}

Result<std::string, InputEnd> StandardInput::line(std::size_t limit) {
    for (;;) {
        if (const auto end = text_.find('\n'); end != std::string::npos) {
            auto line = text_.substr(0, end);
            text_.erase(0, end + 1);
            return line;
        }
        if (text_.size() > limit) {
            text_.clear();
            return failure(InputEnd::tooLong);
        }
        if (!read()) {
            if (text_.empty() || isStopped_) {
                return failure(isStopped_ ? InputEnd::stopped : InputEnd::ended);
            }
            return std::exchange(text_, {});
        }
    }
}

Result<std::string, InputEnd> StandardInput::all(std::size_t limit) {
    while (text_.size() <= limit && read()) {
    }
    if (isStopped_ || text_.size() > limit) {
        return failure(isStopped_ ? InputEnd::stopped : InputEnd::tooLong);
    }
    return std::exchange(text_, {});
}

bool StandardInput::waitForInput() const {
    std::array<pollfd, 2> awaited{{{STDIN_FILENO, POLLIN, 0}, {event_.number(), POLLIN, 0}}};
    while (::poll(awaited.data(), awaited.size(), -1) < 0 && errno == EINTR) {
    }
    return awaited[1].revents == 0;
}

bool StandardInput::read() {
    while (!hasEnded_ && !isStopped_) {
        isStopped_ = !waitForInput();
        if (isStopped_) {
            break;
        }
        std::array<char, 4096> piece;
        const auto count = ::read(STDIN_FILENO, piece.data(), piece.size());
        if (count > 0) {
            take({piece.data(), static_cast<std::size_t>(count)});
            return true;
        }
        hasEnded_ = count == 0 || (errno != EINTR && errno != EAGAIN);
    }
    return false;
}

void StandardInput::take(std::string_view bytes) {
    if (!isTyped()) {
        text_ += bytes;
        return;
    }
    for (const char c : bytes) {
        type(c);
    }
}

void StandardInput::type(char c) {
    switch (c) {
    case endOfInput:
        // As at any terminal: within a line it only ends the line.
        if (typedLine().empty()) {
            hasEnded_ = true;
        } else {
            text_ += '\n';
        }
        return;
    case eraseLine:
        text_.resize(text_.size() - typedLine().size());
        return;
    case backspace:
    case deleteKey:
        eraseCharacter();
        return;
    default:
        if (!hasEnded_) {
            text_ += c;
        }
    }
}

void StandardInput::eraseCharacter() {
    bool isBegun = true;
    while (isBegun && !typedLine().empty()) {
        isBegun = continuesCharacter(text_.back());
        text_.pop_back();
    }
}

std::string_view StandardInput::typedLine() const {
    const auto end = text_.rfind('\n');
    return std::string_view(text_).substr(end == std::string::npos ? 0 : end + 1);
}

} // namespace zelto::cli
