#include <ZeltoHost/Process/Process.h>

#include <Platform/FileDescriptor.h>

#include <Support/Eventually.h>
#include <Support/TemporaryFolder.h>

#include <gtest/gtest.h>

#include <atomic>
#include <csignal>
#include <fstream>
#include <sstream>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace zelto {

namespace {

using namespace std::chrono_literals;

ProcessRequest shell(std::string script, std::vector<std::string> arguments = {}) {
    ProcessRequest request{.arguments = {"/bin/sh", "-c", std::move(script), "sh"}};
    request.arguments.insert(request.arguments.end(), arguments.begin(), arguments.end());
    request.limits.wallTime = 60s;
    return request;
}

bool lives(int pid) {
    std::ifstream stat("/proc/" + std::to_string(pid) + "/stat");
    std::string number;
    std::string name;
    std::string state;
    return (stat >> number >> name >> state) && state != "Z" && state != "X";
}

testing::AssertionResult endsSoon(int pid) {
    if (eventually([&] { return !lives(pid); })) {
        return testing::AssertionSuccess();
    }
    return testing::AssertionFailure() << "process " << pid << " lives on";
}

// Leaves the program's group and session, notes its number in the file that is the first argument, and runs
// until it is killed.
const std::string escaping =
    "setsid sh -c 'sleep 1000 & echo $! > \"$1.part\"; mv \"$1.part\" \"$1\"; wait' sh \"$1\" & ";

// Waits until the file is there.
const std::string untilNoted = "while ! test -e \"$1\"; do sleep 0.01; done; ";

int notedIn(const std::filesystem::path& note) {
    return std::stoi(TemporaryFolder::read(note));
}

std::string statusLine(const std::string& status, const std::string& key) {
    std::istringstream lines(status);
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with(key)) {
            return line.substr(line.find_first_not_of(" \t", key.size() + 1));
        }
    }
    return "missing";
}

} // namespace

TEST(Process, ArgumentsReachTheProgramAsTheyStand) {
    const auto result = runProcess(
        shell(R"(printf '<%s>' "$@")", {"-rf", "$(touch x)", ";x", "a 'b\" c", "", "\n", "*", "é😀"}));
    EXPECT_TRUE(result.succeeded());
    EXPECT_EQ(result.output, "<-rf><$(touch x)><;x><a 'b\" c><><\n><*><é😀>");
    EXPECT_EQ(result.errorOutput, "");
}

TEST(Process, TheExitStatusIsReported) {
    const auto result = runProcess(shell("echo out; echo err >&2; exit 3"));
    EXPECT_EQ(result.end, ProcessEnd(ProcessExited{3}));
    EXPECT_FALSE(result.succeeded());
    EXPECT_EQ(result.output, "out\n");
    EXPECT_EQ(result.errorOutput, "err\n");
    EXPECT_EQ(describe(result.end), "ended with status 3");
}

TEST(Process, AStatusOf127IsNoFailureToStart) {
    EXPECT_EQ(runProcess(shell("exit 127")).end, ProcessEnd(ProcessExited{127}));
}

TEST(Process, TheSignalThatEndedItIsReported) {
    const auto result = runProcess(shell("kill -TERM $$"));
    EXPECT_EQ(result.end, ProcessEnd(ProcessSignaled{SIGTERM}));
    EXPECT_EQ(describe(result.end), "was ended by the signal SIGTERM");
}

TEST(Process, AMissingProgramFailsToStart) {
    const auto result = runProcess({.arguments = {"/no/such/program"}});
    EXPECT_EQ(result.end,
              ProcessEnd(ProcessFailedToStart{std::make_error_code(std::errc::no_such_file_or_directory)}));
    EXPECT_EQ(describe(result.end), "could not be run: No such file or directory");
}

TEST(Process, AFileThatIsNoProgramFailsToStart) {
    EXPECT_EQ(runProcess({.arguments = {"/etc/passwd"}}).end,
              ProcessEnd(ProcessFailedToStart{std::make_error_code(std::errc::permission_denied)}));
}

TEST(Process, AMissingWorkingDirectoryFailsToStart) {
    EXPECT_EQ(runProcess({.arguments = {"/bin/true"}, .workingDirectory = "/no/such/folder"}).end,
              ProcessEnd(ProcessFailedToStart{std::make_error_code(std::errc::no_such_file_or_directory)}));
}

