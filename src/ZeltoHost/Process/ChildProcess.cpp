#include <ZeltoHost/Process/ChildProcessInternal.h>

#include <ZeltoHost/Process/SupervisorInternal.h>

#include <algorithm>
#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace zelto {

namespace {

std::error_code lastError() {
    return {errno, std::generic_category()};
}

// A descriptor from 0 to 2, which is possible if the caller has closed its own, would be overwritten in the
// child.
Result<FileDescriptor, std::error_code> clearOfStandard(int number) {
    FileDescriptor descriptor(number);
    if (!descriptor) {
        return failure(lastError());
    }
    if (number > STDERR_FILENO) {
        return descriptor;
    }
    FileDescriptor moved(::fcntl(number, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
    if (!moved) {
        return failure(lastError());
    }
    return moved;
}

struct Pipe {
    FileDescriptor reading;
    FileDescriptor writing;

    static Result<Pipe, std::error_code> make() {
        int ends[2];
        if (::pipe2(ends, O_CLOEXEC) != 0) {
            return failure(lastError());
        }
        auto reading = clearOfStandard(ends[0]);
        auto writing = clearOfStandard(ends[1]);
        if (!reading || !writing) {
            return failure(reading ? writing.error() : reading.error());
        }
        ::fcntl(reading->number(), F_SETFL, O_NONBLOCK);
        return Pipe{std::move(*reading), std::move(*writing)};
    }
};

// A file in memory rather than a pipe: nothing can block, and there is no SIGPIPE if the program does not
// read.
Result<FileDescriptor, std::error_code> inputFile(const std::string& input) {
    if (input.empty()) {
        return clearOfStandard(::open("/dev/null", O_RDONLY | O_CLOEXEC));
    }
    auto file = clearOfStandard(::memfd_create("input", MFD_CLOEXEC));
    if (!file) {
        return file;
    }
    for (std::size_t written = 0; written < input.size();) {
        const auto count = ::write(file->number(), input.data() + written, input.size() - written);
        if (count < 0 && errno != EINTR) {
            return failure(lastError());
        }
        written += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    if (::lseek(file->number(), 0, SEEK_SET) != 0) {
        return failure(lastError());
    }
    return file;
}

bool holdsNul(const std::string& text) {
    return text.find('\0') != std::string::npos;
}

bool isSound(const ProcessRequest& request) {
    return !request.arguments.empty() && request.arguments.front().starts_with('/') &&
           std::ranges::none_of(request.arguments, holdsNul) &&
           (!request.environment || std::ranges::none_of(*request.environment, holdsNul));
}

// Pointers into the texts.
std::vector<char*> pointersTo(const std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (const auto& text : texts) {
        pointers.push_back(const_cast<char*>(text.c_str()));
    }
    pointers.push_back(nullptr);
    return pointers;
}

// Signal handlers must not run in the child before it has restored the default ones.
pid_t forkWithoutSignals(const ChildSetup& setup) {
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, &before);
    const auto pid = ::fork();
    if (pid == 0) {
        setup.parent ? supervise(setup) : becomeProgram(setup);
    }
    const auto error = errno;
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    errno = error;
    return pid;
}

} // namespace

Result<ChildProcess, std::error_code> ChildProcess::start(const ProcessRequest& request) {
    if (!isSound(request)) {
        return failure(std::make_error_code(std::errc::invalid_argument));
    }
    auto input = inputFile(request.input);
    auto nowhere = clearOfStandard(::open("/dev/null", O_WRONLY | O_CLOEXEC));
    auto output = Pipe::make();
    auto errorOutput = Pipe::make();
    auto report = Pipe::make();
    if (!input) {
        return failure(input.error());
    }
    if (!nowhere || !output || !errorOutput || !report) {
        return failure(std::make_error_code(std::errc::too_many_files_open));
    }
    const auto arguments = pointersTo(request.arguments);
    const auto environment = request.environment ? pointersTo(*request.environment) : std::vector<char*>();
    const bool keeps = request.keptOutput > 0;
    const ChildSetup setup{
        .arguments = arguments.data(),
        .environment = request.environment ? environment.data() : ::environ,
        .workingDirectory = request.workingDirectory.empty() ? nullptr : request.workingDirectory.c_str(),
        .limits = request.limits,
        .input = input->number(),
        .output = keeps ? output->writing.number() : nowhere->number(),
        .errorOutput = keeps ? errorOutput->writing.number() : nowhere->number(),
        .report = report->writing.number(),
        .parent = request.outlivesUs ? std::nullopt : std::optional(::getpid()),
        .openFilesLimit = ::sysconf(_SC_OPEN_MAX),
    };
    ChildProcess child;
    child.pid_ = forkWithoutSignals(setup);
    if (child.pid_ < 0) {
        return failure(lastError());
    }
    ::setpgid(child.pid_, child.pid_); // done in the child too: the first of the two has effect
    child.isSupervised_ = !request.outlivesUs;
    child.endSignal_ = FileDescriptor(static_cast<int>(::syscall(SYS_pidfd_open, child.pid_, 0)));
    child.report_ = std::move(report->reading);
    if (keeps) {
        child.output_ = std::move(output->reading);
        child.errorOutput_ = std::move(errorOutput->reading);
    }
    return child;
}

std::optional<ChildReport> ChildProcess::nextReport() const {
    ChildReport report{};
    const bool isThere = ::read(report_.number(), &report, sizeof report) == sizeof report;
    return isThere ? std::optional(report) : std::nullopt;
}

std::optional<ProcessEnd> ChildProcess::collect() {
    int status = 0;
    pid_t ended = 0;
    do {
        ended = ::waitpid(pid_, &status, WNOHANG);
    } while (ended < 0 && errno == EINTR);
    if (ended == 0) {
        return std::nullopt;
    }
    const auto error = lastError();
    const auto report = nextReport();
    if (report && report->kind == ChildReport::Kind::failedToStart) {
        return ProcessFailedToStart{{report->value, std::generic_category()}};
    }
    if (!report && ended < 0) {
        return ProcessFailedToStart{error}; // other code has collected it
    }
    if (report) {
        status = report->value;
    }
    if (WIFSIGNALED(status)) {
        return ProcessSignaled{WTERMSIG(status)};
    }
    return ProcessExited{WEXITSTATUS(status)};
}

void ChildProcess::kill() {
    if (isSupervised_) {
        ::kill(pid_, SIGTERM);
    } else {
        ::kill(-pid_, SIGKILL);
    }
}

} // namespace zelto
