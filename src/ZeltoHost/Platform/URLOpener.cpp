#include <ZeltoHost/Platform/URLOpener.h>

#include <ZeltoHost/Process/CommandWords.h>

#include <algorithm>
#include <array>

#include <unistd.h>

namespace zelto {

namespace {

constexpr std::array<std::string_view, 5> applicationSchemes{"agenda", "bear", "omnifocus", "things",
                                                             "twodo"};

bool isThisMachine(const std::string& host) {
    return host == "localhost" || host == "127.0.0.1" || host == "::1";
}

OpenError tooLong(std::size_t size) {
    return {OpenErrorCode::tooLong, {}, std::to_string(size) + " bytes"};
}

Result<void, OpenError> outcome(const ProcessEnd& end, const std::string& program, std::size_t size) {
    if (end == ProcessEnd(ProcessExited{0})) {
        return {};
    }
    if (std::holds_alternative<ProcessTimedOut>(end)) {
        return failure(OpenError{OpenErrorCode::timedOut, program, describe(end)});
    }
    if (std::holds_alternative<ProcessStopped>(end)) {
        return failure(OpenError{OpenErrorCode::canceled, program, {}});
    }
    if (const auto* failed = std::get_if<ProcessFailedToStart>(&end);
        failed != nullptr && failed->reason == std::errc::argument_list_too_long) {
        return failure(tooLong(size));
    }
    return failure(OpenError{OpenErrorCode::failed, program, describe(end)});
}

} // namespace

URLOpener::URLOpener(std::vector<std::string> command, std::chrono::milliseconds limit)
    : command_(std::move(command)), limit_(limit) {}

// On Linux, one argument of a program has at most 32 pages, its final NUL included.
std::size_t URLOpener::maximumURLSize() {
    constexpr std::size_t maximumPages = 32;
    return maximumPages * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE)) - 1;
}

bool URLOpener::isAllowed(const URL& url) {
    const auto scheme = url.scheme();
    return scheme == "https" || (scheme == "http" && isThisMachine(url.host())) ||
           std::ranges::find(applicationSchemes, scheme) != applicationSchemes.end();
}

void URLOpener::open(const URL& url, Completion<void, OpenError> completion) {
    const auto& text = url.absoluteString();
    if (!isAllowed(url)) {
        completion(failure(OpenError{OpenErrorCode::schemeNotAllowed, url.scheme(), {}}));
        return;
    }
    const auto name = command_.empty() ? std::string() : command_.front();
    const auto program = findProgram(name);
    if (!program) {
        completion(failure(OpenError{OpenErrorCode::openerMissing, name, {}}));
        return;
    }
    if (text.size() > maximumURLSize()) {
        completion(failure(tooLong(text.size())));
        return;
    }
    // The program may become the application itself.
    ProcessRequest request{.arguments = command_, .keptOutput = 0, .outlivesUs = true};
    request.arguments.front() = program->string();
    request.arguments.push_back(text);
    request.limits.wallTime = limit_;
    runner_.start(std::move(request),
                  [completion = std::move(completion), name, size = text.size()](
                      const ProcessResult& result) mutable { completion(outcome(result.end, name, size)); });
}

} // namespace zelto