TEST(Process, ARelativeProgramAnEmptyListAndANulAreRefused) {
    const ProcessEnd refused = ProcessFailedToStart{std::make_error_code(std::errc::invalid_argument)};
    EXPECT_EQ(runProcess({.arguments = {"true"}}).end, refused);
    EXPECT_EQ(runProcess({.arguments = {"-true"}}).end, refused);
    EXPECT_EQ(runProcess({.arguments = {}}).end, refused);
    EXPECT_EQ(runProcess({.arguments = {"/bin/true", std::string("a\0b", 3)}}).end, refused);
}

TEST(Process, AnArgumentThatTheSystemCannotPassFailsToStart) {
    EXPECT_EQ(runProcess({.arguments = {"/bin/true", std::string(1'000'000, 'x')}}).end,
              ProcessEnd(ProcessFailedToStart{std::make_error_code(std::errc::argument_list_too_long)}));
}

TEST(Process, StandardInputIsEmptyOrWhatIsGiven) {
    EXPECT_EQ(runProcess(shell("cat; readlink /proc/self/fd/0")).output, "/dev/null\n");
    auto request = shell("cat");
    request.input = std::string(1'000'000, 'a');
    request.keptOutput = 2'000'000;
    EXPECT_EQ(runProcess(request).output, request.input);
}

TEST(Process, InputThatTheProgramDoesNotReadDoesNoHarm) {
    auto request = shell("exit 0");
    request.input = std::string(10'000'000, 'a');
    EXPECT_TRUE(runProcess(request).succeeded());
}

TEST(Process, OnlyTheEndOfTheOutputIsKept) {
    auto request = shell("yes | head -c 10000000; printf END; printf ERROR >&2");
    request.keptOutput = 1000;
    const auto result = runProcess(request);
    EXPECT_EQ(result.output.size(), 1000);
    EXPECT_TRUE(result.output.ends_with("y\nEND"));
    EXPECT_EQ(result.errorOutput, "ERROR");
}

TEST(Process, OutputThatIsNotKeptGoesNowhere) {
    auto request = shell("readlink /proc/$$/fd/1 /proc/$$/fd/2 > \"$1\"", {"/dev/null"});
    request.keptOutput = 0;
    const auto result = runProcess(request);
    EXPECT_TRUE(result.succeeded());
    EXPECT_EQ(result.output, "");
    request = shell("test \"$(readlink /proc/$$/fd/1 /proc/$$/fd/2)\" = \"$1\"", {"/dev/null\n/dev/null"});
    request.keptOutput = 0;
    EXPECT_TRUE(runProcess(request).succeeded());
}

TEST(Process, ItEndsWithTheProgramThoughOthersHoldItsOutput) {
    auto request = shell("sleep 1000 & echo $!");
    request.outlivesUs = true;
    const auto result = runProcess(request);
    EXPECT_TRUE(result.succeeded());
    const int left = std::stoi(result.output);
    EXPECT_TRUE(lives(left)) << "a program that is left running on purpose is not killed";
    ::kill(left, SIGKILL);
}

TEST(Process, WhatAProgramLeavesInItsGroupIsKilled) {
    const auto result = runProcess(shell("sleep 1000 & echo $!"));
    EXPECT_TRUE(result.succeeded());
    EXPECT_TRUE(endsSoon(std::stoi(result.output)));
}

TEST(Process, TheWholeGroupEndsWhenWeAreKilled) {
    const TemporaryFolder folder;
    const auto note = folder / "child";
    const auto caller = ::fork();
    if (caller == 0) {
        (void)runProcess(shell("sleep 1000 & echo $! > \"$1.part\"; mv \"$1.part\" \"$1\"; wait", {note}));
        ::_exit(1);
    }
    ASSERT_TRUE(eventually([&] { return std::filesystem::exists(note); }));
    const int child = std::stoi(TemporaryFolder::read(note));
    EXPECT_TRUE(lives(child));
    ::kill(caller, SIGKILL);
    ::waitpid(caller, nullptr, 0);
    EXPECT_TRUE(endsSoon(child));
}

TEST(Process, WhatLeavesItsSessionIsKilledWhenItEnds) {
    const TemporaryFolder folder;
    const auto note = folder / "child";
    const auto result = runProcess(shell(escaping + untilNoted + "exit 3", {note}));
    EXPECT_EQ(result.end, ProcessEnd(ProcessExited{3}));
    EXPECT_FALSE(lives(notedIn(note)));
}

