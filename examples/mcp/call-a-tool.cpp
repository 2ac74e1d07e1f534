// Calls one tool of a Model Context Protocol server: call-a-tool URL TOOL '{"argument":"value"}'

#include <ZeltoIntegrations/MCP/MCPClient.h>

#include <cstdio>
#include <future>
#include <memory>

using namespace zelto;

static void print(const MCPToolCallResult& result, std::FILE* to) {
    for (const auto& item : result.content) {
        std::fprintf(to, "%s\n", JSONEncoder().encode(item).value_or("").c_str());
    }
}

// A failure is a case of MCPClientError, or of the connection, or a response that cannot be read.
static int failed(const MCPError& error) {
    const auto* protocol = error.clientError();
    if (const auto* tool = protocol ? protocol->as<MCPClientError::ToolCallFailed>() : nullptr) {
        print(tool->result, stderr); // why it failed
    }
    const auto* connection = std::get_if<URLError>(&error.value);
    const std::string name(protocol     ? protocol->caseName()
                           : connection ? connection->message
                                        : "no response");
    std::fprintf(stderr, "call-a-tool: %s\n", name.c_str());
    return 1;
}

int main(int argc, char** argv) {
    const auto url = URL::parse(argc > 1 ? argv[1] : "");
    const auto arguments = JSONValue::parse(argc > 3 ? argv[3] : "{}");
    if (!url || argc < 3 || !arguments) {
        return std::fputs("usage: call-a-tool URL TOOL [JSON]\n", stderr), 2;
    }
    MCPClient client(*url);
    const auto status = std::make_shared<std::promise<int>>();
    client.connect([&, status](MCPResult<MCPInitializeResult> server) {
        if (!server) {
            return status->set_value(failed(server.error()));
        }
        client.callTool(argv[2], *arguments, [&, status](MCPResult<MCPToolCallResult> result) {
            const int end = result ? (print(*result, stdout), 0) : failed(result.error());
            client.disconnect([status, end](auto) { status->set_value(end); });
        });
    });
    return status->get_future().get();
}
