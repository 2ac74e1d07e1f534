#include <zelto/EchoingServer.h>

#include <Platform/JSON/JSONValue.h>

namespace zelto {

MCPServer::Handler echoing() {
    return [](const ReceivedRequest& request) {
        const auto method = methodOf(request);
        if (method == "DELETE") {
            return status(200);
        }
        if (method == "tools/list") {
            return jsonResponse(
                request,
                R"({"tools":[{"name":"first","description":"Does it.\nAnd more","inputSchema":)"
                R"({"type":"object","z":1.0}},{"name":"\u001b[31mred","title":"T","inputSchema":{}}]})");
        }
        if (method == "tools/call") {
            const auto body = JSONValue::parse(request.body).value();
            const auto* arguments = body.find("params")->find("arguments");
            const auto* result = arguments ? arguments->find("result") : nullptr;
            return eventStream(
                eventOf(respondTo(idOf(request), result ? result->text().value()
                                                        : R"({"content":[{"type":"text","text":"done"}]})")));
        }
        return jsonResponse(request, "{}");
    };
}

} // namespace zelto
