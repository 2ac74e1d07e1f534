#include <ZeltoIntegrations/MCP/MCPHTTPTransport.h>

#include <gtest/gtest.h>

namespace zelto {
namespace {

const URL endpoint = URL::parse("https://mcp.example/rpc?tenant=1").value();

TEST(MCPHTTPTransportRequest, AreGivenUpWhenNothingMovesForAMinute) {
    EXPECT_EQ(MCPHTTPTransport::makeRequest(endpoint, {}, "{}").timeout, TimeInterval{60});
    EXPECT_EQ(MCPHTTPTransport::makeRequest(endpoint, {}, std::nullopt).timeout, TimeInterval{60});
}

TEST(MCPHTTPTransportRequest, GoToTheEndpointByTheProtocolsOwnRulesOfCaching) {
    const auto request = MCPHTTPTransport::makeRequest(endpoint, {}, "{}");
    EXPECT_EQ(request.url, endpoint);
    EXPECT_EQ(request.method, "POST");
    EXPECT_EQ(request.cachePolicy, URLRequestCachePolicy::useProtocolCachePolicy);
    EXPECT_EQ(request.headers.fields().size(), 2u);
    EXPECT_EQ(request.headers.value("Accept"), "application/json, text/event-stream");
    EXPECT_EQ(request.headers.value("Content-Type"), "application/json");
}

TEST(MCPHTTPTransportRequest, ADisconnectIsADeleteWithoutABodyAndItsType) {
    const auto request =
        MCPHTTPTransport::makeRequest(endpoint, {MCPProtocolVersion::v2025_06_18, "s"}, std::nullopt);
    EXPECT_EQ(request.method, "DELETE");
    EXPECT_FALSE(request.body);
    EXPECT_EQ(request.headers.fields().size(), 3u);
    EXPECT_EQ(request.headers.value("Accept"), "application/json, text/event-stream");
    EXPECT_EQ(request.headers.value("MCP-Protocol-Version"), "2025-06-18");
    EXPECT_EQ(request.headers.value("Mcp-Session-Id"), "s");
}

} // namespace
} // namespace zelto
