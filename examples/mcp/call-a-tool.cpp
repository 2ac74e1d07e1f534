// Calls one tool of a Model Context Protocol server: call-a-tool URL TOOL '{"argument":"value"}'

#include "Blocking.h"

#include <cstdio>

using namespace zelto;

static void print(const MCPToolCallResult& result, std::FILE* to) {
    for (const auto& item : result.content) {
        std::fprintf(to, "%s\n", JSONEncoder().encode(item).value_or("").c_str());
    }
}

static int failed(const MCPError& error) {
    const auto* protocol = error.clientError();
    if (const auto* tool = protocol ? protocol->as<MCPClientError::ToolCallFailed>() : nullptr) {
        print(tool->result, stderr); // why it failed
    }
    std::fprintf(stderr, "call-a-tool: %s: %s\n", std::string(error.name()).c_str(),
                 error.sentence().c_str());
    return 1;
}

int main(int argc, char** argv) {
    const auto url = URL::parse(argc > 1 ? argv[1] : "");
    const auto arguments = JSONValue::parse(argc > 3 ? argv[3] : "{}");
    if (!url || argc < 3 || !arguments) {
        return std::fputs("usage: call-a-tool URL TOOL [JSON]\n", stderr), 2;
    }
    MCPClient client(*url);
    if (const auto server = blocking::connect(client, {.timeout = TimeInterval{60}}); !server) {
        return failed(server.error());
    }
    const auto result = blocking::callTool(client, argv[2], *arguments);
    blocking::disconnect(client, {.timeout = TimeInterval{10}});
    return result ? (print(*result, stdout), 0) : failed(result.error());
}
