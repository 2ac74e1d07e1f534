#include <zelto/ZeltoProgram.h>

#include <Support/Folders.h>

#include <ZeltoHost/Process/CommandWords.h>

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <poll.h>
#include <pty.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace zelto {

namespace {

constexpr std::size_t keptOutput = 64 << 20;
constexpr std::chrono::minutes maximumRun{2};

int statusOf(const ProcessEnd& end) {
    const auto* exited = std::get_if<ProcessExited>(&end);
    EXPECT_NE(exited, nullptr) << "the program " << describe(end);
    return exited ? exited->status : -1;
}

// All that comes from the terminal until the last program has closed it.
std::string readTerminal(int terminal) {
    std::string text;
    std::array<char, 4096> buffer{};
    for (;;) {
        pollfd waited{terminal, POLLIN, 0};
        constexpr int milliseconds = std::chrono::milliseconds(maximumRun).count();
        if (::poll(&waited, 1, milliseconds) <= 0) {
            ADD_FAILURE() << "the program on the terminal does not end";
            return text;
        }
        const auto count = ::read(terminal, buffer.data(), buffer.size());
        if (count <= 0) {
            return text;
        }
        text.append(buffer.data(), static_cast<std::size_t>(count));
    }
}

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (auto& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

} // namespace

JSONValue ProgramOutcome::json() const {
    auto value = JSONValue::parse(output);
    EXPECT_TRUE(value) << "no JSON document: " << output;
    EXPECT_TRUE(output.ends_with("\n")) << output;
    return value ? *std::move(value) : JSONValue();
}

std::string ProgramOutcome::suggestion() const {
    constexpr std::string_view mark = "\nTry: ";
    const auto at = errorOutput.rfind(mark);
    if (at == std::string::npos) {
        return {};
    }
    const auto start = at + mark.size();
    return errorOutput.substr(start, errorOutput.find('\n', start) - start);
}

std::string ProgramOutcome::text(std::string_view key) const {
    const auto document = json();
    const auto* member = document.find(key);
    return member && member->asString() ? *member->asString() : std::string();
}

ZeltoProgram::ZeltoProgram() {
    for (const auto* folder : {"tmp", "run", "cwd"}) {
        std::filesystem::create_directory(home / folder);
        std::filesystem::permissions(home / folder, std::filesystem::perms::owner_all);
    }
    std::filesystem::create_directory_symlink(sourceFolder() / "examples", home / "cwd/examples");
    variables = {{"HOME", home.path()},
                 {"XDG_DATA_HOME", home / "data"},
                 {"XDG_RUNTIME_DIR", home / "run"},
                 {"TMPDIR", home / "tmp"},
                 {"PATH", path().parent_path().string() + ":/usr/bin:/bin"},
                 {"LC_ALL", "C.UTF-8"},
                 {"TERM", "xterm"},
                 {"TZ", "UTC"}};
    for (const auto* passed : {"ASAN_OPTIONS", "UBSAN_OPTIONS", "TSAN_OPTIONS"}) {
        if (const char* value = std::getenv(passed)) {
            variables[passed] = value;
        }
    }
}

std::vector<std::string> ZeltoProgram::environment() const {
    std::vector<std::string> environment;
    for (const auto& [name, value] : variables) {
        environment.push_back(name + "=" + value);
    }
    return environment;
}

ProgramOutcome ZeltoProgram::run(const Arguments& arguments, const std::string& input) const {
    ProcessRequest request{.arguments = {path()}, .environment = environment(), .keptOutput = keptOutput};
    request.arguments.insert(request.arguments.end(), arguments.begin(), arguments.end());
    request.workingDirectory = home / "cwd";
    request.input = input;
    request.limits.wallTime = maximumRun;
    auto result = runProcess(request);
    return {statusOf(result.end), std::move(result.output), std::move(result.errorOutput)};
}

ProgramOutcome ZeltoProgram::runShell(const std::string& line) const {
    ProcessRequest request{
        .arguments = {"/bin/bash", "-c", line}, .environment = environment(), .keptOutput = keptOutput};
    request.workingDirectory = home / "cwd";
    request.limits.wallTime = maximumRun;
    auto result = runProcess(request);
    return {statusOf(result.end), std::move(result.output), std::move(result.errorOutput)};
}

std::vector<std::string> ZeltoProgram::wordsOf(const std::string& line) const {
    const auto printed = runShell("printf '%s\\0' " + line).output;
    std::vector<std::string> words;
    for (std::size_t start = 0; start < printed.size();) {
        const auto end = printed.find('\0', start);
        words.push_back(printed.substr(start, end - start));
        start = end + 1;
    }
    return words;
}

ProgramOutcome ZeltoProgram::runOnTerminal(const Arguments& arguments, const std::string& typed) const {
    std::vector<std::string> words{path()};
    words.insert(words.end(), arguments.begin(), arguments.end());
    auto names = environment();
    const auto argumentPointers = pointersTo(words);
    const auto environmentPointers = pointersTo(names);
    const auto directory = (home / "cwd").string();
    int terminal = -1;
    const auto child = ::forkpty(&terminal, nullptr, nullptr, nullptr);
    if (child == 0) {
        rlimit core{};
        ::getrlimit(RLIMIT_CORE, &core);
        core.rlim_cur = core.rlim_max;
        ::setrlimit(RLIMIT_CORE, &core);
        if (::chdir(directory.c_str()) == 0) {
            ::execve(argumentPointers.front(), argumentPointers.data(), environmentPointers.data());
        }
        ::_exit(127);
    }
    EXPECT_GT(child, 0);
    EXPECT_EQ(::write(terminal, typed.data(), typed.size()), static_cast<ssize_t>(typed.size()));
    ProgramOutcome outcome;
    outcome.output = readTerminal(terminal);
    ::close(terminal);
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return outcome;
}

std::string ZeltoProgram::exportedURL(Arguments arguments) const {
    arguments.insert(arguments.begin(), "export");
    arguments.insert(arguments.end(), {"--opener", "-"});
    const auto outcome = run(arguments);
    EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
    EXPECT_TRUE(outcome.output.ends_with("\n"));
    return outcome.output.substr(0, outcome.output.find('\n'));
}

std::map<std::string, std::string> ZeltoProgram::filesBelow(const std::filesystem::path& folder) {
    std::map<std::string, std::string> files;
    if (!std::filesystem::exists(folder)) {
        return files;
    }
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        files[entry.path()] = entry.is_regular_file() ? TemporaryFolder::read(entry.path()) : "";
    }
    return files;
}

std::filesystem::path ZeltoProgram::path() {
    return buildFolder() / "apps/zelto/zelto";
}

std::string ZeltoProgram::sample(std::string_view name) {
    return (sourceFolder() / "examples/mails" / name).string();
}

std::string mailWith(std::string_view subject, std::string_view text) {
    std::string mail = "From: Mira <mira@harbour.example>\r\nTo: ana@quay.example\r\nSubject: ";
    mail.append(subject).append("\r\nDate: Fri, 17 Oct 2025 09:12:03 +0200\r\n"
                                "Message-ID: <id1@harbour.example>\r\nMIME-Version: 1.0\r\n"
                                "Content-Type: text/plain; charset=utf-8\r\n"
                                "Content-Transfer-Encoding: 8bit\r\n\r\n");
    return mail.append(text);
}

} // namespace zelto
