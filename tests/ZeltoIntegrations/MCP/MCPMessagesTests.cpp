#include "MCPText.h"

#include <ZeltoIntegrations/MCP/MCPClient.h>

#include <gtest/gtest.h>

#include <limits>
#include <unordered_set>

namespace zelto {
namespace {

using Reason = DecodingError::Reason;

// Numbers beyond every type, keys in an order that no map has, escapes and all planes of Unicode.
const std::string anyJSON = R"({"z":[1,1.0,-0,1e400,123456789012345678901234567890,9223372036854775807,)"
                            R"(18446744073709551615,-9223372036854775808,1e-400,0.10],"a":{"":null,"b":{}},)"
                            R"("ключ":"\u0000\n\"\\/ é 漢 😀","t":[true,false,[]]})";

TEST(MCPProtocolVersion, HasFourCasesNewestFirst) {
    std::vector<std::string_view> texts;
    for (const auto& each : casesOf<MCPProtocolVersion>()) {
        texts.push_back(rawValue(each.value));
        EXPECT_EQ(mcpProtocolVersion(rawValue(each.value)), each.value);
    }
    EXPECT_EQ(texts, (std::vector<std::string_view>{"2025-11-25", "2025-06-18", "2025-03-26", "2024-11-05"}));
    EXPECT_EQ(latestMCPProtocolVersion, MCPProtocolVersion::v2025_11_25);
    EXPECT_EQ(mcpProtocolVersion("2023-01-01"), std::nullopt);
    EXPECT_EQ((std::unordered_set{MCPProtocolVersion::v2024_11_05, MCPProtocolVersion::v2024_11_05}).size(),
              1u);
}

TEST(MCPProtocolVersion, IsABareText) {
    for (const auto& each : casesOf<MCPProtocolVersion>()) {
        const auto text = "\"" + std::string(rawValue(each.value)) + "\"";
        EXPECT_EQ(encodedFrom(each.value), text);
        EXPECT_EQ(decodedFrom<MCPProtocolVersion>(text), each.value);
    }
    EXPECT_EQ(decodingErrorOf<MCPProtocolVersion>("20251125").reason, Reason::mismatch);
}

TEST(MCPProtocolVersion, AnUnknownOneFailsWithItsText) {
    EXPECT_EQ(errorOf<MCPProtocolVersion>(R"("2023-01-01")"),
              MCPError(MCPClientError::unsupportedProtocolVersion("2023-01-01")));
    EXPECT_EQ(errorOf<MCPInitializeResult>(
                  R"({"protocolVersion":"","capabilities":{},"serverInfo":{"name":"s","version":"1"}})"),
              MCPError(MCPClientError::unsupportedProtocolVersion("")));
}

TEST(MCPRequestID, IsATextOrAWholeNumber) {
    EXPECT_EQ(decodedFrom<MCPRequestID>("7"), MCPRequestID::int_(7));
    EXPECT_EQ(decodedFrom<MCPRequestID>(R"("7")"), MCPRequestID::string("7"));
    EXPECT_NE(MCPRequestID::int_(7), MCPRequestID::string("7"));
    EXPECT_EQ(rewritten<MCPRequestID>("-9223372036854775808"), "-9223372036854775808");
    EXPECT_EQ(rewritten<MCPRequestID>("9223372036854775807"), "9223372036854775807");
    EXPECT_EQ(rewritten<MCPRequestID>(R"("a b")"), R"("a b")");
}

// Whole numbers as every JSON reader accepts them.
TEST(MCPRequestID, ARealThatIsAWholeNumberIsThatNumber) {
    EXPECT_EQ(decodedFrom<MCPRequestID>("7.0"), MCPRequestID::int_(7));
    EXPECT_EQ(decodedFrom<MCPRequestID>("1e3"), MCPRequestID::int_(1000));
    EXPECT_EQ(decodedFrom<MCPRequestID>("-2.50e1"), MCPRequestID::int_(-25));
    EXPECT_EQ(rewritten<MCPRequestID>("7.0"), "7");
}

