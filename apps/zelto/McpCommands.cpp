#include "Commands.h"
#include "McpContent.h"
#include "McpSession.h"

namespace zelto::cli {

namespace {

JSONValue jsonOf(const auto& record) {
    return JSONValue::of(record).value_or(JSONValue());
}

// The first line of what a server says of something.
std::string_view firstLine(std::string_view text) {
    return text.substr(0, text.find('\n'));
}

std::string lineOf(const MCPTool& tool, const Terminal& terminal) {
    const auto about = tool.description ? firstLine(*tool.description)
                       : tool.title     ? firstLine(*tool.title)
                                        : std::string_view();
    return terminal.shown(tool.name) + (about.empty() ? "" : "  " + terminal.shown(about)) + "\n";
}

} // namespace

Outcome<Report> runMcp(const Invocation&, const Terminal&) {
    Report report;
    JSONValue::Array names;
    for (const auto& command : commands()) {
        if (command.name.starts_with("mcp ")) {
            names.emplace_back(command.name);
            report.text += "zelto " + std::string(command.name) + "  " + std::string(command.summary) + "\n";
        }
    }
    report.members.set("commands", std::move(names));
    return report;
}

Outcome<Report> runMcpPing(const Invocation& invocation, const Terminal& terminal) {
    const auto options = McpOptions::from(invocation);
    if (!options) {
        return failure(options.error());
    }
    McpSession session(*options);
    const auto server = session.connect();
    if (!server) {
        return failure(server.error());
    }
    const auto answered = session.repeat<void>(
        [](MCPClient& client, MCPCompletion<void> done) { client.ping(std::move(done)); });
    if (!answered) {
        return failure(answered.error());
    }
    Report report;
    report.members = *jsonOf(*server).asObject();
    report.text = terminal.shown(server->serverInfo.name) + " " + terminal.shown(server->serverInfo.version) +
                  " answers; it speaks version " + std::string(rawValue(server->protocolVersion)) + ".\n";
    session.addRate(report);
    return report;
}

Outcome<Report> runMcpTools(const Invocation& invocation, const Terminal& terminal) {
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
        return failure(tools.error());
    }
    Report report;
    for (const auto& tool : *tools) {
        report.text += lineOf(tool, terminal);
    }
    if (tools->empty()) {
        report.text = "The server has no tools.\n";
        report.isNotice = !options->tellsRate;
    }
    report.members.set("tools", jsonOf(*tools));
    session.addRate(report);
    return report;
}

Outcome<Report> runMcpCall(const Invocation& invocation, const Terminal& terminal) {
    const auto arguments = toolArguments(invocation);
    if (!arguments) {
        return failure(arguments.error());
    }
    const auto options = McpOptions::from(invocation);
    if (!options) {
        return failure(options.error());
    }
    McpSession session(*options);
    if (const auto server = session.connect(); !server) {
        return failure(server.error());
    }
    const auto tool = invocation.value("TOOL").value();
    const auto result =
        session.repeat<MCPToolCallResult>([&](MCPClient& client, MCPCompletion<MCPToolCallResult> done) {
            client.callTool(tool, *arguments, std::move(done));
        });
    if (!result) {
        return failure(result.error());
    }
    auto report = reportOf(*result, invocation.value("--out"), terminal);
    if (report) {
        session.addRate(*report);
    }
    return report;
}

} // namespace zelto::cli