TEST(Process, WhatLeavesItsSessionIsKilledByAStopRequest) {
    const TemporaryFolder folder;
    const auto note = folder / "child";
    std::stop_source stop;
    std::jthread stopper([&] {
        EXPECT_TRUE(eventually([&] { return std::filesystem::exists(note); }));
        stop.request_stop();
    });
    const auto result = runProcess(shell(escaping + "exec sleep 1000", {note}), stop.get_token());
    EXPECT_EQ(result.end, ProcessEnd(ProcessStopped{}));
    EXPECT_FALSE(lives(notedIn(note)));
}

TEST(Process, WhatLeavesItsSessionIsKilledWhenWeAreKilled) {
    const TemporaryFolder folder;
    const auto note = folder / "child";
    const auto caller = ::fork();
    if (caller == 0) {
        (void)runProcess(shell(escaping + "exec sleep 1000", {note}));
        ::_exit(1);
    }
    ASSERT_TRUE(eventually([&] { return std::filesystem::exists(note); }));
    const int child = notedIn(note);
    EXPECT_TRUE(lives(child));
    ::kill(caller, SIGKILL);
    ::waitpid(caller, nullptr, 0);
    EXPECT_TRUE(endsSoon(child));
}

TEST(Process, TheCallersOtherChildrenAreLeftAlone) {
    const auto other = ::fork();
    if (other == 0) {
        ::pause();
        ::_exit(0);
    }
    EXPECT_TRUE(runProcess(shell("sleep 1000 & exit 0")).succeeded());
    EXPECT_TRUE(lives(other));
    ::kill(other, SIGKILL);
    int status = 0;
    EXPECT_EQ(::waitpid(other, &status, 0), other);
    EXPECT_TRUE(WIFSIGNALED(status));
}

TEST(Process, ItsStatusIsKnownThoughTheCallerIgnoresTheEndsOfItsChildren) {
    const auto before = std::signal(SIGCHLD, SIG_IGN);
    const auto result = runProcess(shell("exit 3"));
    std::signal(SIGCHLD, before);
    EXPECT_EQ(result.end, ProcessEnd(ProcessExited{3}));
}

TEST(Process, TheWallTimeEndsTheWholeGroup) {
    auto request = shell("sleep 1000 & echo $!; trap '' TERM; wait");
    std::string child;
    // A busy machine may take long to start the program.
    for (const auto wallTime : {300ms, 3'000ms, 30'000ms}) {
        request.limits.wallTime = wallTime;
        const auto result = runProcess(request);
        EXPECT_EQ(result.end, ProcessEnd(ProcessTimedOut{}));
        EXPECT_EQ(describe(result.end), "did not end in time and was stopped");
        child = result.output;
        if (!child.empty()) {
            break;
        }
    }
    ASSERT_FALSE(child.empty());
    EXPECT_TRUE(endsSoon(std::stoi(child)));
}

TEST(Process, AProgramThatWritesWithoutEndIsStoppedInTime) {
    auto request = shell("exec yes");
    request.limits.wallTime = 300ms;
    EXPECT_EQ(runProcess(request).end, ProcessEnd(ProcessTimedOut{}));
}

TEST(Process, AStopRequestKillsIt) {
    std::stop_source stop;
    std::jthread stopper([&] { stop.request_stop(); });
    const auto result = runProcess(shell("sleep 1000"), stop.get_token());
    EXPECT_EQ(result.end, ProcessEnd(ProcessStopped{}));
    EXPECT_EQ(describe(result.end), "was stopped");
}

TEST(Process, TheLimitsAreThoseAskedFor) {
    auto request = shell("ulimit -t; ulimit -v; ulimit -f; ulimit -c");
    request.limits.cpuSeconds = 20;
    request.limits.addressSpace = std::uint64_t(1) << 30;
    request.limits.fileSize = 200 * 1024 * 1024;
    EXPECT_EQ(runProcess(request).output, "20\n1048576\n409600\n0\n");
}

TEST(Process, TheCPULimitEndsALoop) {
    auto request = shell("while :; do :; done");
    request.limits.cpuSeconds = 1;
    EXPECT_EQ(runProcess(request).end, ProcessEnd(ProcessSignaled{SIGXCPU}));
}