TEST(MCPRequestID, AnythingElseIsInvalid) {
    for (const auto* text : {"7.5", "null", "true", "[]", "[1]", "{}", "9223372036854775808", "1e400"}) {
        EXPECT_EQ(errorOf<MCPRequestID>(text), MCPError(MCPClientError::invalidJSONRPCIdentifier())) << text;
    }
}

TEST(MCPRequestIDEnvelope, IsWithoutAnIDWhereThereIsNoneOrNull) {
    EXPECT_EQ(decodedFrom<MCPRequestIDEnvelope>("{}"), MCPRequestIDEnvelope());
    EXPECT_EQ(decodedFrom<MCPRequestIDEnvelope>(R"({"id":null,"method":"m"})"), MCPRequestIDEnvelope());
    EXPECT_EQ(decodedFrom<MCPRequestIDEnvelope>(R"({"method":"m","id":3})")->id, MCPRequestID::int_(3));
    EXPECT_EQ(errorOf<MCPRequestIDEnvelope>(R"({"id":{}})"),
              MCPError(MCPClientError::invalidJSONRPCIdentifier()));
    EXPECT_EQ(decodingErrorOf<MCPRequestIDEnvelope>("[]").reason, Reason::mismatch);
}

TEST(MCPRequest, WritesItsKeysInOrderAndLeavesOutAbsentParams) {
    EXPECT_EQ(encodedFrom(MCPRequest{MCPRequestID::string("a"), "ping", {}}),
              R"({"jsonrpc":"2.0","id":"a","method":"ping"})");
    EXPECT_EQ(
        encodedFrom(MCPRequest{MCPRequestID::int_(1), "tools/list", JSONValue(JSONObject{{"cursor", ""}})}),
        R"({"jsonrpc":"2.0","id":1,"method":"tools/list","params":{"cursor":""}})");
    EXPECT_EQ(MCPClient::jsonRpcVersion, "2.0");
}

TEST(MCPNotification, HasNoID) {
    EXPECT_EQ(encodedFrom(MCPNotification{"notifications/initialized", {}}),
              R"({"jsonrpc":"2.0","method":"notifications/initialized"})");
    EXPECT_EQ(encodedFrom(MCPNotification{"n", JSONValue(nullptr)}),
              R"({"jsonrpc":"2.0","method":"n","params":null})");
}

TEST(MCPResponse, OfAnotherVersionFailsWithIt) {
    EXPECT_EQ(errorOf<MCPResponse>(R"({"jsonrpc":"1.0","id":1,"result":1})"),
              MCPError(MCPClientError::invalidJSONRPCVersion("1.0")));
    EXPECT_EQ(errorOf<MCPResponse>(R"({"id":1,"result":1})"),
              MCPError(MCPClientError::invalidJSONRPCVersion(std::nullopt)));
    EXPECT_EQ(errorOf<MCPResponse>(R"({"jsonrpc":null,"id":1})"),
              MCPError(MCPClientError::invalidJSONRPCVersion(std::nullopt)));
    const auto error = decodingErrorOf<MCPResponse>(R"({"jsonrpc":2.0,"id":1})");
    EXPECT_EQ(error.reason, Reason::mismatch);
    EXPECT_EQ(error.path, "jsonrpc");
}

TEST(MCPResponse, ChecksVersionThenIDThenTheRest) {
    EXPECT_EQ(errorOf<MCPResponse>(R"({"error":1,"id":[],"jsonrpc":"3"})"),
              MCPError(MCPClientError::invalidJSONRPCVersion("3")));
    EXPECT_EQ(errorOf<MCPResponse>(R"({"error":1,"id":[],"jsonrpc":"2.0"})"),
              MCPError(MCPClientError::invalidJSONRPCIdentifier()));
    EXPECT_EQ(errorOf<MCPResponse>(R"({"jsonrpc":"2.0","id":null})"),
              MCPError(MCPClientError::invalidJSONRPCIdentifier()));
    EXPECT_EQ(decodingErrorOf<MCPResponse>(R"({"jsonrpc":"2.0","error":1})"),
              (DecodingError{Reason::missingKey, "id", "the required key is missing"}));
    EXPECT_EQ(decodingErrorOf<MCPResponse>(R"({"jsonrpc":"2.0","id":1,"error":1})").path, "error");
}

