#include <ZeltoIntegrations/MCP/MCPError.h>

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace zelto {
namespace {

using Error = MCPClientError;

struct Expected {
    MCPError error;
    std::string name;
    std::string sentence;
};

MCPError toolFailure(std::vector<MCPContentItem> content) {
    return Error::toolCallFailed({std::move(content), true});
}

MCPContentItem text(std::string text) {
    return MCPContentItem::text({std::move(text)});
}

MCPError connection(URLErrorCode code) {
    return URLError{code, "It happened"};
}

const std::vector<Expected> all{
    {Error::invalidJSONRPCVersion("1.0"), "invalidJSONRPCVersion",
     "The server responds in JSON-RPC \"1.0\", not in 2.0."},
    {Error::invalidJSONRPCVersion(std::nullopt), "invalidJSONRPCVersion",
     "The server responds in JSON-RPC without a version, not in 2.0."},
    {Error::unsupportedProtocolVersion("x"), "unsupportedProtocolVersion",
     "The server speaks version \"x\" of the protocol, which is not known here."},
    {Error::jsonRPCFailure({-1, "no", {}}), "jsonRPCFailure", "The server refuses: no (-1)."},
    {toolFailure({text(" "), text("no disk\n")}), "toolCallFailed", "The tool failed: no disk."},
    {toolFailure({}), "toolCallFailed", "The tool failed: it does not say why."},
    {Error::invalidAuthorizationResourceMetadata("b"), "invalidAuthorizationResourceMetadata",
     "The server asks for a sign-in that is described at \"b\", which is no URL."},
    {Error::authorizationRequired(URL::parse("a://b").value()), "authorizationRequired",
     "The server asks for a sign-in, described at a://b."},
    {Error::authorizationChallenge("Basic"), "authorizationChallenge",
     "The server asks for credentials; its challenge is \"Basic\"."},
    {Error::authorizationChallenge(std::nullopt), "authorizationChallenge",
     "The server asks for credentials; its challenge is none."},
    {Error::unexpectedHTTPStatus(503), "unexpectedHTTPStatus", "The server responds with status 503."},
    {Error::unsupportedHTTPContentType("text/html"), "unsupportedHTTPContentType",
     "The server responds neither in JSON nor with an event stream; its content type is \"text/html\"."},
    {Error::invalidJSONRPCIdentifier(), "invalidJSONRPCIdentifier",
     "The server sends an identifier that is neither a text nor a whole number."},
    {Error::missingJSONRPCResult(), "missingJSONRPCResult", "The server's response has no result."},
    {Error::authorizationChallengeMissingResourceMetadata(), "authorizationChallengeMissingResourceMetadata",
     "The server asks for a token and does not say where one is to be had."},
    {Error::invalidServerSentEventsUTF8(), "invalidServerSentEventsUTF8",
     "The server's event stream is not UTF-8."},
    {Error::invalidHTTPResponse(), "invalidHTTPResponse", "The server's response is no HTTP."},
    {Error::endpointNotFound(), "endpointNotFound", "There is no such address on the server."},
    {Error::sessionExpired(), "sessionExpired", "The server has dropped the session."},
    {Error::missingJSONRPCResponse(), "missingJSONRPCResponse",
     "The server ended its event stream without a response."},
    {connection(URLErrorCode::cancelled), "cancelled", "It happened."},
    {connection(URLErrorCode::timedOut), "timedOut", "It happened."},
    {connection(URLErrorCode::responseTooLarge), "responseTooLarge", "It happened."},
    {connection(URLErrorCode::invalidRequest), "connectionError", "It happened."},
    {connection(URLErrorCode::cannotFindHost), "connectionError", "It happened."},
    {connection(URLErrorCode::cannotConnect), "connectionError", "It happened."},
    {connection(URLErrorCode::secureConnection), "connectionError", "It happened."},
    {connection(URLErrorCode::connectionLost), "connectionError", "It happened."},
    {connection(URLErrorCode::bodyUnreadable), "connectionError", "It happened."},
    {connection(URLErrorCode::badResponse), "connectionError", "It happened."},
    {DecodingError{DecodingError::Reason::missingKey, "tools", "the required key is missing"},
     "decodingError", "The server's response is not what it should be: tools: the required key is missing."},
    {EncodingError{EncodingError::Reason::invalidUTF8, "name"}, "encodingError",
     "What was to be sent has no JSON: name: the text is not valid UTF-8."},
    {MCPAuthorizationError{"No token is there."}, "authorizationError", "No token is there."},
};

TEST(MCPError, EachHasANameAndASentence) {
    for (const auto& each : all) {
        EXPECT_EQ(each.error.name(), each.name);
        EXPECT_EQ(each.error.sentence(), each.sentence);
    }
}

TEST(MCPError, WhatAServerWroteIsCutAndItsControlCharactersAreEscaped) {
    const MCPError error(Error::jsonRPCFailure({7, "a\x1B[31m\nb " + std::string(1 << 20, 'x'), {}}));
    EXPECT_EQ(error.sentence(),
              "The server refuses: a\\u{1B}[31m\\nb " + std::string(300 - 9, 'x') + "… (7).");
    const MCPError marks(toolFailure({text("e" + std::string(1 << 20, '\xCC'))}));
    EXPECT_LT(marks.sentence().size(), 40'000u);
}

} // namespace
} // namespace zelto
