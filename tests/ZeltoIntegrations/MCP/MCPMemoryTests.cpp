// If there is not enough memory for a response, its call must end too.

#include "AllocationLimit.h"
#include "MCPCalls.h"
#include "MCPText.h"

#include <ZeltoIntegrations/MCP/MCPHTTPRequestHandler.h>

#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <optional>
#include <string>
#include <utility>

namespace zelto {
namespace {

constexpr std::size_t large = 1 << 20;

// Passes one result on, on the caller's thread.
class OneResponse final : public MCPTransport {
  public:
    explicit OneResponse(JSONValue result) : result_(std::move(result)) {}

    std::optional<std::string> activeSessionID() const override { return std::nullopt; }

    void setProtocolVersion(std::optional<MCPProtocolVersion>) override {}

    void clearSession() override {}

    void send(MCPRequest request, MCPCompletion<MCPResponse> completion) override {
        completion(MCPResponse{std::move(request.id), std::move(result_), {}});
    }

    void send(MCPNotification, MCPCompletion<void> completion) override { completion({}); }

    void disconnect(MCPCompletion<void> completion) override { completion({}); }

  private:
    JSONValue result_;
};

MCPClient clientWith(std::string_view result) {
    return MCPClient(std::make_shared<OneResponse>(JSONValue::parse(result).value()));
}

// The handler's result for this response when large allocations fail.
template <class F> MCPResult<MCPResponse> outcomeOf(std::string contentType, F&& receive) {
    std::optional<MCPResult<MCPResponse>> outcome;
    MCPHTTPRequestHandler handler(MCPRequestID::string("1"), {[] { return std::nullopt; }, [](auto) {}},
                                  4 * large,
                                  [&](MCPResult<MCPResponse> result) { outcome = std::move(result); });
    HTTPHeaders headers;
    headers.set("Content-Type", std::move(contentType));
    handler.handle(
        {std::make_shared<const HTTPURLResponse>(URL::parse("http://127.0.0.1/").value(), 200, headers)});
    receive(handler);
    const AllocationLimit limit(large / 2);
    handler.complete({});
    return outcome.value();
}

TEST(MCPMemory, ADecodingThatItDoesNotLastForFails) {
    const auto result = decodedBy([]() -> Result<int, DecodingError> { throw std::bad_alloc(); });
    EXPECT_EQ(connectionError(result), URLErrorCode::responseTooLarge);
}

TEST(MCPMemory, AResponseThatExceedsItEndsTheRequest) {
    const auto response = respondTo("\"1\"", "\"" + std::string(large, 'x') + "\"");
    const auto text = "data: " + response + "\n\r"; // one event, ended by the end of the stream
    EXPECT_EQ(connectionError(outcomeOf(
                  "application/json", [&](auto& handler) { handler.handle({std::string_view(response)}); })),
              URLErrorCode::responseTooLarge);
    EXPECT_EQ(connectionError(outcomeOf("text/event-stream",
                                        [&](auto& handler) { handler.handle({std::string_view(text)}); })),
              URLErrorCode::responseTooLarge);
}

TEST(MCPMemory, APageThatItDoesNotLastForEndsTheListing) {
    auto client = clientWith(R"({"tools":[{"inputSchema":{},"name":")" + std::string(large, 'x') + R"("}]})");
    std::optional<MCPResult<std::vector<MCPTool>>> tools;
    {
        const AllocationLimit limit(large / 2);
        client.listTools([&](auto result) { tools = std::move(result); });
    }
    ASSERT_TRUE(tools);
    EXPECT_EQ(connectionError(*tools), URLErrorCode::responseTooLarge);
}

TEST(MCPMemory, AResultThatItDoesNotLastForEndsTheCall) {
    auto client = clientWith(R"({"content":[{"type":"text","text":")" + std::string(large, 'x') + R"("}]})");
    std::optional<MCPResult<MCPToolCallResult>> called;
    {
        const AllocationLimit limit(large / 2);
        client.callTool("t", {}, [&](auto result) { called = std::move(result); });
    }
    ASSERT_TRUE(called);
    EXPECT_EQ(connectionError(*called), URLErrorCode::responseTooLarge);
}

} // namespace
} // namespace zelto