TEST(MCPResponse, MayHoldNeitherOrBothOfResultAndError) {
    EXPECT_EQ(decodedFrom<MCPResponse>(R"({"jsonrpc":"2.0","id":1})"),
              (MCPResponse{MCPRequestID::int_(1), {}, {}}));
    EXPECT_EQ(decodedFrom<MCPResponse>(R"({"jsonrpc":"2.0","id":1,"result":null,"error":null})"),
              (MCPResponse{MCPRequestID::int_(1), {}, {}}));
    EXPECT_EQ(decodedFrom<MCPResponse>(
                  R"({"x":1,"error":{"code":-1,"message":"m"},"result":false,"id":"i","jsonrpc":"2.0"})"),
              (MCPResponse{MCPRequestID::string("i"), JSONValue(false), MCPResponse::Error{-1, "m", {}}}));
}

TEST(MCPResponse, ItsErrorRoundTrips) {
    EXPECT_EQ(rewritten<MCPResponse::Error>(R"({"data":[1],"message":"m","code":-32600})"),
              R"({"code":-32600,"message":"m","data":[1]})");
    EXPECT_EQ(rewritten<MCPResponse::Error>(R"({"code":0,"message":"","data":null})"),
              R"({"code":0,"message":""})");
    EXPECT_EQ(decodingErrorOf<MCPResponse::Error>(R"({"code":1})").path, "message");
    EXPECT_EQ(decodingErrorOf<MCPResponse::Error>(R"({"message":"m"})").path, "code");
}

TEST(MCPImplementationInfo, NeedsBothKeys) {
    EXPECT_EQ(rewritten<MCPImplementationInfo>(R"({"version":"1","name":"n","title":"t"})"),
              R"({"name":"n","version":"1"})");
    EXPECT_EQ(decodingErrorOf<MCPImplementationInfo>(R"({"name":"n"})").path, "version");
    EXPECT_EQ(decodingErrorOf<MCPImplementationInfo>(R"({"version":"1"})").path, "name");
}

TEST(MCPCapabilities, AreTheMapItself) {
    EXPECT_EQ(encodedFrom(MCPCapabilities()), "{}");
    EXPECT_EQ(rewritten<MCPCapabilities>(R"({"a":null,"b":{"listChanged":true}})"),
              R"({"a":null,"b":{"listChanged":true}})");
    const auto some = decodedFrom<MCPCapabilities>(R"({"a":null,"b":1})").value();
    EXPECT_EQ(some.values.size(), 2u);
    EXPECT_EQ(some["a"], std::nullopt);
    EXPECT_EQ(some["b"], JSONValue(1));
    EXPECT_EQ(some["c"], std::nullopt);
    EXPECT_EQ(decodingErrorOf<MCPCapabilities>("[]").reason, Reason::mismatch);
}

TEST(MCPInitialize, OffersTheLatestVersionAndNeedsAllKeysWhenRead) {
    EXPECT_EQ(
        encodedFrom(MCPInitializeParams{.clientInfo = MCPClient::defaultClientInfo()}),
        R"({"protocolVersion":"2025-11-25","capabilities":{},"clientInfo":{"name":"Zelto","version":"1.0.0"}})");
    const std::string whole =
        R"({"protocolVersion":"2024-11-05","capabilities":{"x":{}},"clientInfo":{"name":"n","version":"1"}})";
    EXPECT_EQ(rewritten<MCPInitializeParams>(whole), whole);
    EXPECT_EQ(decodingErrorOf<MCPInitializeParams>("{}"),
              (DecodingError{Reason::missingKey, "protocolVersion", "the required key is missing"}));
    EXPECT_EQ(decodingErrorOf<MCPInitializeParams>(
                  R"({"protocolVersion":"2024-11-05","clientInfo":{"name":"n","version":"1"}})")
                  .path,
              "capabilities");
    EXPECT_EQ(
        decodingErrorOf<MCPInitializeParams>(R"({"protocolVersion":"2024-11-05","capabilities":{}})").path,
        "clientInfo");
}

