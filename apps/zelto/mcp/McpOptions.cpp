#include "mcp/McpOptions.h"

#include "base/FileFailure.h"
#include "base/Interruption.h"
#include "base/StandardInput.h"
#include "base/Terminal.h"
#include "commandline/TimeoutOption.h"
#include "mcp/McpFailures.h"

#include <Platform/ASCII.h>
#include <Platform/FileManager.h>
#include <Platform/HTTP/HTTPHeaders.h>
#include <Platform/Numbers.h>
#include <Platform/Text.h>

#include <sstream>

namespace zelto::cli {

namespace {

constexpr std::size_t largestInput = std::size_t{1} << 20;
constexpr std::uint64_t largestArguments = std::uint64_t{256} << 20;

// The field is not shown: it may hold a secret.
Outcome<void> addHeader(std::map<std::string, std::string>& headers, std::string_view line,
                        const std::string& source) {
    const auto colon = line.find(':');
    if (colon == std::string_view::npos) {
        return wrongUsage(source + " needs a name and a value, like 'Name: value'.");
    }
    const std::string name(trimmed(line.substr(0, colon)));
    const std::string value(trimmed(line.substr(colon + 1)));
    if (!isValidHeaderName(name) || !isValidHeaderValue(value)) {
        return wrongUsage(source + " has a name or a value that no header field may have.");
    }
    if (isTransportHeader(name) || equalIgnoringASCIICase(name, "Content-Length")) {
        return wrongUsage(source + " gives " + name + ", which is not for a request to set.");
    }
    headers.insert_or_assign(name, value);
    return {};
}

Outcome<std::string> readInput() {
    const Interruption interruption;
    StandardInput input(interruption.stop());
    if (input.isTyped()) {
        writeError("Header fields, one a line, like 'Name: value'; they are not shown. Ctrl-D ends them.\n");
    }
    auto text = input.all(largestInput);
    if (text) {
        return *std::move(text);
    }
    if (text.error() == InputEnd::stopped) {
        auto canceled = failureOf(MCPError(URLError{URLErrorCode::cancelled, "The request was cancelled."}));
        canceled.status = ExitStatus::interrupted;
        return failure(std::move(canceled));
    }
    return wrongUsage("Standard input is too long for --header-stdin.");
}

Outcome<void> addHeadersOfInput(std::map<std::string, std::string>& headers) {
    auto input = readInput();
    if (!input) {
        return failure(std::move(input.error()));
    }
    std::istringstream lines{*std::move(input)};
    for (std::string line; std::getline(lines, line);) {
        if (isBlank(line)) {
            continue;
        }
        if (auto added = addHeader(headers, line, "A line of --header-stdin"); !added) {
            return added;
        }
    }
    return {};
}

Outcome<std::map<std::string, std::string>> headersOf(const Invocation& invocation) {
    std::map<std::string, std::string> headers;
    for (const auto& line : invocation.values("--header")) {
        if (auto added = addHeader(headers, line, "--header"); !added) {
            return failure(std::move(added.error()));
        }
    }
    if (invocation.has("--header-stdin")) {
        if (auto added = addHeadersOfInput(headers); !added) {
            return failure(std::move(added.error()));
        }
    }
    return headers;
}

Outcome<std::string> argumentsText(const std::string& given) {
    if (!given.starts_with('@')) {
        return given;
    }
    const auto file = FileManager::readFile(given.substr(1), largestArguments);
    if (!file) {
        return failure(failureOf(file.error()));
    }
    return std::string(viewOf(*file));
}

} // namespace

Outcome<McpOptions> McpOptions::from(const Invocation& invocation) {
    constexpr int maximumRepeat = 1'000'000'000;
    const auto address = invocation.value("URL").value();
    auto server = URL::parse(address);
    if (!server || (server->scheme() != "https" && server->scheme() != "http")) {
        return wrongUsage("\"" + address + "\" is no address of a server, like https://mcp.example/mcp.");
    }
    McpOptions options{.server = *std::move(server)};
    const auto timeout = timeoutOf(invocation, "300");
    if (!timeout) {
        return failure(timeout.error());
    }
    options.timeout = *timeout;
    const auto repeat = numberIn<int>(invocation.value("--repeat").value_or("1"));
    if (!repeat || *repeat < 1 || *repeat > maximumRepeat) {
        return wrongUsage("--repeat is a whole number from 1 to 1000000000.");
    }
    options.repeat = *repeat;
    options.showsRate = invocation.has("--repeat");
    auto headers = headersOf(invocation);
    if (!headers) {
        return failure(std::move(headers.error()));
    }
    options.headers = *std::move(headers);
    return options;
}

Outcome<std::optional<JSONValue>> toolArguments(const Invocation& invocation) {
    const auto given = invocation.value("--args");
    if (!given) {
        return std::nullopt;
    }
    const auto text = argumentsText(*given);
    if (!text) {
        return failure(text.error());
    }
    auto arguments = JSONValue::parse(*text);
    if (!arguments) {
        return wrongUsage("The arguments are " + arguments.error().message() + ".");
    }
    if (!arguments->asObject()) {
        return wrongUsage("The arguments of a tool are a JSON object, like {\"message\":\"hello\"}.");
    }
    return *std::move(arguments);
}

} // namespace zelto::cli
