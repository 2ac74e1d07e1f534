#include "base/Interruption.h"

#include <csignal>
#include <sys/eventfd.h>
#include <unistd.h>

namespace zelto::cli {

namespace {

// A handler may do little more than write to a descriptor.
int interrupted = -1;

void notify(int) {
    [[maybe_unused]] const auto done = ::eventfd_write(interrupted, 1);
}

void setHandler(void (*handler)(int)) {
    struct sigaction action {};

    action.sa_handler = handler;
    action.sa_flags = static_cast<int>(SA_RESETHAND | SA_RESTART);
    for (const int signal : {SIGINT, SIGTERM}) {
        ::sigaction(signal, &action, nullptr);
    }
}

} // namespace

Interruption::Interruption() {
    interrupted = ::eventfd(0, EFD_CLOEXEC);
    watch_ = std::jthread([this](const std::stop_token& end) {
        eventfd_t count = 0;
        if (::eventfd_read(interrupted, &count) == 0 && !end.stop_requested()) {
            source_.request_stop();
        }
    });
    setHandler(notify);
}

Interruption::~Interruption() {
    setHandler(SIG_DFL);
    watch_.request_stop();
    notify(0);
    watch_.join();
    ::close(interrupted);
}

} // namespace zelto::cli