TEST(MCPInitialize, TheResponseMayHaveInstructions) {
    const std::string plain =
        R"({"protocolVersion":"2025-03-26","capabilities":{},"serverInfo":{"name":"n","version":"1"}})";
    EXPECT_EQ(rewritten<MCPInitializeResult>(plain), plain);
    const auto with = plain.substr(0, plain.size() - 1) + R"(,"instructions":"i"})";
    EXPECT_EQ(rewritten<MCPInitializeResult>(with), with);
    EXPECT_EQ(rewritten<MCPInitializeResult>(plain.substr(0, plain.size() - 1) + R"(,"instructions":null})"),
              plain);
    EXPECT_EQ(
        decodingErrorOf<MCPInitializeResult>(R"({"capabilities":{},"serverInfo":{"name":"n","version":"1"}})")
            .path,
        "protocolVersion");
    EXPECT_EQ(decodingErrorOf<MCPInitializeResult>(
                  R"({"protocolVersion":"2024-11-05","serverInfo":{"name":"n","version":"1"}})")
                  .path,
              "capabilities");
    EXPECT_EQ(
        decodingErrorOf<MCPInitializeResult>(R"({"protocolVersion":"2025-03-26","capabilities":{}})").path,
        "serverInfo");
}

TEST(MCPTool, KeepsItsSchemaAnnotationsAndMetadataAsTheyAre) {
    const auto all = R"({"name":"n","title":"t","description":"d","inputSchema":)" + anyJSON +
                     R"(,"annotations":)" + anyJSON + R"(,"_meta":)" + anyJSON + "}";
    EXPECT_EQ(rewritten<MCPTool>(all), all);
    const std::string least = R"({"name":"n","inputSchema":null})";
    EXPECT_EQ(rewritten<MCPTool>(least), least);
    EXPECT_EQ(
        rewritten<MCPTool>(
            R"({"name":"n","title":null,"description":null,"inputSchema":{},"annotations":null,"_meta":null})"),
        R"({"name":"n","inputSchema":{}})");
    EXPECT_EQ(decodingErrorOf<MCPTool>(R"({"name":"n"})").path, "inputSchema");
    EXPECT_EQ(decodingErrorOf<MCPTool>(R"({"inputSchema":{}})").path, "name");
}

TEST(MCPTool, ListsHaveACursorOrNone) {
    EXPECT_EQ(encodedFrom(MCPToolListParams{}), "{}");
    EXPECT_EQ(encodedFrom(MCPToolListParams{""}), R"({"cursor":""})");
    const std::string page = R"({"tools":[{"name":"n","inputSchema":{}}],"nextCursor":"c"})";
    EXPECT_EQ(rewritten<MCPToolListResult>(page), page);
    EXPECT_EQ(rewritten<MCPToolListResult>(R"({"tools":[]})"), R"({"tools":[]})");
    EXPECT_EQ(decodedFrom<MCPToolListResult>(R"({"tools":[],"nextCursor":null})")->nextCursor, std::nullopt);
    EXPECT_EQ(decodedFrom<MCPToolListParams>(R"({"cursor":null})")->cursor, std::nullopt);
    EXPECT_EQ(decodingErrorOf<MCPToolListResult>(R"({"nextCursor":"c"})").path, "tools");
}

