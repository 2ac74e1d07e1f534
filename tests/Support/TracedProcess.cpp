#include <Support/TracedProcess.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>

namespace zelto {

namespace {

int statusOf(pid_t pid) {
    int status = 0;
    while (::waitpid(pid, &status, 0) < 0) {
        if (errno != EINTR) {
            throw std::system_error(errno, std::generic_category(), "waitpid");
        }
    }
    return status;
}

pid_t startTraced(const std::function<int()>& body) {
    const auto pid = ::fork();
    if (pid == 0) {
        if (::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) {
            ::_exit(127);
        }
        ::raise(SIGSTOP);
        ::_exit(body());
    }
    if (!WIFSTOPPED(statusOf(pid))) {
        throw std::runtime_error("the process cannot be traced");
    }
    ::ptrace(PTRACE_SETOPTIONS, pid, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
    return pid;
}

void setRegister([[maybe_unused]] pid_t pid, [[maybe_unused]] std::size_t offset,
                 [[maybe_unused]] std::int64_t value) {
    if (::ptrace(PTRACE_POKEUSER, pid, offset, value) != 0) {
        throw std::system_error(errno, std::generic_category(), "PTRACE_POKEUSER");
    }
}

// The number of no call: the kernel returns at once, with what is in the register of the result.
void skipCall(pid_t pid) {
#ifdef __x86_64__
    setRegister(pid, offsetof(user_regs_struct, orig_rax), -1);
#else
    (void)pid;
    throw std::runtime_error("calls cannot be made to fail here");
#endif
}

void setResult(pid_t pid, int error) {
#ifdef __x86_64__
    setRegister(pid, offsetof(user_regs_struct, rax), -error);
#else
    (void)pid;
    (void)error;
#endif
}

// The process at its next call; the status of its end if there is none.
std::optional<int> goToNextStop(pid_t pid, int signal, int& stopSignal) {
    ::ptrace(PTRACE_SYSCALL, pid, nullptr, static_cast<std::intptr_t>(signal));
    const int status = statusOf(pid);
    if (!WIFSTOPPED(status)) {
        return status;
    }
    stopSignal = WSTOPSIG(status);
    return std::nullopt;
}

} // namespace

bool TracedCall::isOneOf(std::initializer_list<long> calls) const {
    return std::ranges::find(calls, static_cast<long>(number)) != calls.end();
}

bool TracedCall::opensFor(int flags) const {
    if (static_cast<long>(number) == SYS_openat) {
        return (static_cast<int>(arguments[2]) & flags) != 0;
    }
#ifdef SYS_open
    if (static_cast<long>(number) == SYS_open) {
        return (static_cast<int>(arguments[1]) & flags) != 0;
    }
#endif
    return false;
}

bool TracedCall::needsSpace() const {
    return isOneOf({SYS_write, SYS_pwrite64, SYS_writev, SYS_ftruncate, SYS_fallocate, SYS_mkdirat,
#ifdef SYS_mkdir
                    SYS_mkdir,
#endif
                    SYS_fsync, SYS_fdatasync}) ||
           opensFor(O_CREAT);
}

bool TracedCall::opensForWriting() const {
    return opensFor(O_WRONLY | O_RDWR | O_CREAT | O_TRUNC);
}

bool TracedCall::changesFiles() const {
    return needsSpace() || opensFor(O_TRUNC) ||
           isOneOf({SYS_renameat2, SYS_renameat, SYS_unlinkat, SYS_linkat, SYS_fchmod, SYS_fchmodat,
                    SYS_fchown,
#ifdef SYS_rename
                    SYS_rename, SYS_unlink, SYS_link, SYS_chmod, SYS_rmdir, SYS_chown,
#endif
                    SYS_utimensat, SYS_flock});
}

bool TracedCall::readsFiles() const {
    return isOneOf({SYS_read, SYS_pread64, SYS_readv, SYS_getdents64, SYS_fstat, SYS_newfstatat,
#ifdef SYS_stat
                    SYS_stat, SYS_lstat,
#endif
                    SYS_faccessat}) ||
           ((static_cast<long>(number) == SYS_openat) && !opensFor(O_CREAT));
}

std::optional<int> runTraced(const std::function<int()>& body,
                             const std::function<TracedDecision(const TracedCall&)>& decide) {
    const auto pid = startTraced(body);
    int error = 0;
    int signal = 0;
    for (;;) {
        int stopSignal = 0;
        if (const auto end = goToNextStop(pid, signal, stopSignal)) {
            if (!WIFEXITED(*end)) {
                throw std::runtime_error("the traced process ended by signal " +
                                         std::to_string(WTERMSIG(*end)));
            }
            return WEXITSTATUS(*end);
        }
        signal = stopSignal == (SIGTRAP | 0x80) ? 0 : stopSignal;
        if (signal != 0) {
            continue;
        }
        __ptrace_syscall_info info{};
        ::ptrace(PTRACE_GET_SYSCALL_INFO, pid, sizeof info, &info);
        if (info.op == PTRACE_SYSCALL_INFO_EXIT && error != 0) {
            setResult(pid, std::exchange(error, 0));
        }
        if (info.op != PTRACE_SYSCALL_INFO_ENTRY) {
            continue;
        }
        TracedCall call{.number = info.entry.nr, .arguments = {}};
        std::ranges::copy(info.entry.args, call.arguments.begin());
        const auto decision = decide(call);
        if (decision.isKilled) {
            ::kill(pid, SIGKILL);
            statusOf(pid);
            return std::nullopt;
        }
        if (decision.error != 0) {
            error = decision.error;
            skipCall(pid);
        }
    }
}

} // namespace zelto
