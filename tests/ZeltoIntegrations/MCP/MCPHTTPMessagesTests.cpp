#include <ZeltoIntegrations/MCP/MCPHTTPMessages.h>

#include <gtest/gtest.h>

namespace zelto {
namespace {

const URL endpoint = URL::parse("https://mcp.example/rpc?tenant=1").value();

TEST(MCPHTTPMessages, AreGivenUpWhenNothingMovesForAMinute) {
    EXPECT_EQ(mcpHTTPRequest(endpoint, {}, "{}").timeout, TimeInterval{60});
    EXPECT_EQ(mcpHTTPRequest(endpoint, {}, std::nullopt).timeout, TimeInterval{60});
}

TEST(MCPHTTPMessages, GoToTheEndpointByTheProtocolsOwnRulesOfCaching) {
    const auto request = mcpHTTPRequest(endpoint, {}, "{}");
    EXPECT_EQ(request.url, endpoint);
    EXPECT_EQ(request.method, "POST");
    EXPECT_EQ(request.cachePolicy, URLRequestCachePolicy::useProtocolCachePolicy);
    EXPECT_EQ(request.headers.fields().size(), 2u);
    EXPECT_EQ(request.headers.value("Accept"), "application/json, text/event-stream");
    EXPECT_EQ(request.headers.value("Content-Type"), "application/json");
}

TEST(MCPHTTPMessages, ADisconnectIsADeleteWithoutABodyAndItsType) {
    const auto request = mcpHTTPRequest(endpoint, {MCPProtocolVersion::v2025_06_18, "s"}, std::nullopt);
    EXPECT_EQ(request.method, "DELETE");
    EXPECT_FALSE(request.body);
    EXPECT_EQ(request.headers.fields().size(), 3u);
    EXPECT_EQ(request.headers.value("Accept"), "application/json, text/event-stream");
    EXPECT_EQ(request.headers.value("MCP-Protocol-Version"), "2025-06-18");
    EXPECT_EQ(request.headers.value("Mcp-Session-Id"), "s");
}

} // namespace
} // namespace zelto
