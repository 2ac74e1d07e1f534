#include <ZeltoHost/Process/SupervisorInternal.h>

#include <cerrno>
#include <csignal>
#include <ctime>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

// In the forked process: nothing may be allocated.
namespace zelto {

namespace {

// A killed process that hangs in the kernel is abandoned.
constexpr std::time_t killGraceSeconds = 5;

// Whoever loses its parent at this moment is not yet in the list of children.
constexpr timespec killInterval{0, 20'000'000};

sigset_t awaitedSignals() noexcept {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGCHLD);
    sigaddset(&signals, SIGTERM);
    return signals;
}

std::time_t now() noexcept {
    timespec time{};
    ::clock_gettime(CLOCK_MONOTONIC, &time);
    return time.tv_sec;
}

bool isLeftOverToUs(const ChildSetup& setup) noexcept {
    errno = ESRCH;
    return ::prctl(PR_SET_PDEATHSIG, SIGTERM) == 0 && ::getppid() == setup.parent &&
           ::prctl(PR_SET_CHILD_SUBREAPER, 1) == 0;
}

// Of the parent's files, which must not stay open here, the report alone.
int keepReportAlone(int report) noexcept {
    ::dup2(report, STDIN_FILENO);
    ::close_range(STDIN_FILENO + 1, ~0U, 0);
    return STDIN_FILENO;
}

// Leaves the program's status to be collected: until then no other group can have its number. What else has
// ended is collected.
bool hasEnded(pid_t program) noexcept {
    siginfo_t ended{};
    while (::waitid(P_ALL, 0, &ended, WEXITED | WNOHANG | WNOWAIT) == 0 && ended.si_pid != 0) {
        if (ended.si_pid == program) {
            return true;
        }
        ::waitpid(ended.si_pid, nullptr, 0);
        ended = {};
    }
    return false;
}

void waitForEnd(pid_t program) noexcept {
    const auto signals = awaitedSignals();
    while (!hasEnded(program) && ::sigwaitinfo(&signals, nullptr) != SIGTERM) {
    }
}

// Their numbers are theirs until they are collected.
void killChildren() noexcept {
    const int list = ::open("/proc/thread-self/children", O_RDONLY | O_CLOEXEC);
    char text[1024];
    pid_t child = 0;
    for (ssize_t count = 0; (count = ::read(list, text, sizeof text)) > 0;) {
        for (ssize_t index = 0; index < count; ++index) {
            if (text[index] >= '0' && text[index] <= '9') {
                child = child * 10 + (text[index] - '0');
            } else if (child > 0) {
                ::kill(child, SIGKILL);
                child = 0;
            }
        }
    }
    ::close(list);
}

// Collects what has ended; false if there are no children left.
bool collectChildren(pid_t program, int& programStatus) noexcept {
    for (;;) {
        int status = 0;
        const auto ended = ::waitpid(-1, &status, WNOHANG);
        if (ended <= 0) {
            return ended == 0;
        }
        if (ended == program) {
            programStatus = status;
        }
    }
}

// Gives the program's status as waitpid(2) does. Those that have lost their parent by a kill follow in the
// next round.
int killAll(pid_t program) noexcept {
    int status = SIGKILL;
    ::kill(-program, SIGKILL);
    const auto signals = awaitedSignals();
    const auto deadline = now() + killGraceSeconds;
    while (collectChildren(program, status) && now() < deadline) {
        killChildren();
        ::sigtimedwait(&signals, nullptr, &killInterval);
    }
    return status;
}

} // namespace

void supervise(const ChildSetup& setup) noexcept {
    ::setpgid(0, 0); // a Ctrl-C of the terminal is not for it
    takeDefaultActions();
    if (!isLeftOverToUs(setup)) {
        reportStartError(setup);
    }
    auto programSetup = setup;
    programSetup.parent = ::getpid();
    const auto program = ::_Fork();
    if (program == 0) {
        becomeProgram(programSetup);
    }
    if (program < 0) {
        reportStartError(setup);
    }
    ::setpgid(program, program); // done there too: the first of the two has effect
    const int report = keepReportAlone(setup.report);
    waitForEnd(program);
    const ChildReport end{ChildReport::Kind::ended, killAll(program)};
    [[maybe_unused]] const auto written = ::write(report, &end, sizeof end);
    ::_exit(0);
}

} // namespace zelto