TEST(Process, TheFileSizeLimitEndsAWriter) {
    const auto file = "/tmp/zelto-process-test-" + std::to_string(::getpid());
    auto request = shell("exec head -c 100000 /dev/zero > \"$1\"", {file});
    request.limits.fileSize = 1000;
    EXPECT_EQ(runProcess(request).end, ProcessEnd(ProcessSignaled{SIGXFSZ}));
    EXPECT_EQ(std::filesystem::file_size(file), 1000);
    std::filesystem::remove(file);
}

TEST(Process, NoOpenFileIsHandedOn) {
    const FileDescriptor kept(::open("/dev/null", O_RDONLY)); // not close-on-exec
    ASSERT_TRUE(kept);
    EXPECT_EQ(runProcess(shell("ls /proc/$$/fd")).output, "0\n1\n2\n");
}

TEST(Process, SignalsAreTheDefaultOnes) {
    const auto before = std::signal(SIGPIPE, SIG_IGN);
    sigset_t blocked;
    sigset_t maskBefore;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGUSR1);
    ::pthread_sigmask(SIG_BLOCK, &blocked, &maskBefore);
    const auto status = runProcess({.arguments = {"/bin/cat", "/proc/self/status"}}).output;
    ::pthread_sigmask(SIG_SETMASK, &maskBefore, nullptr);
    std::signal(SIGPIPE, before);
    EXPECT_EQ(statusLine(status, "SigIgn"), "0000000000000000");
    EXPECT_EQ(statusLine(status, "SigBlk"), "0000000000000000");
}

TEST(Process, TheProgramLeadsItsOwnGroup) {
    const auto result = runProcess(shell("echo $$; cut -d' ' -f5 /proc/$$/stat"));
    std::istringstream lines(result.output);
    int pid = 0;
    int group = 0;
    lines >> pid >> group;
    EXPECT_NE(pid, 0);
    EXPECT_EQ(pid, group);
}

TEST(Process, EnvironmentMayHoldLongValues) {
    std::vector<std::string> environment;
    std::string expected;
    for (char name = 'A'; name <= 'Z'; ++name) {
        environment.push_back(std::string(1, name) + "=" + std::string(1000, name));
        expected += environment.back() + "\n";
    }
    EXPECT_EQ(runProcess({.arguments = {"/usr/bin/env"}, .environment = environment}).output, expected);
}

TEST(Process, EnvironmentAndFolderAreTheGivenOnes) {
    EXPECT_EQ(
        runProcess({.arguments = {"/usr/bin/env"}, .environment = std::vector<std::string>{"A=1", "B=x y"}})
            .output,
        "A=1\nB=x y\n");
    EXPECT_EQ(runProcess({.arguments = {"/usr/bin/env"}, .environment = std::vector<std::string>{}}).output,
              "");
    EXPECT_EQ(runProcess({.arguments = {"/bin/pwd"}, .workingDirectory = "/usr"}).output, "/usr\n");
    ::setenv("ZELTO_PROCESS_TEST", "inherited", 1);
    EXPECT_EQ(runProcess(shell("echo $ZELTO_PROCESS_TEST")).output, "inherited\n");
    ::unsetenv("ZELTO_PROCESS_TEST");
}

TEST(Process, ACallerWithoutStandardFilesCanRunPrograms) {
    FileDescriptor saved(::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 10));
    ::close(STDIN_FILENO);
    auto request = shell("cat; echo err >&2");
    request.input = "given";
    const auto result = runProcess(request);
    if (saved) {
        ::dup2(saved.number(), STDIN_FILENO);
    }
    EXPECT_EQ(result.output, "given");
    EXPECT_EQ(result.errorOutput, "err\n");
}

TEST(Process, ManyThreadsRunProgramsAtOnce) {
    std::vector<std::jthread> threads;
    std::atomic<int> right = 0;
    for (int thread = 0; thread < 8; ++thread) {
        threads.emplace_back([&right, thread] {
            for (int round = 0; round < 10; ++round) {
                const auto text = std::to_string(thread) + "." + std::to_string(round);
                right += runProcess(shell("echo \"$1\"", {text})).output == text + "\n" ? 1 : 0;
            }
        });
    }
    threads.clear();
    EXPECT_EQ(right, 80);
}

} // namespace zelto