TEST(MCPTool, ArgumentsOfACallPassUnchanged) {
    EXPECT_EQ(encodedFrom(MCPToolCallParams{"n", {}}), R"({"name":"n"})");
    const auto all = R"({"name":"n","arguments":)" + anyJSON + "}";
    EXPECT_EQ(rewritten<MCPToolCallParams>(all), all);
    EXPECT_EQ(rewritten<MCPToolCallParams>(R"({"name":"n","arguments":null})"), R"({"name":"n"})");
    EXPECT_EQ(decodingErrorOf<MCPToolCallParams>(R"({"arguments":{}})").path, "name");
}

TEST(MCPTool, AResultNeedsContentAndKeepsAnAbsentIsErrorAbsent) {
    EXPECT_EQ(decodedFrom<MCPToolCallResult>(R"({"content":[]})")->isError, std::nullopt);
    EXPECT_EQ(rewritten<MCPToolCallResult>(R"({"content":[]})"), R"({"content":[]})");
    EXPECT_EQ(rewritten<MCPToolCallResult>(R"({"isError":false,"content":[]})"),
              R"({"content":[],"isError":false})");
    EXPECT_EQ(decodedFrom<MCPToolCallResult>(R"({"content":[],"isError":null})")->isError, std::nullopt);
    EXPECT_EQ(decodingErrorOf<MCPToolCallResult>(R"({"content":[],"isError":1})").path, "isError");
    EXPECT_EQ(decodingErrorOf<MCPToolCallResult>(R"({"isError":true})").path, "content");
}

TEST(MCPClientError, NamesEachOfItsCases) {
    const std::vector<MCPClientError> all{MCPClientError::invalidJSONRPCVersion("1"),
                                          MCPClientError::unsupportedProtocolVersion("v"),
                                          MCPClientError::jsonRPCFailure({1, "m", {}}),
                                          MCPClientError::toolCallFailed({}),
                                          MCPClientError::invalidAuthorizationResourceMetadata("v"),
                                          MCPClientError::authorizationRequired(URL::parse("a://b").value()),
                                          MCPClientError::authorizationChallenge("h"),
                                          MCPClientError::unexpectedHTTPStatus(500),
                                          MCPClientError::unsupportedHTTPContentType("t"),
                                          MCPClientError::invalidJSONRPCIdentifier(),
                                          MCPClientError::missingJSONRPCResult(),
                                          MCPClientError::authorizationChallengeMissingResourceMetadata(),
                                          MCPClientError::invalidServerSentEventsUTF8(),
                                          MCPClientError::invalidHTTPResponse(),
                                          MCPClientError::endpointNotFound(),
                                          MCPClientError::sessionExpired(),
                                          MCPClientError::missingJSONRPCResponse()};
    std::vector<std::string_view> names;
    for (std::size_t index = 0; index < all.size(); ++index) {
        EXPECT_EQ(all[index].value.index(), index);
        names.push_back(all[index].caseName());
    }
    EXPECT_EQ(names,
              (std::vector<std::string_view>{
                  "invalidJSONRPCVersion", "unsupportedProtocolVersion", "jsonRPCFailure", "toolCallFailed",
                  "invalidAuthorizationResourceMetadata", "authorizationRequired", "authorizationChallenge",
                  "unexpectedHTTPStatus", "unsupportedHTTPContentType", "invalidJSONRPCIdentifier",
                  "missingJSONRPCResult", "authorizationChallengeMissingResourceMetadata",
                  "invalidServerSentEventsUTF8", "invalidHTTPResponse", "endpointNotFound", "sessionExpired",
                  "missingJSONRPCResponse"}));
    EXPECT_EQ(std::variant_size_v<MCPClientError::Value>, all.size());
    EXPECT_EQ(all[7].as<MCPClientError::UnexpectedHTTPStatus>()->status, 500);
    EXPECT_FALSE(all[7].is<MCPClientError::SessionExpired>());
}

} // namespace
} // namespace zelto
