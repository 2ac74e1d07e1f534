#include "base/HiddenTyping.h"

#include <csignal>

#include <termios.h>
#include <unistd.h>

namespace zelto::cli {

namespace {

// For the signal handler, which may do little more than set them.
termios hidden;

bool isInForeground() {
    return ::tcgetpgrp(STDIN_FILENO) == ::getpgrp();
}

// A shell that has stopped the program shows what is typed again.
void hideAgain(int) {
    if (isInForeground()) {
        ::tcsetattr(STDIN_FILENO, TCSANOW, &hidden);
    }
}

void setContinueHandler(void (*handler)(int)) {
    struct sigaction action {};

    action.sa_handler = handler;
    action.sa_flags = static_cast<int>(SA_RESTART);
    ::sigaction(SIGCONT, &action, nullptr);
}

} // namespace

HiddenTyping::HiddenTyping(InBackground inBackground) {
    auto before = std::make_unique<termios>();
    const bool isLeft = inBackground == InBackground::goesOn && !isInForeground();
    if (isLeft || ::tcgetattr(STDIN_FILENO, before.get()) != 0) {
        return;
    }
    hidden = *before;
    hidden.c_lflag &= ~static_cast<tcflag_t>(ECHO | ICANON | IEXTEN);
    hidden.c_iflag |= static_cast<tcflag_t>(ICRNL);
    hidden.c_cc[VMIN] = 1;
    hidden.c_cc[VTIME] = 0;
    // It would end the process without a way to show again what is typed.
    hidden.c_cc[VQUIT] = _POSIX_VDISABLE;
    if (::tcsetattr(STDIN_FILENO, TCSANOW, &hidden) == 0) {
        before_ = std::move(before);
        setContinueHandler(hideAgain);
    }
}

HiddenTyping::~HiddenTyping() {
    if (before_) {
        setContinueHandler(SIG_DFL);
        // What nobody has read may be the rest of a secret, and is not left to the shell.
        ::tcsetattr(STDIN_FILENO, TCSAFLUSH, before_.get());
    }
}

} // namespace zelto::cli
