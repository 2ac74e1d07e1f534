#include <ZeltoHost/Process/ChildSetupInternal.h>

#include <algorithm>
#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace zelto {

namespace {

void unblockSignals() noexcept {
    sigset_t none;
    sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
}

// The hard limit is one unit higher: for time, the kernel kills a program there that ignores the signal of
// the soft limit.
bool limit(__rlimit_resource resource, const std::optional<std::uint64_t>& wanted, rlim_t margin) noexcept {
    rlimit now{};
    if (!wanted) {
        return true;
    }
    if (::getrlimit(resource, &now) != 0) {
        return false;
    }
    const auto soft = std::min<rlim_t>(*wanted, now.rlim_max);
    const rlimit next{soft, std::min<rlim_t>(soft + margin, now.rlim_max)};
    return ::setrlimit(resource, &next) == 0;
}

bool takeLimits(const ProcessLimits& limits) noexcept {
    return limit(RLIMIT_CORE, 0, 0) && limit(RLIMIT_CPU, limits.cpuSeconds, 10) &&
           limit(RLIMIT_AS, limits.addressSpace, 0) && limit(RLIMIT_FSIZE, limits.fileSize, 0);
}

bool takeFiles(const ChildSetup& setup) noexcept {
    if (::dup2(setup.input, STDIN_FILENO) < 0 || ::dup2(setup.output, STDOUT_FILENO) < 0 ||
        ::dup2(setup.errorOutput, STDERR_FILENO) < 0) {
        return false;
    }
    if (::close_range(STDERR_FILENO + 1, ~0U, CLOSE_RANGE_CLOEXEC) != 0) {
        for (int each = STDERR_FILENO + 1; each < setup.openFilesLimit; ++each) {
            ::fcntl(each, F_SETFD, FD_CLOEXEC);
        }
    }
    return true;
}

bool dieWithParent(const std::optional<pid_t>& parent) noexcept {
    return !parent || (::prctl(PR_SET_PDEATHSIG, SIGKILL) == 0 && ::getppid() == *parent);
}

} // namespace

void takeDefaultActions() noexcept {
    for (int signal = 1; signal < NSIG; ++signal) {
        ::signal(signal, SIG_DFL);
    }
}

void reportStartError(const ChildSetup& setup) noexcept {
    const ChildReport report{ChildReport::Kind::failedToStart, errno};
    [[maybe_unused]] const auto written = ::write(setup.report, &report, sizeof report);
    ::_exit(127);
}

void becomeProgram(const ChildSetup& setup) noexcept {
    ::setpgid(0, 0);
    takeDefaultActions();
    unblockSignals();
    errno = ESRCH;
    if (dieWithParent(setup.parent) && takeFiles(setup) &&
        (setup.workingDirectory == nullptr || ::chdir(setup.workingDirectory) == 0) &&
        takeLimits(setup.limits)) {
        ::execve(setup.arguments[0], setup.arguments, setup.environment);
    }
    reportStartError(setup);
}

} // namespace zelto
