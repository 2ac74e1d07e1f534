#include "base/PreparedFolder.h"
#include "commandline/Commands.h"
#include "mcp/McpContent.h"
#include "mcp/McpSession.h"

#include <Platform/Text.h>

namespace zelto::cli {

namespace {

// The first line of what a server says of something.
std::string_view firstLine(std::string_view text) {
    return text.substr(0, text.find('\n'));
}

std::string lineOf(const MCPTool& tool) {
    const auto about = tool.description ? firstLine(*tool.description)
                       : tool.title     ? firstLine(*tool.title)
                                        : std::string_view();
    return escapeControlCharacters(tool.name) + (about.empty() ? "" : "  " + escapeControlCharacters(about)) +
           "\n";
}

// The result of a call as the command shows it: its members with --json, else its text.
struct ShownResult {
    JSONObject members = {};
    McpContent content;
};

ShownResult shownResult(MCPToolCallResult result, const McpSecrets& secrets, const Invocation& invocation) {
    McpSecrets::returnFreedMemory();
    const auto folder = invocation.value("--out");
    secrets.mask(result);
    if (!invocation.has("--json")) {
        ShownResult shown{.content = contentOf(std::move(result), folder)};
        secrets.maskText(shown.content.text);
        return shown;
    }
    ShownResult shown{.content = savedContentOf(result, folder)};
    shown.members = secrets.membersOf(std::move(result));
    if (folder) {
        auto saved = secrets.membersOf(JSONValue(JSONObject{{"saved", std::move(shown.content.saved)}}));
        shown.members.set("saved", *saved.find("saved"));
    }
    return shown;
}

// A tool that fails says why in content of any kind.
Failure failureOfCall(const McpSession& session, MCPError error, const Invocation& invocation) {
    session.secrets().mask(error);
    auto reported = session.failureOfEnd(error);
    auto* const clientError = std::get_if<MCPClientError>(&error.value);
    auto* const failed =
        clientError ? std::get_if<MCPClientError::ToolCallFailed>(&clientError->value) : nullptr;
    if (!failed) {
        return reported;
    }
    auto shown = shownResult(std::move(failed->result), session.secrets(), invocation);
    reported.members = std::move(shown.members);
    if (!shown.content.text.empty()) {
        reported.message = "The tool failed";
        reported.details = std::move(shown.content.text);
    }
    return reported;
}

// Some of what the call gave cannot be saved; all else is reported.
Failure savingFailure(Report report, const std::vector<Failure>& unsaved) {
    auto reported = unsaved.front();
    if (unsaved.size() > 1) {
        reported.message =
            std::to_string(unsaved.size()) + " files cannot be saved; the first: " + reported.message;
    }
    reported.members = std::move(report.members);
    reported.output = std::move(report.text);
    return reported;
}

} // namespace

Outcome<Report> runMcp(const Invocation& invocation, const Terminal&) {
    return commandsBelow(*invocation.command);
}

Outcome<Report> runMcpPing(const Invocation& invocation, const Terminal&) {
    const auto options = McpOptions::from(invocation);
    if (!options) {
        return failure(options.error());
    }
    McpSession session(*options);
    const auto server = session.connect();
    if (!server) {
        return failure(server.error());
    }
    const auto pinged = session.repeat<void>(
        [](MCPClient& client, MCPCompletion<void> done) { client.ping(std::move(done)); });
    if (!pinged) {
        return failure(session.failureOfEnd(pinged.error()));
    }
    Report report;
    report.members = membersOf(*server);
    report.text = escapeControlCharacters(server->serverInfo.name) + " " +
                  escapeControlCharacters(server->serverInfo.version) + " responds; it speaks version " +
                  std::string(rawValue(server->protocolVersion)) + ".\n";
    session.secrets().mask(report);
    session.addRate(report);
    return report;
}

Outcome<Report> runMcpTools(const Invocation& invocation, const Terminal&) {
    const auto options = McpOptions::from(invocation);
    if (!options) {
        return failure(options.error());
    }
    McpSession session(*options);
    if (const auto server = session.connect(); !server) {
        return failure(server.error());
    }
    const auto tools =
        session.repeat<std::vector<MCPTool>>([](MCPClient& client, MCPCompletion<std::vector<MCPTool>> done) {
            client.listTools(std::move(done));
        });
    if (!tools) {
        return failure(session.failureOfEnd(tools.error()));
    }
    Report report;
    for (const auto& tool : *tools) {
        report.text += lineOf(tool);
    }
    if (tools->empty()) {
        report.text = "The server has no tools.\n";
        report.isNotice = !options->showsRate;
    }
    report.members = membersOf(MCPToolListResult{.tools = *tools});
    session.secrets().mask(report);
    session.addRate(report);
    return report;
}

Outcome<Report> runMcpCall(const Invocation& invocation, const Terminal&) {
    const auto arguments = toolArguments(invocation);
    if (!arguments) {
        return failure(arguments.error());
    }
    const auto options = McpOptions::from(invocation);
    if (!options) {
        return failure(options.error());
    }
    const auto folder = invocation.value("--out");
    if (folder) {
        if (auto prepared = prepareFolder(*folder); !prepared) {
            return failure(std::move(prepared.error()));
        }
    }
    McpSession session(*options);
    if (const auto server = session.connect(); !server) {
        return failure(server.error());
    }
    const auto tool = invocation.value("TOOL").value();
    auto result =
        session.repeat<MCPToolCallResult>([&](MCPClient& client, MCPCompletion<MCPToolCallResult> done) {
            client.callTool(tool, *arguments, std::move(done));
        });
    if (!result) {
        return failure(failureOfCall(session, std::move(result.error()), invocation));
    }
    auto shown = shownResult(*std::move(result), session.secrets(), invocation);
    Report report{std::move(shown.members), std::move(shown.content.text)};
    session.addRate(report);
    if (!shown.content.unsaved.empty()) {
        auto reported = savingFailure(std::move(report), shown.content.unsaved);
        session.secrets().maskText(reported.message);
        return failure(std::move(reported));
    }
    return report;
}

} // namespace zelto::cli
