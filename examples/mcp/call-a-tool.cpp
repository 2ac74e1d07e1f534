// Calls one tool of a Model Context Protocol server: call-a-tool URL TOOL '{"argument":"value"}'

#include <ZeltoIntegrations/MCP/MCPClient.h>

#include <cstdio>
#include <future>
#include <memory>

int main(int argc, char** argv) {
    const auto url = zelto::URL::parse(argc > 1 ? argv[1] : "");
    const auto arguments = zelto::JSONValue::parse(argc > 3 ? argv[3] : "{}");
    if (!url || argc < 3 || !arguments) {
        return std::fputs("usage: call-a-tool URL TOOL [JSON]\n", stderr), 2;
    }
    zelto::MCPClient client(*url);
    const auto status = std::make_shared<std::promise<int>>();
    client.connect([&, status](zelto::MCPResult<zelto::MCPInitializeResult> server) {
        if (!server) {
            return status->set_value(1);
        }
        client.callTool(argv[2], *arguments, [&, status](zelto::MCPResult<zelto::MCPToolCallResult> result) {
            for (const auto& item : result ? result->content : std::vector<zelto::MCPContentItem>()) {
                std::puts(zelto::JSONEncoder().encode(item).value_or("").c_str());
            }
            client.disconnect(
                [status, isDone = result.has_value()](auto) { status->set_value(isDone ? 0 : 1); });
        });
    });
    return status->get_future().get();
}
