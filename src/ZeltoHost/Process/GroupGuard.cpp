#include <ZeltoHost/Process/GroupGuardInternal.h>

#include <cerrno>
#include <csignal>
#include <utility>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace zelto {

namespace {

// In the forked process: nothing may be allocated.
[[noreturn]] void guard(int signal, pid_t group) noexcept {
    ::setsid(); // a Ctrl-C of the terminal is not for it
    ::dup2(signal, STDIN_FILENO);
    ::close_range(STDIN_FILENO + 1, ~0U, 0);
    char byte = 0;
    ssize_t count = 0;
    do {
        count = ::read(STDIN_FILENO, &byte, sizeof byte);
    } while (count < 0 && errno == EINTR);
    if (count == 0) {
        ::kill(-group, SIGKILL);
    }
    ::_exit(0);
}

} // namespace

GroupGuard GroupGuard::of(pid_t group) {
    GroupGuard started;
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) {
        return started;
    }
    const FileDescriptor reading(ends[0]);
    FileDescriptor writing(ends[1]);
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, &before);
    started.pid_ = ::fork();
    if (started.pid_ == 0) {
        guard(reading.number(), group);
    }
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    if (started.pid_ > 0) {
        started.signal_ = std::move(writing);
    }
    return started;
}

GroupGuard::GroupGuard(GroupGuard&& other) noexcept
    : pid_(std::exchange(other.pid_, -1)), signal_(std::move(other.signal_)) {}

GroupGuard& GroupGuard::operator=(GroupGuard&& other) noexcept {
    dismiss();
    pid_ = std::exchange(other.pid_, -1);
    signal_ = std::move(other.signal_);
    return *this;
}

GroupGuard::~GroupGuard() {
    dismiss();
}

void GroupGuard::dismiss() {
    if (pid_ <= 0) {
        return;
    }
    constexpr char byte = 0;
    while (::write(signal_.number(), &byte, sizeof byte) < 0 && errno == EINTR) {
    }
    while (::waitpid(pid_, nullptr, 0) < 0 && errno == EINTR) {
    }
    pid_ = -1;
    signal_ = FileDescriptor();
}

} // namespace zelto
